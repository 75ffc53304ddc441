#pragma once

#include "lumlog/ArgTraits.h"
#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <compare>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Bridging {

/// A VLAN number of 16 bits; default-built it is 0. Any number is held: which ones a command takes
/// is the caller's affair. Its text form is the decimal number, read in that form only.
class VORNIC_RUNTIME_API VlanId {
public:
    /// Collections that are indexed by VLAN have this many places.
    static constexpr U32 directBound = 65536;

    constexpr VlanId() noexcept = default;
    constexpr explicit VlanId(U16 value) noexcept : value_(value) {}

    constexpr U16 value() const noexcept { return value_; }
    constexpr U32 directIndex() const noexcept { return value_; }

    U64 hash() const noexcept { return Pelo::hashMix(value_, 0); }
    std::string stringValue() const { return std::to_string(value_); }
    static Pelo::Parsed<VlanId> parse(std::string_view text);

    friend constexpr bool operator==(VlanId, VlanId) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(VlanId, VlanId) noexcept = default;

private:
    U16 value_ = 0;
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, VlanId vlan);

} // namespace Bridging

template <> struct Lumlog::ArgTraits<Bridging::VlanId> {
    static auto pieces(Bridging::VlanId vlan) { return Lumlog::pieces(vlan.value()); }
};
