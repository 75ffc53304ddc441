#pragma once

#include "lumlog/ArgTraits.h"
#include "netzo/IpGenAddr.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"
#include "qor/Words.h"
#include "vpstate/Export.h"
#include "vxlan/SwTunnelGroupId.h"

#include <iosfwd>
#include <string>
#include <string_view>
#include <utility>

namespace VornicCentral {

/// The key of a remote VTEP: its tunnel group, its address, and two bytes whose meaning is the
/// VXLAN module's.
///
/// Every field takes part in equality; the hash mixes the address with its family and the group. A
/// copy is one more user of the group.
///
/// The text form is `10.0.0.2@17`, and `10.0.0.2@17/1/2` when one of the two bytes is not 0.
class VORNIC_VPSTATE_API RemoteVtepKey {
public:
    RemoteVtepKey() = default;
    RemoteVtepKey(Vxlan::SwTunnelGroupId tunnelGroup, Netzo::IpGenAddr const& address, U8 byte0 = 0,
                  U8 byte1 = 0) noexcept
        : tunnelGroup_(std::move(tunnelGroup)), address_(address), byte0_(byte0), byte1_(byte1) {}

    Vxlan::SwTunnelGroupId const& tunnelGroup() const noexcept { return tunnelGroup_; }
    Netzo::IpGenAddr const& address() const noexcept { return address_; }
    U8 byte0() const noexcept { return byte0_; }
    U8 byte1() const noexcept { return byte1_; }

    U64 hash() const noexcept { return Pelo::hashMix(address_.hash(), tunnelGroup_.value()); }
    std::string stringValue() const;

    /// What the text form has behind the group, as `/1/2`; empty when both bytes are 0.
    std::string bytesText() const;
    static Pelo::Parsed<RemoteVtepKey> parse(std::string_view text);

    friend bool operator==(RemoteVtepKey const& a, RemoteVtepKey const& b) noexcept {
        return a.address_ == b.address_ && a.tunnelGroup_ == b.tunnelGroup_ &&
               a.byte0_ == b.byte0_ && a.byte1_ == b.byte1_;
    }

private:
    Vxlan::SwTunnelGroupId tunnelGroup_;
    Netzo::IpGenAddr address_;
    U8 byte0_ = 0;
    U8 byte1_ = 0;
};

static_assert(sizeof(RemoteVtepKey) <= 32);

VORNIC_VPSTATE_API std::ostream& operator<<(std::ostream& out, RemoteVtepKey const& key);

} // namespace VornicCentral

namespace QorPelo {

/// The runtime's value printer.
VORNIC_VPSTATE_API void print(std::ostream& out, VornicCentral::RemoteVtepKey const& key);

} // namespace QorPelo

template <> struct Lumlog::ArgTraits<VornicCentral::RemoteVtepKey> {
    static auto pieces(VornicCentral::RemoteVtepKey const& key) {
        return Lumlog::pieces(key.address(), Qor::Words("@"), key.tunnelGroup().value(),
                              key.bytesText());
    }
};
