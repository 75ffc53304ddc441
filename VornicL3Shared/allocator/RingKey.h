#pragma once

#include "lumlog/ArgTraits.h"
#include "qor/Words.h"
#include "vpstate/Kinds.h"

#include <tuple>

/// How ring-buffer records tell the keys of virtual ports: as labelled binary pieces, with short
/// interface names.

namespace VornicCentral {

/// A key with its labels, as " port: Et1/1 vlan: 100"; a remote VTEP by its address alone.
template <class Key> struct RingKey {
    Key const& key;
};
template <class Key> RingKey(Key const&) -> RingKey<Key>;

/// An edge port with its full name.
struct RingFullKey {
    PortVlanKey const& key;
};

/// A remote VTEP with all of its key.
struct RingFinalKey {
    RemoteVtepKey const& key;
};

} // namespace VornicCentral

template <> struct Lumlog::ArgTraits<VornicCentral::RingKey<VornicCentral::RemoteVtepKey>> {
    static auto pieces(VornicCentral::RingKey<VornicCentral::RemoteVtepKey> const& ring) {
        return std::tuple(Qor::Words(" vtep: "), ring.key.address());
    }
};

template <> struct Lumlog::ArgTraits<VornicCentral::RingKey<VornicCentral::PortVlanKey>> {
    static auto pieces(VornicCentral::RingKey<VornicCentral::PortVlanKey> const& ring) {
        auto const [letters, rest] = ring.key.intf().shortNameParts();
        return std::tuple(Qor::Words(" port: "), letters, rest, Qor::Words(" vlan: "),
                          ring.key.vlan().value());
    }
};

template <> struct Lumlog::ArgTraits<VornicCentral::RingKey<Bridging::VlanId>> {
    static auto pieces(VornicCentral::RingKey<Bridging::VlanId> const& ring) {
        return std::tuple(Qor::Words(" vlan: "), ring.key.value());
    }
};

template <> struct Lumlog::ArgTraits<VornicCentral::RingKey<Netzo::IntfId>> {
    static auto pieces(VornicCentral::RingKey<Netzo::IntfId> const& ring) {
        auto const [letters, rest] = ring.key.shortNameParts();
        return std::tuple(Qor::Words(" intf: "), letters, rest);
    }
};

template <> struct Lumlog::ArgTraits<VornicCentral::RingFullKey> {
    static auto pieces(VornicCentral::RingFullKey const& ring) {
        return std::tuple(Qor::Words(" port: "), ring.key.intf().name(), Qor::Words(" vlan: "),
                          ring.key.vlan().value());
    }
};

template <> struct Lumlog::ArgTraits<VornicCentral::RingFinalKey> {
    static auto pieces(VornicCentral::RingFinalKey const& ring) {
        return std::tuple(Qor::Words(" remoteVtepKey: "), ring.key);
    }
};
