#pragma once

#include "netzo/Ip6Addr.h"
#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <array>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Netzo {

/// An IPv4 or IPv6 address: the family, and 16 bytes of which IPv4 uses the first four.
///
/// A regular value of 17 bytes; default-built it is the IPv4 address `0.0.0.0`. Addresses of
/// different families are never equal, whatever their bytes: an IPv4 address is not the IPv6
/// address that maps it.
///
/// Its text form is four decimal numbers and dots, or that of `Ip6Addr`. `parse` tells the families
/// apart by the text itself and is strict: IPv4 is four numbers from 0 to 255 without leading
/// zeros.
class VORNIC_RUNTIME_API IpGenAddr {
public:
    enum class Family : U8 { ip4, ip6 };

    constexpr IpGenAddr() noexcept = default;
    constexpr explicit IpGenAddr(std::array<U8, 4> const& ip4) noexcept
        : address_(Ip6Addr::Bytes{ip4[0], ip4[1], ip4[2], ip4[3]}) {}
    constexpr explicit IpGenAddr(Ip6Addr const& ip6) noexcept
        : address_(ip6), family_(Family::ip6) {}

    constexpr Family family() const noexcept { return family_; }

    /// All 16 bytes, those that the family does not use being zero.
    constexpr Ip6Addr const& bits() const noexcept { return address_; }

    U64 hash() const noexcept { return Pelo::hashMix(address_.hash(), static_cast<U64>(family_)); }
    std::string stringValue() const;
    static Pelo::Parsed<IpGenAddr> parse(std::string_view text);

    friend bool operator==(IpGenAddr const& a, IpGenAddr const& b) noexcept {
        return a.address_ == b.address_ && a.family_ == b.family_;
    }

private:
    Ip6Addr address_;
    Family family_ = Family::ip4;
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, IpGenAddr const& address);

} // namespace Netzo
