#pragma once

#include "bridging/VlanId.h"
#include "netzo/IntfId.h"
#include "pelo/Integers.h"
#include "pelo/Publisher.h"
#include "vpstate/PortVlanKey.h"
#include "vpstate/RemoteVtepKey.h"

#include <cstddef>
#include <tuple>
#include <utility>

/// The five kinds of virtual port, each described once.
///
/// A kind says the type of its key, the name of its collection in every record, the field number of
/// that collection, and the word by which people name the kind. Storage, inspection, commands and
/// tests walk the list `Kinds`, whose order is the order in which kinds are always treated.
namespace VornicCentral {

struct RemoteVport {
    using Key = RemoteVtepKey;
    static constexpr std::size_t order = 0;
    static constexpr Pelo::FieldId field = 258;
    static constexpr char const* collection = "remoteVport";
    static constexpr char const* keyName = "remoteVtepKey";
    static constexpr char const* word = "remote";
};

struct MlagRemoteVport {
    using Key = RemoteVtepKey;
    static constexpr std::size_t order = 1;
    static constexpr Pelo::FieldId field = 259;
    static constexpr char const* collection = "mlagRemoteVport";
    static constexpr char const* keyName = "remoteVtepKey";
    static constexpr char const* word = "mlag";
};

struct EdgeVport {
    using Key = PortVlanKey;
    static constexpr std::size_t order = 2;
    static constexpr Pelo::FieldId field = 260;
    static constexpr char const* collection = "edgeVport";
    static constexpr char const* keyName = "pvKey";
    static constexpr char const* word = "edge";
};

struct VlanVport {
    using Key = Bridging::VlanId;
    static constexpr std::size_t order = 3;
    static constexpr Pelo::FieldId field = 261;
    static constexpr char const* collection = "vlanVport";
    static constexpr char const* keyName = "vlan";
    static constexpr char const* word = "vlan";
};

struct EFilterDisableVport {
    using Key = Netzo::IntfId;
    static constexpr std::size_t order = 4;
    static constexpr Pelo::FieldId field = 262;
    static constexpr char const* collection = "eFilterDisableVport";
    static constexpr char const* keyName = "intf";
    static constexpr char const* word = "efilter";
};

using Kinds = std::tuple<RemoteVport, MlagRemoteVport, EdgeVport, VlanVport, EFilterDisableVport>;

inline constexpr std::size_t kindCount = std::tuple_size_v<Kinds>;

/// Calls `visit(Kind{})` for each kind of `List` in turn.
///
///     forEachKind([&](auto kind) { using Kind = decltype(kind); total += record.template
///     collection<Kind>()...; });
template <class List = Kinds, class Visit> constexpr void forEachKind(Visit&& visit) {
    [&]<std::size_t... at>(std::index_sequence<at...>) {
        (visit(std::tuple_element_t<at, List>{}), ...);
    }(std::make_index_sequence<std::tuple_size_v<List>>());
}

} // namespace VornicCentral
