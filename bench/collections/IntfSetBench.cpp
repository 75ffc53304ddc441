// Sets of interfaces at their usual sizes: compared, copied, walked and built.

#include "Case.h"
#include "interface/IntfSet.h"

#include <string>
#include <vector>

namespace Bench {

namespace {

using Interface::IntfSet;

std::vector<Netzo::IntfId> interfaces(int count) {
    std::vector<Netzo::IntfId> all;
    all.reserve(static_cast<std::size_t>(count));
    for (int at = 0; at < count; ++at) {
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

void intfSetEqual(benchmark::State& state, int count) {
    IntfSet const a = setOf(interfaces(count));
    IntfSet const b = setOf(interfaces(count));
    for (auto _ : state) {
        benchmark::DoNotOptimize(a == b);
    }
}

void intfSetCopy(benchmark::State& state, int count) {
    IntfSet const set = setOf(interfaces(count));
    for (auto _ : state) {
        IntfSet const copy(set);
        benchmark::DoNotOptimize(copy.size());
    }
}

void intfSetWalk(benchmark::State& state, int count) {
    IntfSet const set = setOf(interfaces(count));
    for (auto _ : state) {
        U64 sum = 0;
        for (Netzo::IntfId const& intf : set) {
            sum += intf.hash();
        }
        benchmark::DoNotOptimize(sum);
    }
}

void intfSetBuild(benchmark::State& state, int count) {
    std::vector<Netzo::IntfId> const intfs = interfaces(count);
    for (auto _ : state) {
        benchmark::DoNotOptimize(setOf(intfs).size());
    }
}

void add(std::string const& subject, int count, void (*run)(benchmark::State&, int)) {
    addCase(subject, "ours", std::to_string(count),
            [=](benchmark::State& state) { run(state, count); });
}

[[maybe_unused]] bool const added = [] {
    for (int const count : {0, 8, 64}) {
        add("intfSetEqual", count, intfSetEqual);
        add("intfSetCopy", count, intfSetCopy);
        add("intfSetWalk", count, intfSetWalk);
        add("intfSetBuild", count, intfSetBuild);
    }
    return true;
}();

} // namespace

} // namespace Bench
