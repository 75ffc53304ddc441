// The keyed collections: insertion, lookup, deletion and walks at the sizes of a full table.

#include "bridging/VlanId.h"
#include "qor/HashMap2018.h"
#include "vpstate/RemoteVtepKey.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using VornicCentral::RemoteVtepKey;
using RemoteMap = Qor::HashMap2018<RemoteVtepKey, bool>;

std::vector<RemoteVtepKey> remoteKeys(U32 count) {
    std::vector<RemoteVtepKey> keys;
    for (U32 at = 0; at < count; ++at) {
        auto const address =
            Netzo::IpGenAddr::parse("10." + std::to_string(at >> 16) + "." +
                                    std::to_string(at >> 8 & 255) + "." + std::to_string(at & 255));
        keys.emplace_back(Vxlan::SwTunnelGroupId(at % 512), *address);
    }
    return keys;
}

void fill(RemoteMap& map, std::vector<RemoteVtepKey> const& keys) {
    for (auto const& key : keys) {
        map.newMember(key, true);
    }
}

void collectionInsert(benchmark::State& state) {
    auto const keys = remoteKeys(static_cast<U32>(state.range(0)));
    for (auto _ : state) {
        RemoteMap map;
        fill(map, keys);
        benchmark::DoNotOptimize(map.memberCount());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(collectionInsert)->Arg(1000)->Arg(60000);

void collectionHit(benchmark::State& state) {
    auto const keys = remoteKeys(static_cast<U32>(state.range(0)));
    RemoteMap map;
    fill(map, keys);
    std::size_t at = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.lookupNode(keys[at]));
        at = (at + 7919) % keys.size();
    }
}
BENCHMARK(collectionHit)->Arg(1000)->Arg(60000);

void collectionWalk(benchmark::State& state) {
    RemoteMap map;
    fill(map, remoteKeys(static_cast<U32>(state.range(0))));
    for (auto _ : state) {
        U32 seen = 0;
        for (RemoteMap::Iterator it(map); it; it.advance()) {
            seen += it.value() ? 1u : 0u;
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(collectionWalk)->Arg(1000)->Arg(60000);

void collectionVlanHit(benchmark::State& state) {
    Qor::HashMap2018<Bridging::VlanId, bool> map;
    for (U16 vlan = 1; vlan < 4095; ++vlan) {
        map.newMember(Bridging::VlanId(vlan), true);
    }
    U16 vlan = 1;
    for (auto _ : state) {
        benchmark::DoNotOptimize(map.lookupNode(Bridging::VlanId(vlan)));
        vlan = static_cast<U16>(1 + (vlan + 1009) % 4094);
    }
}
BENCHMARK(collectionVlanHit);

} // namespace
