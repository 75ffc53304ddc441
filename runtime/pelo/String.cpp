#include "pelo/String.h"

#include "pelo/Hash.h"

#include <cstring>
#include <limits>
#include <new>
#include <ostream>
#include <stdexcept>

namespace Pelo {

String::String(std::string_view text) {
    if (text.empty()) {
        return;
    }
    if (text.size() > std::numeric_limits<U32>::max() - sizeof(Rep) - 1) {
        throw std::length_error("Pelo::String: text longer than 4 GiB");
    }
    void* const storage = ::operator new(sizeof(Rep) + text.size() + 1);
    rep_ = new (storage) Rep{hashBytes(text.data(), text.size()), 1, static_cast<U32>(text.size())};
    char* const bytes = static_cast<char*>(storage) + sizeof(Rep);
    std::memcpy(bytes, text.data(), text.size());
    bytes[text.size()] = '\0';
}

void String::destroy(Rep* rep) noexcept { ::operator delete(rep); }

std::ostream& operator<<(std::ostream& out, String const& text) { return out << text.view(); }

} // namespace Pelo
