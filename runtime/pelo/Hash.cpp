#include "pelo/Hash.h"

#include <cstring>

namespace Pelo {

U64 hashBytes(void const* bytes, std::size_t size) noexcept {
    auto const* at = static_cast<unsigned char const*>(bytes);
    U64 hash = hashMix(size, 0x2545F4914F6CDD1Du);
    while (size >= 8) {
        U64 word = 0;
        std::memcpy(&word, at, 8);
        hash = hashMix(hash, word);
        at += 8;
        size -= 8;
    }
    U64 tail = 0;
    if (size != 0) { // there may be no bytes at all
        std::memcpy(&tail, at, size);
    }
    return hashMix(hash, tail);
}

} // namespace Pelo
