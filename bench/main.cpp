#include "qor/Sinks.h"

#include <benchmark/benchmark.h>

/// Runs the benchmarks. The log messages of full tables are made and dropped: what a terminal or a
/// file costs is not the library's.
int main(int argc, char** argv) {
    Qor::logSinkIs([](Qor::LogMessage const&) {});
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) {
        return 2;
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
