#pragma once

#include "Case.h"
#include "pelo/Integers.h"
#include "pelo/String.h"

#include <benchmark/benchmark.h>

#include <cstddef>
#include <string>

namespace Bench {

/// The two texts of a record, as long as its case says; the third value is a number that changes.
struct RecordTexts {
    Pelo::String client;
    Pelo::String intf;
};

/// Records the same three values over and over; a record bears the time besides. A `Recorder` is
/// built with the texts, which it may keep in the form that it takes best, and has
/// `record(number)`.
template <class Recorder> void recordLoop(benchmark::State& state, RecordTexts const& texts) {
    Recorder recorder(texts);
    benchmark::DoNotOptimize(recorder);
    U32 number = 0;
    for (auto _ : state) {
        recorder.record(number);
        benchmark::DoNotOptimize(++number);
    }
    state.SetItemsProcessed(state.iterations());
}

/// Calls `add(size, texts)` for each length of the texts: "short" is the length of real names.
template <class Add> void forEachRecordSize(Add&& add) {
    add("short", RecordTexts{"bgp", "Ethernet1/1"});
    for (std::size_t const length : {0u, 4u, 8u, 16u, 32u, 64u}) {
        Pelo::String const text(std::string(length, 'x'));
        add(std::to_string(length), RecordTexts{text, text});
    }
}

template <class Recorder> void addRecordCases(std::string const& who) {
    forEachRecordSize([&](std::string const& size, RecordTexts const& texts) {
        addCase("record", who, size,
                [texts](benchmark::State& state) { recordLoop<Recorder>(state, texts); });
    });
}

} // namespace Bench
