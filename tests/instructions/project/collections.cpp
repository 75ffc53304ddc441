// The keyed collection with 16,384 edge ports: the keys of a large table.

#include "operations.h"

#include <bridging/VlanId.h>
#include <qor/HashMap2018.h>
#include <vpstate/PortVlanKey.h>
#include <vpstate/VirtualPort.h>

#include <string>
#include <utility>
#include <vector>

namespace Operations {

namespace {

using VornicCentral::PortVlanKey;
using VornicCentral::VirtualPort;
using Map = Qor::HashMap2018<PortVlanKey, VirtualPort>;

constexpr U32 members = 16384;

/// Keys from number `first` on: 1,000 VLANs an interface.
std::vector<PortVlanKey> makeKeys(U32 first, U32 count) {
    std::vector<PortVlanKey> keys;
    for (U32 at = first; at < first + count; ++at) {
        keys.emplace_back(Netzo::IntfId("Ethernet" + std::to_string(at / 1000)),
                          Bridging::VlanId(static_cast<U16>(at % 1000 + 1)));
    }
    return keys;
}

/// The same keys in an order of no meaning.
std::vector<PortVlanKey> shuffled(std::vector<PortVlanKey> keys) {
    U64 random = 1;
    for (std::size_t left = keys.size(); left > 1; --left) {
        random = random * 6364136223846793005u + 1442695040888963407u;
        std::swap(keys[left - 1], keys[(random >> 33) % left]);
    }
    return keys;
}

void fill(Map& map, std::vector<PortVlanKey> const& keys) {
    U16 index = 0;
    for (PortVlanKey const& key : keys) {
        map.newMember(key, VirtualPort(index++));
    }
}

/// Looks up `count` keys, one after the other and from the beginning again; `held` says whether the
/// collection holds them.
void lookUp(U32 count, std::vector<PortVlanKey> const& asked, bool held) {
    Map map;
    fill(map, makeKeys(0, members));
    auto const keys = shuffled(asked);
    U32 found = 0;
    counted([&] {
        std::size_t at = 0;
        for (U32 done = 0; done < count; ++done) {
            found += map.lookupNode(keys[at]) != nullptr ? 1u : 0u;
            at = at + 1 == keys.size() ? 0 : at + 1;
        }
    });
    expect(found == (held ? count : 0), "the look-ups found something else");
}

} // namespace

void collectionHit(U32 count) { lookUp(count, makeKeys(0, members), true); }

void collectionMiss(U32 count) { lookUp(count, makeKeys(members, members), false); }

void collectionInsert(U32 count) {
    auto const keys = shuffled(makeKeys(0, count));
    Map map;
    counted([&] { fill(map, keys); });
    expect(map.memberCount() == count, "not every member was inserted");
}

void collectionErase(U32 count) {
    Map map;
    fill(map, makeKeys(0, count));
    auto const keys = shuffled(makeKeys(0, count));
    counted([&] {
        for (PortVlanKey const& key : keys) {
            keep(map.deleteMember(key).has_value());
        }
    });
    expect(map.memberCount() == 0, "not every member was deleted");
}

void collectionWalk(U32 count) {
    Map map;
    fill(map, makeKeys(0, count));
    U32 seen = 0;
    counted([&] {
        for (Map::Iterator it(map); it; it.advance()) {
            keep(it.value().vpIndex());
            ++seen;
        }
    });
    expect(seen == count, "not every member was visited");
}

void collectionVlanHit(U32 count) {
    constexpr U16 vlans = 4094;
    Qor::HashMap2018<Bridging::VlanId, VirtualPort> map;
    for (U16 vlan = 1; vlan <= vlans; ++vlan) {
        map.newMember(Bridging::VlanId(vlan), VirtualPort(vlan));
    }
    U32 found = 0;
    counted([&] {
        U16 vlan = 1;
        for (U32 done = 0; done < count; ++done) {
            found += map.lookupNode(Bridging::VlanId(vlan)) != nullptr ? 1u : 0u;
            vlan = vlan == vlans ? U16{1} : static_cast<U16>(vlan + 1);
        }
    });
    expect(found == count, "the look-ups found something else");
}

} // namespace Operations
