// The command language: scripts of any lines, as `vpagent --keep-going` runs them, in memory.
//
// A script whose first line is "#people" is typed at a terminal, with completion asked for at the
// end of each line. Lines that name files are passed over.

#include "Session.h"
#include "common/Input.h"
#include "common/Stops.h"
#include "language/CommandTable.h"
#include "language/Completion.h"
#include "language/RingOptions.h"
#include "lumlog/RingBuffer.h"
#include "output/HumanReporter.h"
#include "output/JsonReporter.h"
#include "qor/Sinks.h"
#include "state/TraceLevels.h"

#include <fcntl.h>
#include <nlohmann/json.hpp>
#include <unistd.h>

#include <algorithm>
#include <memory>
#include <sstream>
#include <utility>

namespace {

using namespace VpAgent;
using Fuzz::expect;

constexpr std::size_t mostLines = 64;
constexpr std::size_t mostCopies = 2; ///< of the process, which `verify` makes
constexpr std::string_view people = "#people\n";

bool takesFile(Command const& command) {
    return std::ranges::any_of(command.arguments, [](Argument const& argument) {
        return argument.type == ArgumentType::file;
    });
}

bool isPathOption(Word const& word) {
    RingOption const* const option = findRingOption(word.text);
    return option != nullptr && option->path;
}

/// Lines of a text, without those that reach beyond the process.
class TextLines final : public LineSource {
public:
    TextLines(std::string_view text, bool terminal, Agent const& agent, Output& output)
        : left_(text), terminal_(terminal), agent_(agent), output_(output) {}

    bool next(CommandLine& line) override {
        checkOutput();
        while (!left_.empty() && number_ < mostLines) {
            std::size_t const end = std::min(left_.find('\n'), left_.size());
            line = {"fuzz", ++number_, left_.substr(0, end), terminal_};
            left_.remove_prefix(std::min(end + 1, left_.size()));
            quit_ = false;
            if (mayRun(line.text)) {
                if (terminal_) {
                    complete(line.text.substr(0, line.text.size() / 2), agent_);
                    complete(line.text, agent_);
                }
                return true;
            }
        }
        return false;
    }

    /// What the last command said: with --json one object a line. Nobody else reads it.
    void checkOutput() {
        if (terminal_) {
            output_.err().clear();
            return;
        }
        std::istringstream lines(std::exchange(output_.out(), {}));
        for (std::string line; std::getline(lines, line);) {
            expect(nlohmann::json::accept(line) && line.starts_with('{'), "no JSON: " + line);
        }
    }

    /// Whether the last line was there to end the run.
    bool quit() const { return quit_; }

private:
    bool mayRun(std::string_view text) {
        try {
            words_.read(text);
            if (words_.all().empty()) {
                return true;
            }
            Command const& command = findCommand(words_);
            quit_ = command.word == "quit";
            if (command.word == "verify" && ++copies_ > mostCopies) {
                return false;
            }
            return !takesFile(command) && std::ranges::none_of(words_.all(), isPathOption);
        } catch (Refusal const&) {
            return true; // the session has to refuse it as well
        }
    }

    std::string_view left_;
    bool terminal_;
    Agent const& agent_;
    Output& output_;
    Words words_;
    std::size_t number_ = 0;
    std::size_t copies_ = 0;
    bool quit_ = false;
};

/// One run of the agent. Its ring is small, so that showing it is quick, and its own, so that the
/// input before does not matter.
class Run {
public:
    explicit Run(bool forPeople) : forPeople_(forPeople) {
        if (forPeople) {
            reporter_ = std::make_unique<HumanReporter>(output_);
        } else {
            reporter_ = std::make_unique<JsonReporter>(output_);
        }
        agent_ = std::make_unique<Agent>(*reporter_, StartSettings{});
        Lumlog::RingBuffer::currentIs(&ring_);
        traceLevelsAre(forPeople ? 0 : ~U64{0});
        Qor::traceSinkIs(
            [this](Qor::TraceLine const& line) { reporter_->trace(line.level, line.text); });
        Qor::logSinkIs([this](Qor::LogMessage const& message) {
            agent_->logs.add(message.descriptor.id, message.descriptor.severity, message.text);
            if (!forPeople_) { // whose messages would go to standard error
                reporter_->log(message.descriptor.id, message.descriptor.severity, message.text);
            }
        });
    }
    ~Run() {
        agent_->machine.stop();
        output_.err().clear();
        Qor::traceSinkIs(nullptr);
        Qor::logSinkIs(nullptr);
        traceLevelsAre(0);
        Lumlog::RingBuffer::currentIs(nullptr);
    }
    Run(Run const&) = delete;
    Run& operator=(Run const&) = delete;

    void run(std::string_view text) {
        TextLines lines(text, forPeople_, *agent_, output_);
        Session session(*agent_, true, nullptr);
        bool const toTheEnd = session.run(lines);
        lines.checkOutput();
        expect(toTheEnd || lines.quit(), "a command broke off by another exception than Refusal");
    }

private:
    Output output_;
    bool forPeople_;
    std::unique_ptr<Reporter> reporter_;
    Lumlog::RingBuffer ring_{Lumlog::RingBuffer::minSize};
    std::unique_ptr<Agent> agent_;
};

/// What the agent prints is made and not shown.
bool silenceOutput() {
    int const nowhere = ::open("/dev/null", O_WRONLY | O_CLOEXEC);
    return nowhere >= 0 && ::dup2(nowhere, STDOUT_FILENO) == STDOUT_FILENO && ::close(nowhere) == 0;
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    static bool const silent = silenceOutput();
    expect(silent, "standard output cannot be silenced");
    std::string_view text = Fuzz::Input(data, size).rest();
    bool const forPeople = text.starts_with(people);
    bool const ended = Fuzz::endsByItself([&] { std::make_unique<Run>(forPeople)->run(text); });
    if (!ended) {
        Lumlog::RingBuffer::current()->~RingBuffer(); // the largest part of what is abandoned
    }
    return 0;
}
