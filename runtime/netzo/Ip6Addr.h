#pragma once

#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <array>
#include <cstring>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Netzo {

/// An IPv6 address: 16 bytes in network order; default-built it is `::`.
///
/// A regular value, compared and hashed as two words. Its text form is that of RFC 5952: lower
/// case, the first of the longest runs of two or more zero groups shortened to `::`, and
/// IPv4-mapped addresses (five zero groups, then `ffff`) with the IPv4 address in dots. `parse`
/// takes every form of RFC 4291 and nothing else: no zone, no prefix length, no blanks.
class VORNIC_RUNTIME_API Ip6Addr {
public:
    using Bytes = std::array<U8, 16>;

    constexpr Ip6Addr() noexcept = default;
    constexpr explicit Ip6Addr(Bytes const& bytes) noexcept : bytes_(bytes) {}

    constexpr Bytes const& bytes() const noexcept { return bytes_; }

    U64 hash() const noexcept { return Pelo::hashMix(word(0), word(8)); }
    std::string stringValue() const;
    static Pelo::Parsed<Ip6Addr> parse(std::string_view text);

    friend bool operator==(Ip6Addr const& a, Ip6Addr const& b) noexcept {
        return a.word(0) == b.word(0) && a.word(8) == b.word(8);
    }

private:
    U64 word(std::size_t at) const noexcept {
        U64 result = 0;
        std::memcpy(&result, bytes_.data() + at, sizeof result);
        return result;
    }

    Bytes bytes_{};
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, Ip6Addr const& address);

} // namespace Netzo
