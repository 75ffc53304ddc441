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
            // Names and numbers that the text forms do not take are keys as well.
            KeyText const& edge = keyText(Kind::edge, key);
            Netzo::IntfId const port(edge.intf);
            add(Test::keyOf<VornicCentral::RemoteVtepKey>(keyText(Kind::remote, key).text));
            add(VornicCentral::PortVlanKey(port, vlanOf(edge)));
            add(vlanOf(keyText(Kind::vlan, key)));
            add(Netzo::IntfId(keyText(Kind::efilter, key).intf));
        }
    }

    template <class K> typename K::Key const& get(Key key) const {
        return std::get<std::vector<typename K::Key>>(keys_).at(key);
    }

private:
    static Bridging::VlanId vlanOf(KeyText const& text) {
        return Bridging::VlanId(static_cast<U16>(std::stoul(text.vlan)));
    }
    template <class LibraryKey> void add(LibraryKey key) {
        std::get<std::vector<LibraryKey>>(keys_).push_back(std::move(key));
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
