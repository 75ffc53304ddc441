#pragma once

#include "pelo/Integers.h"

#include <string_view>

namespace VpAgent {

/// The checksum by which a row of the state file is known to be as it was written.
///
/// It is FNV-1a, kept to 61 bits: any change within one byte of one column gives another seal,
/// other changes do but for one in 2^61. It guards against damage, not against an adversary.
class Seal {
public:
    /// Seals and positions stay below this bound, so that their sum is a number of SQLite.
    static constexpr U64 bound = U64{1} << 61;

    Seal& add(std::string_view text) noexcept {
        for (char const c : text) {
            mix(static_cast<unsigned char>(c));
        }
        return add(U64{text.size()});
    }

    Seal& add(U64 number) noexcept {
        for (int shift = 0; shift < 64; shift += 8) {
            mix(static_cast<U8>(number >> shift));
        }
        return *this;
    }

    U64 value() const noexcept { return state_ % bound; }

private:
    void mix(U8 byte) noexcept { state_ = (state_ ^ byte) * prime; }

    static constexpr U64 prime = 0x100000001B3;
    U64 state_ = 0xCBF29CE484222325;
};

} // namespace VpAgent
