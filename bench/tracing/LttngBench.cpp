// LTTng-UST: a tracepoint that a running session records in a flight recorder of its own, buffers
// of 4 MiB a processor in which new events overwrite the oldest, so that none is dropped and none
// is written to a file.

#include "tracing/LttngModule.h"

#include <dlfcn.h>
#include <stdlib.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <string>

namespace {

/// The loop of the module, in whose process the tracepoint is on by then, or what is in the way.
struct LttngLoop {
    decltype(&lttngRecordLoop) run = nullptr;
    std::string obstacle;
};

/// Starts a session that ends with this process, and loads the module.
LttngLoop startLttng() {
    std::string home = std::filesystem::temp_directory_path() / "vornic-bench-lttng-";
    home.append(6, 'X'); // which mkdtemp replaces
    if (mkdtemp(home.data()) == nullptr) {
        return {nullptr, "no temporary folder"};
    }
    setenv("LTTNG_HOME", home.c_str(), 1);
    std::string const command = LTTNG_SESSION " " + std::to_string(getpid());
    FILE* const session = popen(command.c_str(), "r"); // open until this process ends
    char ready[8];
    if (session == nullptr || std::fgets(ready, sizeof ready, session) == nullptr) {
        return {nullptr, "no session of LTTng could be started"};
    }
    void* const module = dlopen(LTTNG_MODULE, RTLD_NOW);
    void* const loop = module == nullptr ? nullptr : dlsym(module, "lttngRecordLoop");
    if (loop == nullptr) {
        return {nullptr, dlerror()};
    }
    return {reinterpret_cast<decltype(&lttngRecordLoop)>(loop), {}};
}

void lttng(benchmark::State& state, Bench::RecordTexts const& texts) {
    static LttngLoop const loop = startLttng();
    if (loop.run == nullptr) {
        state.SkipWithError(loop.obstacle.c_str());
        return;
    }
    loop.run(state, texts);
}

[[maybe_unused]] bool const added = [] {
    Bench::forEachRecordSize([](std::string const& size, Bench::RecordTexts const& texts) {
        Bench::addCase("record", "lttng-ust", size,
                       [texts](benchmark::State& state) { lttng(state, texts); });
    });
    return true;
}();

} // namespace
