#pragma once

#include "VornicL3Shared/model/Universe.h"
#include "VornicL3Shared/support/Vports.h"
#include "vpstate/Kinds.h"

#include <tuple>
#include <vector>

namespace ModelTest {

/// The keys of the universe as the library's own values.
class LibraryKeys {
public:
    LibraryKeys() {
        for (Key key = 0; key < keysPerKind; ++key) {
            add<VornicCentral::RemoteVport>(Kind::remote, key);
            add<VornicCentral::EdgeVport>(Kind::edge, key);
            add<VornicCentral::VlanVport>(Kind::vlan, key);
            add<VornicCentral::EFilterDisableVport>(Kind::efilter, key);
        }
    }

    template <class K> typename K::Key const& get(Key key) const {
        return std::get<std::vector<typename K::Key>>(keys_).at(key);
    }

private:
    template <class K> void add(Kind kind, Key key) {
        using LibraryKey = typename K::Key;
        std::get<std::vector<LibraryKey>>(keys_).push_back(
            Test::keyOf<LibraryKey>(keyText(kind, key).text));
    }

    std::tuple<std::vector<VornicCentral::RemoteVtepKey>, std::vector<VornicCentral::PortVlanKey>,
               std::vector<Bridging::VlanId>, std::vector<Netzo::IntfId>>
        keys_;
};

/// Calls `visit` with the library's type for a kind.
template <class Visit> decltype(auto) withKind(Kind kind, Visit&& visit) {
    switch (kind) {
    case Kind::remote:
        return visit(VornicCentral::RemoteVport{});
    case Kind::mlag:
        return visit(VornicCentral::MlagRemoteVport{});
    case Kind::edge:
        return visit(VornicCentral::EdgeVport{});
    case Kind::vlan:
        return visit(VornicCentral::VlanVport{});
    default:
        return visit(VornicCentral::EFilterDisableVport{});
    }
}

} // namespace ModelTest
