// A request from end to end: the write to the config, its handler, the pool, status and reference,
// the handler of waiting keys, all ring-buffer records; and its withdrawal.

#include "requests/Agent.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace {

using namespace VornicCentral;
using Bench::Agent;
using Bench::edgeKey;

/// One request and its withdrawal beside `range` virtual ports.
void requestAndWithdraw(benchmark::State& state) {
    auto const held = static_cast<U32>(state.range(0));
    Agent agent(held);
    std::vector<PortVlanKey> keys;
    for (U32 at = 0; at < 1000; ++at) {
        keys.push_back(edgeKey(held + at));
    }
    std::size_t at = 0;
    for (auto _ : state) {
        agent.config->edgeVportIs(keys[at], true);
        agent.config->edgeVportDel(keys[at]);
        at = (at + 1) % keys.size();
    }
}
BENCHMARK(requestAndWithdraw)->Arg(1000)->Arg(60000);

/// 1,000 new requests beside `range` virtual ports; the withdrawals are not counted.
void newRequest(benchmark::State& state) {
    auto const held = static_cast<U32>(state.range(0));
    Agent agent(held);
    constexpr U32 batch = 1000;
    std::vector<PortVlanKey> keys;
    for (U32 at = 0; at < batch; ++at) {
        keys.push_back(edgeKey(held + at));
    }
    for (auto _ : state) {
        for (auto const& key : keys) {
            agent.config->edgeVportIs(key, true);
        }
        state.PauseTiming();
        for (auto const& key : keys) {
            agent.config->edgeVportDel(key);
        }
        state.ResumeTiming();
    }
    state.SetItemsProcessed(state.iterations() * batch);
}
BENCHMARK(newRequest)->Arg(1000)->Arg(60000);

} // namespace
