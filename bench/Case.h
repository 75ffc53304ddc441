#pragma once

#include <benchmark/benchmark.h>

#include <string>
#include <utility>

namespace Bench {

/// Registers `run(state)` as the benchmark `subject/who/size`, a name that `bench/goals.json` uses.
///
/// `who` is "ours", the name of a peer's package or type, or the name of a loop that stands for the
/// limit. All who have the same subject and size do the same work on the same data.
template <class Run>
benchmark::internal::Benchmark* addCase(std::string const& subject, std::string const& who,
                                        std::string const& size, Run&& run) {
    return benchmark::RegisterBenchmark((subject + '/' + who + '/' + size).c_str(),
                                        std::forward<Run>(run));
}

} // namespace Bench
