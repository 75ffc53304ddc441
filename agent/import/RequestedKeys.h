#pragma once

#include "import/JsonFile.h"
#include "qor/HashMap2018.h"
#include "vpstate/Kinds.h"

#include <tuple>

namespace VpAgent {

/// What a network's own file asks for: the keys of each kind, each once, in the order of the file.
///
/// The form of the file is told by its content:
///
/// - a configuration database, nested (`{"VLAN_MEMBER": {"Vlan100|Ethernet0": {...}}}`) or flat
///   (`{"VLAN_MEMBER|Vlan100|Ethernet0": {...}}`), whose unknown tables are passed over;
/// - EVPN state: an object with `vni` and `remoteVteps`, or several of them in an array or as an
/// object's values. One
///   without `remoteVteps` has none.
///
/// Numbers may stand as JSON numbers or as texts.
class RequestedKeys {
public:
    template <class Kind> using Collection = Qor::HashMap2018<typename Kind::Key, bool>;

    /// Throws `Refusal`, with the name of the entry, when an entry of a known table is malformed.
    explicit RequestedKeys(Json const& file);

    template <class Kind> Collection<Kind> const& of() const noexcept {
        return std::get<VornicCentral::kindOrder<Kind>>(keys_);
    }

    /// Adds a key; nothing happens when it is there.
    template <class Kind> void add(typename Kind::Key const& key) {
        std::get<VornicCentral::kindOrder<Kind>>(keys_).memberIs(key, true);
    }

private:
    template <class List> struct CollectionOfEach;
    template <class... Kind> struct CollectionOfEach<std::tuple<Kind...>> {
        using Type = std::tuple<Collection<Kind>...>;
    };

    CollectionOfEach<VornicCentral::Kinds>::Type keys_;
};

} // namespace VpAgent
