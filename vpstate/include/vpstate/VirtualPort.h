#pragma once

#include "lumlog/ArgTraits.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"
#include "vpstate/Export.h"

#include <iosfwd>
#include <string>
#include <string_view>

namespace VornicCentral {

/// The VP index of a virtual port that got none.
inline constexpr U16 invalidVpIndex = 65535;

/// What a virtual port was given: its VP index. Default-built it is the invalid virtual port, which
/// stands for a request that got no index. Its text form is the index in decimal, read in that form
/// only.
class VORNIC_VPSTATE_API VirtualPort {
public:
    constexpr VirtualPort() noexcept = default;
    constexpr explicit VirtualPort(U16 vpIndex) noexcept : vpIndex_(vpIndex) {}

    constexpr U16 vpIndex() const noexcept { return vpIndex_; }
    constexpr bool valid() const noexcept { return vpIndex_ != invalidVpIndex; }

    U64 hash() const noexcept { return Pelo::hashMix(vpIndex_, 0); }
    std::string stringValue() const { return std::to_string(vpIndex_); }
    static Pelo::Parsed<VirtualPort> parse(std::string_view text);

    friend constexpr bool operator==(VirtualPort, VirtualPort) noexcept = default;

private:
    U16 vpIndex_ = invalidVpIndex;
};

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, VirtualPort vPort);

} // namespace VornicCentral

template <> struct Lumlog::ArgTraits<VornicCentral::VirtualPort> {
    static auto pieces(VornicCentral::VirtualPort vPort) { return Lumlog::pieces(vPort.vpIndex()); }
};
