// A trace statement that nobody wants: its level is off, and the process has no ring buffer.

#include "Case.h"
#include "lumlog/RingBuffer.h"
#include "pelo/Integers.h"
#include "qor/Trace.h"

#include <benchmark/benchmark.h>

namespace {

void traceOff(benchmark::State& state) {
    Qor::TraceHandle const traces("VornicBench", false);
    Lumlog::RingBuffer* const former = Lumlog::RingBuffer::currentIs(nullptr);
    U32 number = 0;
    for (auto _ : state) {
        QOR_TRACE(traces, 5, "/bench/TraceOff", "traceOff", " number: ", number);
        benchmark::DoNotOptimize(++number);
    }
    Lumlog::RingBuffer::currentIs(former);
    state.SetItemsProcessed(state.iterations());
}

void emptyLoop(benchmark::State& state) {
    U32 number = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++number);
    }
    state.SetItemsProcessed(state.iterations());
}

[[maybe_unused]] bool const added = [] {
    Bench::addCase("traceOff", "ours", "1", traceOff);
    Bench::addCase("traceOff", "emptyLoop", "1", emptyLoop);
    return true;
}();

} // namespace
