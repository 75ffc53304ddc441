#pragma once

#include "Case.h"
#include "pelo/Integers.h"

#include <algorithm>
#include <numeric>
#include <random>
#include <string>
#include <vector>

/// The work of the pool's benchmarks, the same for every kind of pool that is measured.
///
/// A pool `P` is a set of indices from 0 to size - 1, each of which is free or taken:
///
///     explicit P(U32 size);           // all are free
///     void giveBack(U32 index);       // it is free then
///     U32 takeLowest();               // finds the lowest free index and takes it; there is one
///     U32 takeHighest();              // likewise
///     U32 highest() const;            // finds it only
///     U32 highestUpTo(U32 hi) const;  // the highest free index up to a bound; there is one
///
/// A pool has only what it can do: not all can look from the other end.
namespace Bench {

enum class End { lowest, highest };

/// Takes the free index at one end.
template <End end, class P> U32 takeAt(P& pool) {
    if constexpr (end == End::lowest) {
        return pool.takeLowest();
    } else {
        return pool.takeHighest();
    }
}

/// Random indices, drawn in advance. They are too many for a branch predictor to learn.
inline std::vector<U32> randomIndices(U32 first, U32 count) {
    std::vector<U32> indices(1u << 16);
    std::mt19937 random(1);
    std::uniform_int_distribution<U32> any(first, first + count - 1);
    for (U32& index : indices) {
        index = any(random);
    }
    return indices;
}

/// Gives a random taken index back and takes the free one at that end.
///
/// A pool that always hands out the index at one end has its taken indices there, and so has this
/// one: after every step it is again as it was before.
template <class P, End end> void churn(benchmark::State& state, U32 size, U32 taken) {
    P pool(size);
    for (U32 count = 0; count < taken; ++count) {
        takeAt<end>(pool);
    }
    auto const indices = randomIndices(end == End::lowest ? 0 : size - taken, taken);
    U32 next = 0;
    for (auto _ : state) {
        pool.giveBack(indices[next++ % (1u << 16)]);
        benchmark::DoNotOptimize(takeAt<end>(pool));
    }
    state.SetItemsProcessed(state.iterations());
}

/// Takes all indices of a pool but some that are scattered over it.
template <End end, class P> void scatter(P& pool, U32 size, U32 taken) {
    std::vector<U32> order(size);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    for (U32 count = 0; count < size; ++count) {
        takeAt<end>(pool);
    }
    for (U32 count = taken; count < size; ++count) {
        pool.giveBack(order[count]);
    }
}

/// Takes up to 64 indices at one end of a pool whose taken ones are scattered, and gives them back
/// in random order. Every one that is found lies elsewhere.
template <class P, End end> void burst(benchmark::State& state, U32 size, U32 taken) {
    P pool(size);
    scatter<end>(pool, size, taken);
    U32 const many = std::min(64u, size - taken);
    std::vector<U32> order(many);
    std::iota(order.begin(), order.end(), 0u);
    std::shuffle(order.begin(), order.end(), std::mt19937(2));
    std::vector<U32> found(many);
    for (auto _ : state) {
        for (U32& index : found) {
            index = takeAt<end>(pool);
        }
        for (U32 const at : order) {
            pool.giveBack(found[at]);
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * many);
}

/// Asks for the highest free index of a pool whose taken ones are scattered, and leaves it there.
template <class P> void findHighest(benchmark::State& state, U32 size, U32 taken) {
    P pool(size);
    scatter<End::highest>(pool, size, taken);
    for (auto _ : state) {
        benchmark::ClobberMemory(); // as if others had changed the pool in between
        benchmark::DoNotOptimize(pool.highest());
    }
    state.SetItemsProcessed(state.iterations());
}

/// Asks for the highest free index up to a random bound, in a pool whose index 0 is free.
template <class P> void findUpTo(benchmark::State& state, U32 size, U32 taken) {
    P pool(size);
    scatter<End::highest>(pool, size, taken);
    pool.giveBack(0);
    auto const bounds = randomIndices(0, size);
    U32 next = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(pool.highestUpTo(bounds[next++ % (1u << 16)]));
    }
    state.SetItemsProcessed(state.iterations());
}

/// Makes a pool and takes all of its indices, one at a time.
template <class P, End end> void fill(benchmark::State& state, U32 size) {
    for (auto _ : state) {
        P pool(size);
        for (U32 count = 0; count < size; ++count) {
            benchmark::DoNotOptimize(takeAt<end>(pool));
        }
    }
    state.SetItemsProcessed(state.iterations() * size);
}

/// Registers the cases of one kind of pool that takes from one end: "poolChurnLowest/who/1024_50"
/// with the per cent that are taken, and "poolFillLowest/who/1024".
template <class P, End end> void addPoolCases(std::string const& who) {
    std::string const suffix = end == End::lowest ? "Lowest" : "Highest";
    for (U32 const size : {256u, 1024u, 4096u, 16384u, 65536u}) {
        std::string const name = std::to_string(size);
        addCase("poolChurn" + suffix, who, name + "_50",
                [size](benchmark::State& state) { churn<P, end>(state, size, size / 2); });
        addCase("poolFill" + suffix, who, name,
                [size](benchmark::State& state) { fill<P, end>(state, size); });
        if (size >= 1024) {
            addCase("poolBurst" + suffix, who, name + "_50",
                    [size](benchmark::State& state) { burst<P, end>(state, size, size / 2); });
            addCase("poolBurst" + suffix, who, name + "_99.9", [size](benchmark::State& state) {
                burst<P, end>(state, size, size - size / 1024);
            });
            addCase("poolChurn" + suffix, who, name + "_99.9", [size](benchmark::State& state) {
                churn<P, end>(state, size, size - size / 1024);
            });
        }
    }
}

/// Registers the searches alone: "poolFindHighest/who/1024_50" and "poolFindUpTo/who/1024_50".
template <class P> void addSearchCases(std::string const& who) {
    for (U32 const size : {1024u, 16384u, 65536u}) {
        for (U32 const taken : {size / 2, size - size / 1024}) {
            auto const name = std::to_string(size) + (taken == size / 2 ? "_50" : "_99.9");
            addCase("poolFindHighest", who, name,
                    [size, taken](benchmark::State& state) { findHighest<P>(state, size, taken); });
            addCase("poolFindUpTo", who, name,
                    [size, taken](benchmark::State& state) { findUpTo<P>(state, size, taken); });
        }
    }
}

} // namespace Bench
