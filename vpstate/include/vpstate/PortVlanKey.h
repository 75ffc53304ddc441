#pragma once

#include "bridging/VlanId.h"
#include "lumlog/ArgTraits.h"
#include "netzo/IntfId.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"
#include "qor/Words.h"
#include "vpstate/Export.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace VornicCentral {

/// The key of an edge port: an interface and a VLAN on it.
///
/// The text form is `Ethernet1/1:100`. It is read from the last colon, so a name may have colons of
/// its own; the name must be one that `Netzo::IntfId::parse` takes.
class VORNIC_VPSTATE_API PortVlanKey {
public:
    PortVlanKey() noexcept = default;
    PortVlanKey(Netzo::IntfId intf, Bridging::VlanId vlan) noexcept
        : intf_(std::move(intf)), vlan_(vlan) {}

    Netzo::IntfId const& intf() const noexcept { return intf_; }
    Bridging::VlanId vlan() const noexcept { return vlan_; }

    U64 hash() const noexcept { return Pelo::hashMix(intf_.hash(), vlan_.value()); }
    std::string stringValue() const;
    static Pelo::Parsed<PortVlanKey> parse(std::string_view text);

    friend bool operator==(PortVlanKey const& a, PortVlanKey const& b) noexcept {
        return a.intf_ == b.intf_ && a.vlan_ == b.vlan_;
    }

private:
    Netzo::IntfId intf_;
    Bridging::VlanId vlan_;
};

static_assert(sizeof(PortVlanKey) == 16);

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, PortVlanKey const& key);

} // namespace VornicCentral

namespace QorPelo {

/// The runtime's value printer.
VORNIC_VPSTATE_API void print(std::ostream& out, VornicCentral::PortVlanKey const& key);

} // namespace QorPelo

template <> struct Lumlog::ArgTraits<VornicCentral::PortVlanKey> {
    static auto pieces(VornicCentral::PortVlanKey const& key) {
        return Lumlog::pieces(key.intf(), Qor::Words(":"), key.vlan());
    }
};
