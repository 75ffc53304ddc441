#pragma once

#include "Case.h"
#include "pelo/Integers.h"
#include "pelo/Publisher.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace Bench {

/// The one who reacts. Like those of the library it is told of every change of an entity, and picks
/// out the field that it works on.
class Reactor {
public:
    static constexpr Pelo::FieldId watched = 258;

    void changed(Pelo::FieldId field, void const* key, void const*) noexcept {
        if (zombie_ || field != watched) {
            return;
        }
        sum_ += *static_cast<U32 const*>(key);
    }

private:
    bool zombie_ = false;
    U64 sum_ = 0;
};

/// Tells some reactors of one changed key, over and over. A `Notifier` is built with the reactors
/// and has `notify(field, key, value)`. An item is one reactor that is told.
template <class Notifier> void notifyLoop(benchmark::State& state, std::size_t count) {
    std::vector<Reactor> reactors(count);
    Notifier notifier(reactors);
    benchmark::DoNotOptimize(notifier);
    U32 key = 1;
    for (auto _ : state) {
        notifier.notify(Reactor::watched, &key, nullptr);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(count));
}

template <class Notifier> void addNotifyCases(std::string const& who) {
    for (std::size_t const count : {1u, 10u, 100u, 1000u}) {
        addCase("notify", who, std::to_string(count),
                [count](benchmark::State& state) { notifyLoop<Notifier>(state, count); });
    }
}

} // namespace Bench
