// Sets of interfaces at their usual sizes: compared, copied, walked and built.

#include "interface/IntfSet.h"

#include <benchmark/benchmark.h>

#include <string>
#include <vector>

namespace {

using Interface::IntfSet;

std::vector<Netzo::IntfId> interfaces(benchmark::State const& state) {
    std::vector<Netzo::IntfId> all;
    for (int64_t at = 0; at < state.range(0); ++at) {
        all.emplace_back("Ethernet" + std::to_string(at * 37 % 64 + 1));
    }
    return all;
}

IntfSet setOf(std::vector<Netzo::IntfId> const& intfs) {
    IntfSet set;
    for (Netzo::IntfId const& intf : intfs) {
        set.insert(intf);
    }
    return set;
}

void intfSetEqual(benchmark::State& state) {
    IntfSet const a = setOf(interfaces(state));
    IntfSet const b = setOf(interfaces(state));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
    }
}
BENCHMARK(intfSetEqual)->Arg(0)->Arg(8)->Arg(64);

void intfSetCopy(benchmark::State& state) {
    IntfSet const set = setOf(interfaces(state));
    for (auto _ : state) {
        IntfSet const copy(set);
        benchmark::DoNotOptimize(copy.size());
    }
}
BENCHMARK(intfSetCopy)->Arg(0)->Arg(8)->Arg(64);

void intfSetWalk(benchmark::State& state) {
    IntfSet const set = setOf(interfaces(state));
    for (auto _ : state) {
        U64 sum = 0;
        for (Netzo::IntfId const& intf : set) {
            sum += intf.hash();
        }
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(intfSetWalk)->Arg(0)->Arg(8)->Arg(64);

void intfSetBuild(benchmark::State& state) {
    std::vector<Netzo::IntfId> const intfs = interfaces(state);
    for (auto _ : state) {
        benchmark::DoNotOptimize(setOf(intfs).size());
    }
}
BENCHMARK(intfSetBuild)->Arg(8)->Arg(64);

} // namespace
