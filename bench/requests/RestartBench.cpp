// What an agent waits for when it comes back, and what a full table costs: recovery of all
// references, a whole start, and an index that is handed to the first waiting key.

#include "requests/Agent.h"

#include <benchmark/benchmark.h>

namespace {

using namespace VornicCentral;
using Bench::Agent;
using Bench::edgeKey;

void startAgain(benchmark::State& state, Agent& agent) {
    for (auto _ : state) {
        state.PauseTiming();
        agent.stateMachine = nullptr;
        state.ResumeTiming();
        agent.start();
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
    state.SetComplexityN(state.range(0));
}

void restartSizes(benchmark::internal::Benchmark* benchmark) {
    benchmark->Arg(8000)->Arg(16000)->Arg(32000)->Arg(65000);
    benchmark->Unit(benchmark::kMillisecond)->Complexity(benchmark::oN);
}

/// A start that recovers `range` references of clients that are not there any more: the pool and
/// `reconcile` alone.
void reconcileReferences(benchmark::State& state) {
    Agent agent(static_cast<U32>(state.range(0)));
    agent.configs->vpIndexConfigDel("bgp");
    startAgain(state, agent);
}
BENCHMARK(reconcileReferences)->Apply(restartSizes);

/// A start that recovers `range` references and in which their client then asks for each again.
void startWithReferences(benchmark::State& state) {
    Agent agent(static_cast<U32>(state.range(0)));
    startAgain(state, agent);
}
BENCHMARK(startWithReferences)->Apply(restartSizes);

/// An index that is released and handed over while `range` keys wait; the key that gave it up
/// then waits as the last one, so that their number stays.
void handOver(benchmark::State& state) {
    constexpr U32 tableSize = 1024;
    constexpr U32 systemIndices = 8;
    auto const waiting = static_cast<U32>(state.range(0));
    U32 const keys = tableSize - systemIndices + waiting;
    Agent agent(keys, tableSize);
    U32 at = 0;
    for (auto _ : state) {
        PortVlanKey const key = edgeKey(at);
        agent.config->edgeVportDel(key);
        agent.config->edgeVportIs(key, true);
        at = (at + 1) % keys;
    }
    if (agent.waiting->edgeVport().memberCount() != waiting) {
        state.SkipWithError("the number of waiting keys changed");
    }
}
BENCHMARK(handOver)->Arg(1)->Arg(1000)->Arg(60000);

} // namespace
