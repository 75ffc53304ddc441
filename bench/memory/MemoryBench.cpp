// What a table takes: the bytes of a virtual port with everything that is kept for it (the config's
// and the status's members, the reference with its names, the pool, the interface's name), and the
// process that holds a large table.
//
// A child process holds the table and says what it takes. The heap's bytes are those of mallinfo2,
// which counts what malloc adds to each block, and room that collections hold in reserve.

#include "Case.h"

#include <cstddef>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>

namespace {

struct Taken {
    std::size_t heap = 0;
    std::size_t process = 0;
    std::size_t processAtMost = 0;
};

struct Close {
    void operator()(std::FILE* pipe) const { ::pclose(pipe); }
};

Taken holdTable(std::size_t vports, std::size_t clients) {
    std::string const command =
        HOLD_TABLE " " + std::to_string(vports) + ' ' + std::to_string(clients);
    std::unique_ptr<std::FILE, Close> const pipe(::popen(command.c_str(), "r"));
    Taken taken;
    if (!pipe || std::fscanf(pipe.get(), "%zu %zu %zu", &taken.heap, &taken.process,
                             &taken.processAtMost) != 3) {
        throw std::runtime_error("no answer of: " + command);
    }
    return taken;
}

void memory(benchmark::State& state, std::size_t vports, std::size_t clients) {
    Taken taken;
    for (auto _ : state) {
        taken = holdTable(vports, clients);
    }
    constexpr double bytesInMiB = 1024 * 1024;
    state.counters["bytesEach"] = static_cast<double>(taken.heap) / static_cast<double>(vports);
    state.counters["MiB"] = static_cast<double>(taken.process) / bytesInMiB;
    state.counters["peakMiB"] = static_cast<double>(taken.processAtMost) / bytesInMiB;
}

[[maybe_unused]] bool const added = [] {
    auto const add = [](std::string const& subject, std::size_t vports, std::size_t clients) {
        Bench::addCase(subject, "ours", std::to_string(vports),
                       [=](benchmark::State& state) { memory(state, vports, clients); })
            ->Iterations(1)
            ->UseRealTime()
            ->Unit(benchmark::kMillisecond);
    };
    for (std::size_t const vports : {1000u, 2000u, 5000u, 10000u, 20000u, 40000u, 60000u}) {
        add("memory", vports, 1);
        add("memory4Clients", vports, 4);
    }
    return true;
}();

} // namespace
