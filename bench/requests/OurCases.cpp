#include "requests/OurWorld.h"
#include "requests/RequestCases.h"

#include <string>
#include <vector>

namespace {

using namespace VornicCentral;
using EdgeWorld = Bench::OurWorld<EdgeVport>;
using EdgeCases = Bench::RequestCases<EdgeWorld>;
using RemoteCases = Bench::RequestCases<Bench::OurWorld<RemoteVport>>;

/// Releases whose index goes to one of so many waiting keys each time; the keys that gave it up
/// then wait as the last ones. The table is as full as it can be with `held` indices.
void handOver(benchmark::State& state, U32 held, U32 waiting) {
    EdgeWorld world(1, held + VpIndexAllocatorDirSm::maxSystemSourceVp_);
    EdgeCases::fill(world, held + waiting);
    auto const keys = EdgeCases::keys(0, held + waiting);
    std::size_t first = 0;
    for (auto _ : state) {
        for (std::size_t at = first; at < first + EdgeCases::batch; ++at) {
            world.withdraw(keys[at % keys.size()]);
        }
        state.PauseTiming();
        for (std::size_t at = first; at < first + EdgeCases::batch; ++at) {
            world.request(keys[at % keys.size()]);
        }
        first = (first + EdgeCases::batch) % keys.size();
        state.ResumeTiming();
    }
    if (world.waitingCount() != waiting) {
        state.SkipWithError("the number of waiting keys changed");
    }
    state.SetItemsProcessed(state.iterations() * EdgeCases::batch);
}

/// What one more client cannot do without: a copy of the names of those that hold the key, of as
/// many keys in turn.
void copyOfTheNames(benchmark::State& state, U32 holders) {
    std::vector<Pelo::String> names;
    for (U32 at = 1; at <= holders; ++at) {
        names.emplace_back(Bench::clientName(at));
    }
    std::vector<std::vector<Pelo::String>> sets(EdgeCases::sharedKeys, names);
    for (auto _ : state) {
        for (auto& set : sets) {
            std::vector<Pelo::String> copy(set);
            set.swap(copy);
        }
    }
    state.SetItemsProcessed(state.iterations() * EdgeCases::sharedKeys);
}

bool addAll() {
    EdgeCases::add("ours");
    for (U32 const held : {1000u, 4000u, 16000u, 60000u}) {
        std::string const size = std::to_string(held);
        Bench::addCase("remoteRequest", "ours", size,
                       [held](auto& state) { RemoteCases::request(state, held); });
        Bench::addCase("remoteRelease", "ours", size,
                       [held](auto& state) { RemoteCases::release(state, held); });
    }
    Bench::addCase("release", "ours", "11000",
                   [](auto& state) { EdgeCases::release(state, 11000); });
    Bench::addCase("handOver", "ours", "10000", [](auto& state) { handOver(state, 1000, 10000); });
    for (U32 const holders : {1u, 10u, 100u, 1000u}) {
        Bench::addCase("oneMoreClient", "copyOfTheNames", std::to_string(holders),
                       [holders](auto& state) { copyOfTheNames(state, holders); });
    }
    return true;
}

[[maybe_unused]] bool const added = addAll();

} // namespace
