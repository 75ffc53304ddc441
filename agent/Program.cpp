#include "Program.h"

#include "Session.h"
#include "input/FileLines.h"
#include "input/TerminalLines.h"
#include "output/HumanReporter.h"
#include "output/JsonReporter.h"
#include "qor/Sinks.h"
#include "state/TraceLevels.h"
#include "statefile/OwnFiles.h"
#include "statefile/StateFile.h"
#include "text/Utf8.h"

#include <cstdio>
#include <cstdlib>
#include <exception>
#include <memory>
#include <new>

namespace VpAgent {

namespace {

using Sources = std::vector<std::unique_ptr<LineSource>>;

/// Reports of the library go to the reporter. A failed assertion ends the process, so what was
/// reported before it is sent first.
class Sinks {
public:
    Sinks(Agent& agent, Output& output) {
        Qor::traceSinkIs(
            [&agent](Qor::TraceLine const& line) { agent.reporter.trace(line.level, line.text); });
        Qor::logSinkIs([&agent](Qor::LogMessage const& message) {
            agent.logs.add(message.descriptor.id, message.descriptor.severity, message.text);
            agent.reporter.log(message.descriptor.id, message.descriptor.severity, message.text);
        });
        Qor::assertionSinkIs([&output](Qor::AssertionFailure const& failure) {
            std::string& err = output.err();
            err += std::string(failure.unit) + ':' + std::to_string(failure.line) + ": ";
            err += std::string(failure.function) + ": Assertion '" + std::string(failure.text) +
                   "' failed.\n";
            output.flush();
        });
    }
    ~Sinks() {
        Qor::traceSinkIs(nullptr);
        Qor::logSinkIs(nullptr);
        Qor::assertionSinkIs(nullptr);
    }
    Sinks(Sinks const&) = delete;
    Sinks& operator=(Sinks const&) = delete;
};

std::unique_ptr<Reporter> makeReporter(Options const& options, Output& output) {
    if (options.json) {
        return std::make_unique<JsonReporter>(output);
    }
    return std::make_unique<HumanReporter>(output);
}

/// Opens all scripts before the first command is run, so that an unreadable one has no effect.
Sources openSources(Options const& options, Agent const& agent) {
    std::vector<std::string> names = options.scripts;
    if (names.empty()) {
        names.emplace_back("-");
    }
    Sources sources;
    for (std::string const& name : names) {
        if (name == "-" && TerminalLines::available()) {
            sources.push_back(std::make_unique<TerminalLines>(agent));
        } else {
            sources.push_back(
                std::make_unique<FileLines>(name, [&agent] { agent.reporter.flush(); }));
        }
    }
    return sources;
}

std::unique_ptr<StateFile> openStateFile(Options const& options, Agent& agent) {
    return options.stateFile ? StateFile::open(*options.stateFile, agent.database) : nullptr;
}

int runSources(Options const& options, Agent& agent, Output& output) {
    try {
        OwnFiles const ownFiles(options.stateFile);
        Sources const sources = openSources(options, agent);
        std::unique_ptr<StateFile> const stateFile = openStateFile(options, agent);
        Session session(agent, options.keepGoing, stateFile.get());
        for (auto const& source : sources) {
            if (!session.run(*source)) {
                break;
            }
        }
        return session.exitStatus();
    } catch (Refusal const& refusal) {
        output.err() += "vpagent: " + printable(refusal.what()) + '\n';
        return failureStatus;
    }
}

/// Names an exception that ends the program, also when there is no memory left to do so with.
void writeReason(char const* reason) noexcept {
    try {
        std::string const line =
            "vpagent: ended by an exception that nobody can handle (" + printable(reason) + ")\n";
        std::fwrite(line.data(), 1, line.size(), stderr);
    } catch (std::bad_alloc const&) {
        std::fputs("vpagent: ended, because there is no memory left\n", stderr);
    }
}

/// The end that an exception makes of the program where nobody can catch it, as in a notification:
/// what was reported before it is sent first.
class Ending {
public:
    explicit Ending(Output& output) {
        output_ = &output;
        std::set_terminate(flushAndAbort);
    }
    ~Ending() { output_ = nullptr; }
    Ending(Ending const&) = delete;
    Ending& operator=(Ending const&) = delete;

private:
    [[noreturn]] static void flushAndAbort() {
        if (output_ != nullptr) {
            output_->flush();
        }
        try {
            if (std::current_exception()) {
                throw;
            }
            writeReason("of an unknown kind");
        } catch (std::exception const& exception) {
            writeReason(exception.what());
        } catch (...) {
            writeReason("of an unknown kind");
        }
        std::abort();
    }

    static inline Output* output_ = nullptr;
};

} // namespace

int runProgram(Options const& options) {
    Output output;
    Ending const ending(output);

    std::unique_ptr<Reporter> const reporter = makeReporter(options, output);
    int status = 0;
    {
        Agent agent(*reporter, options.defaults);
        traceLevelsAre(options.traceLevels);
        Sinks const sinks(agent, output);
        status = runSources(options, agent, output);
        agent.machine.stop();
    }
    output.flush();
    return output.failed() ? failureStatus : status;
}

} // namespace VpAgent
