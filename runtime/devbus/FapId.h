#pragma once

#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <compare>
#include <iosfwd>
#include <string>
#include <string_view>

namespace Devbus {

/// A forwarding chip's number of 8 bits; default-built it is 0. Its text form is the decimal
/// number, read in that form only.
class VORNIC_RUNTIME_API FapId {
public:
    /// Collections that are indexed by chip have this many places.
    static constexpr U32 directBound = 256;

    constexpr FapId() noexcept = default;
    constexpr explicit FapId(U8 value) noexcept : value_(value) {}

    constexpr U8 value() const noexcept { return value_; }
    constexpr U32 directIndex() const noexcept { return value_; }

    /// For hash tables of others; the runtime's collections index by chip instead.
    U64 hash() const noexcept { return Pelo::hashMix(value_, rehash); }
    std::string stringValue() const { return std::to_string(value_); }
    static Pelo::Parsed<FapId> parse(std::string_view text);

    friend constexpr bool operator==(FapId, FapId) noexcept = default;
    friend constexpr std::strong_ordering operator<=>(FapId, FapId) noexcept = default;

private:
    static constexpr U64 rehash = 569662278; ///< the type's fixed constant

    U8 value_ = 0;
};

VORNIC_RUNTIME_API std::ostream& operator<<(std::ostream& out, FapId fap);

} // namespace Devbus
