// The pool of indices: what one allocation and one release cost, by size and by how full the table
// is.

#include "bask/Bitmap.h"
#include "pelo/Ptr.h"

#include <benchmark/benchmark.h>

namespace {

using Bask::Bitmap;
using Bask::Preference;

/// A pool of `size` bits whose lowest `used` are set.
Pelo::Ptr<Bitmap> poolWith(U32 size, U32 used) {
    auto pool = Pelo::newNode<Bitmap>(U64{0}, size, Bask::HBitmap::BitState::clear);
    for (U32 at = 0; at < used; ++at) {
        pool->setBit(at);
    }
    return pool;
}

void churn(benchmark::State& state, Preference preference) {
    auto const size = static_cast<U32>(state.range(0));
    auto const pool = poolWith(size, size - size / 1024 - 1); // 99.9 % full
    U32 freed = size / 2;
    for (auto _ : state) {
        pool->clearBit(freed);
        U32 const index = pool->findClearBitInRange(0, size - 1, preference);
        pool->setBit(index);
        benchmark::DoNotOptimize(index);
        freed = (freed + 7919) % (size / 2);
    }
}

void poolChurnLowest(benchmark::State& state) { churn(state, Preference::low); }
void poolChurnHighest(benchmark::State& state) { churn(state, Preference::high); }
BENCHMARK(poolChurnLowest)->Arg(1024)->Arg(16384)->Arg(65535);
BENCHMARK(poolChurnHighest)->Arg(1024)->Arg(16384)->Arg(65535);

void poolFill(benchmark::State& state) {
    auto const size = static_cast<U32>(state.range(0));
    for (auto _ : state) {
        auto const pool = poolWith(size, 0);
        for (U32 at = 0; at < size; ++at) {
            pool->setBit(pool->findClearBitInRange(0, size - 1, Preference::low));
        }
        benchmark::DoNotOptimize(pool->numBitsInSetState());
    }
    state.SetItemsProcessed(state.iterations() * state.range(0));
}
BENCHMARK(poolFill)->Arg(1024)->Arg(16384)->Arg(65535);

} // namespace
