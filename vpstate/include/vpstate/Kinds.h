#pragma once

#include "bridging/VlanId.h"
#include "netzo/IntfId.h"
#include "pelo/Integers.h"
#include "pelo/Publisher.h"
#include "vpstate/PortVlanKey.h"
#include "vpstate/RemoteVtepKey.h"

#include <cstddef>
#include <tuple>
#include <type_traits>
#include <utility>

/// The five kinds of virtual port, each described once.
///
/// A kind says the type of its key, the name of its collection in every record, the field number of
/// that collection, the word by which people name the kind in commands, and what they call its
/// members in a sentence. Storage, inspection, commands and tests walk the list `Kinds`, whose
/// order is the order in which kinds are treated, but for the hand-over of a released index.
namespace VornicCentral {

struct RemoteVport {
    using Key = RemoteVtepKey;
    static constexpr Pelo::FieldId field = 258;
    static constexpr char const* collection = "remoteVport";
    static constexpr char const* keyName = "remoteVtepKey";
    static constexpr char const* word = "remote";
    static constexpr char const* members = "remote VTEPs";
};

struct MlagRemoteVport {
    using Key = RemoteVtepKey;
    static constexpr Pelo::FieldId field = 259;
    static constexpr char const* collection = "mlagRemoteVport";
    static constexpr char const* keyName = "remoteVtepKey";
    static constexpr char const* word = "mlag";
    static constexpr char const* members = "remote VTEPs of MLAG pairs";
};

struct EdgeVport {
    using Key = PortVlanKey;
    static constexpr Pelo::FieldId field = 260;
    static constexpr char const* collection = "edgeVport";
    static constexpr char const* keyName = "pvKey";
    static constexpr char const* word = "edge";
    static constexpr char const* members = "edge ports with their VLANs";
};

struct VlanVport {
    using Key = Bridging::VlanId;
    static constexpr Pelo::FieldId field = 261;
    static constexpr char const* collection = "vlanVport";
    static constexpr char const* keyName = "vlan";
    static constexpr char const* word = "vlan";
    static constexpr char const* members = "VLANs";
};

struct EFilterDisableVport {
    using Key = Netzo::IntfId;
    static constexpr Pelo::FieldId field = 262;
    static constexpr char const* collection = "eFilterDisableVport";
    static constexpr char const* keyName = "intf";
    static constexpr char const* word = "efilter";
    static constexpr char const* members = "interfaces with egress filtering disabled";
};

using Kinds = std::tuple<RemoteVport, MlagRemoteVport, EdgeVport, VlanVport, EFilterDisableVport>;

/// The order in which a released index is offered to the kinds that wait, VLANs first.
using ServingOrder =
    std::tuple<VlanVport, RemoteVport, MlagRemoteVport, EdgeVport, EFilterDisableVport>;

inline constexpr std::size_t kindCount = std::tuple_size_v<Kinds>;
static_assert(std::tuple_size_v<ServingOrder> == kindCount, "each kind is served");

/// The place of a type in a list that holds it.
template <class Type, class... Each> consteval std::size_t placeIn(std::tuple<Each...> const*) {
    std::size_t at = 0;
    static_cast<void>(((std::is_same_v<Type, Each> ? true : (++at, false)) || ...));
    return at;
}

/// The place of a kind in the list.
template <class Kind>
inline constexpr std::size_t kindOrder = placeIn<Kind>(static_cast<Kinds const*>(nullptr));

/// Calls `visit(Kind{})` for each kind of `List` in turn.
///
///     forEachKind([&](auto kind) { clear<decltype(kind)>(); });
template <class List = Kinds, class Visit> constexpr void forEachKind(Visit&& visit) {
    [&]<std::size_t... at>(std::index_sequence<at...>) {
        (visit(std::tuple_element_t<at, List>{}), ...);
    }(std::make_index_sequence<std::tuple_size_v<List>>());
}

} // namespace VornicCentral
