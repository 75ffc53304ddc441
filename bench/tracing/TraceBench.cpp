// What a trace costs: switched off, recorded in the ring buffer, and a notification beside them.

#include "lumlog/RingBuffer.h"
#include "pelo/Publisher.h"
#include "pelo/String.h"
#include "qor/Trace.h"

#include <benchmark/benchmark.h>

namespace {

constexpr char const* unit = "/bench/Trace";

Qor::TraceHandle& handle() {
    static Qor::TraceHandle instance("VornicBench", false);
    return instance;
}

void traceOff(benchmark::State& state) {
    Lumlog::RingBuffer* const former = Lumlog::RingBuffer::currentIs(nullptr);
    Qor::TraceHandle& traces = handle();
    U32 number = 0;
    for (auto _ : state) {
        QOR_TRACE(traces, 5, unit, "traceOff", " number: ", number);
        benchmark::DoNotOptimize(++number);
    }
    Lumlog::RingBuffer::currentIs(former);
}
BENCHMARK(traceOff);

void emptyLoop(benchmark::State& state) {
    U32 number = 0;
    for (auto _ : state) {
        benchmark::DoNotOptimize(++number);
    }
}
BENCHMARK(emptyLoop);

void ringRecord(benchmark::State& state) {
    Lumlog::RingBuffer ring(Lumlog::RingBuffer::defaultSize);
    Lumlog::RingBuffer* const former = Lumlog::RingBuffer::currentIs(&ring);
    Qor::TraceHandle& traces = handle();
    Pelo::String const client("bgp");
    Pelo::String const intf("Ethernet1/1");
    U32 number = 0;
    for (auto _ : state) {
        QOR_TRACE(traces, 5, unit, "ringRecord", " name: ", client, " intf: ", intf,
                  " number: ", number);
        benchmark::DoNotOptimize(++number);
    }
    Lumlog::RingBuffer::currentIs(former);
}
BENCHMARK(ringRecord);

void count(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId, void const* key,
           void const*) noexcept {
    subscriber->owner<U32>() += *static_cast<U32 const*>(key);
}

void notification(benchmark::State& state) {
    Pelo::Publisher publisher;
    U32 sum = 0;
    Pelo::Subscriber subscriber(&sum, &count);
    publisher.subscriberAdd(&subscriber, false);
    U32 key = 1;
    for (auto _ : state) {
        publisher.publishChangeRecursive(258, &key, nullptr, &Pelo::keysEqual<U32>);
        benchmark::DoNotOptimize(sum);
    }
}
BENCHMARK(notification);

} // namespace
