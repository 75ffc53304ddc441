// A script of a million commands, replayed as `vpagent SCRIPT` does it: in memory and with a state
// file, for people and as JSON. Beside it the least that such a script can cost: its lines read,
// each parsed, and the library called.

#include "Case.h"
#include "Session.h"
#include "agent/ReplayScript.h"
#include "input/FileLines.h"
#include "language/Arguments.h"
#include "language/CommandTable.h"
#include "output/HumanReporter.h"
#include "output/JsonReporter.h"
#include "state/Agent.h"
#include "statefile/StateFile.h"

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <fstream>
#include <stdexcept>
#include <string>

namespace {

using Bench::ReplayScript;

constexpr std::size_t commands = 1000000;

/// What is written to it is discarded.
class Discard {
public:
    Discard() : file_(::open("/dev/null", O_WRONLY | O_CLOEXEC)) {
        if (file_ < 0) {
            throw std::runtime_error("cannot open /dev/null");
        }
    }
    ~Discard() { ::close(file_); }
    Discard(Discard const&) = delete;
    Discard& operator=(Discard const&) = delete;

    int file() const noexcept { return file_; }

private:
    int file_;
};

std::string scriptFor(ReplayScript::Unit unit) {
    static std::array<ReplayScript, 2> const scripts{
        ReplayScript(commands, ReplayScript::Unit::none),
        ReplayScript(commands, ReplayScript::Unit::one)};
    return scripts[unit == ReplayScript::Unit::one ? 1 : 0].path().string();
}

void finish(benchmark::State& state) {
    state.SetItemsProcessed(state.iterations() * static_cast<benchmark::IterationCount>(commands));
}

/// A folder beside the running program, so that the file is on the disk that is built on.
std::filesystem::path stateFolder() {
    return std::filesystem::current_path() / "bench-replay-state";
}

void runScript(std::string const& script, VpAgent::Reporter& reporter, bool keepState) {
    VpAgent::Agent agent(reporter, {});
    auto const file =
        keepState ? VpAgent::StateFile::open(stateFolder() / "state", agent.database) : nullptr;
    VpAgent::FileLines lines(script, [&] { reporter.flush(); });
    VpAgent::Session session(agent, false, file.get());
    session.run(lines);
    if (session.exitStatus() != 0) {
        throw std::runtime_error("a command of the script was refused");
    }
    agent.machine.stop();
}

template <class Reporter> void replay(benchmark::State& state, bool keepState) {
    auto const script = scriptFor(keepState ? ReplayScript::Unit::one : ReplayScript::Unit::none);
    Discard const discard;
    for (auto _ : state) {
        state.PauseTiming();
        std::filesystem::remove_all(stateFolder());
        std::filesystem::create_directories(stateFolder());
        state.ResumeTiming();
        VpAgent::Output output(discard.file(), discard.file());
        Reporter reporter(output);
        runScript(script, reporter, keepState);
    }
    std::filesystem::remove_all(stateFolder());
    finish(state);
}

/// What the commands of the script do, without the program around it.
void callLibrary(VpAgent::Agent& agent, VpAgent::Command const& command,
                 VpAgent::Arguments const& arguments) {
    if (command.word == "request" || command.word == "withdraw") {
        bool const wanted = command.word == "request";
        auto& config = *agent.database.find(arguments.client->text)->config;
        arguments.vport->visit([&](auto kind, auto const& key) {
            if (wanted) {
                config.is<decltype(kind)>(key, true);
            } else {
                config.del<decltype(kind)>(key);
            }
        });
    } else {
        benchmark::DoNotOptimize(command.run(agent, arguments));
    }
}

void direct(benchmark::State& state) {
    auto const script = scriptFor(ReplayScript::Unit::none);
    Discard const discard;
    for (auto _ : state) {
        VpAgent::Output output(discard.file(), discard.file());
        VpAgent::HumanReporter reporter(output);
        VpAgent::Agent agent(reporter, {});
        std::ifstream lines(script);
        VpAgent::Words words;
        for (std::string line; std::getline(lines, line);) {
            words.read(line);
            auto const& command = VpAgent::findCommand(words);
            callLibrary(agent, command, VpAgent::parseArguments(command, words));
        }
        agent.machine.stop();
    }
    finish(state);
}

[[maybe_unused]] bool const added = [] {
    auto const add = [](std::string const& who, std::string const& size, auto run) {
        return Bench::addCase("replay", who, size, run)
            ->Iterations(1)
            ->Unit(benchmark::kMillisecond);
    };
    using VpAgent::HumanReporter;
    using VpAgent::JsonReporter;
    add("ours", "memory", [](benchmark::State& state) { replay<HumanReporter>(state, false); });
    add("ours", "json", [](benchmark::State& state) { replay<JsonReporter>(state, false); });
    add("ours", "state", [](benchmark::State& state) {
        replay<HumanReporter>(state, true);
    })->UseRealTime();
    add("getlineAndCalls", "memory", direct);
    return true;
}();

} // namespace
