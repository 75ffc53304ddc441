#include "agent/KillableRun.h"
#include "agent/RunVpagent.h"
#include "agent/State.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <memory>
#include <numeric>
#include <optional>
#include <random>
#include <set>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

using Commands = std::vector<std::string>;

class Chance {
public:
    explicit Chance(unsigned seed) : random_(seed) {}

    unsigned below(unsigned bound) {
        return std::uniform_int_distribution<unsigned>(0, bound - 1)(random_);
    }
    bool oneIn(unsigned count) { return below(count) == 0; }

private:
    std::mt19937 random_;
};

/// Makes commands of a small world: a table of a few indices that clients compete for.
class Script {
public:
    explicit Script(Chance& chance) : chance_(chance) {}

    /// The clients whose configs are in the directory, so that a `dump` shows what they request.
    void listedAre(std::set<std::string> names) { listed_ = std::move(names); }

    std::string next() {
        unsigned const what = chance_.below(100);
        if (what < 65 && !listed_.empty()) {
            std::string const client = listedName();
            return (what < 45 ? "request " : "withdraw ") + client + ' ' + vport();
        }
        if (what < 75) {
            return ofClients();
        }
        static char const* const others[] = {"start table-size=13",
                                             "start table-size=18",
                                             "stop",
                                             "restart",
                                             "restart table-size=15",
                                             "save-boot",
                                             "clear boot",
                                             "clear-stale",
                                             "begin",
                                             "begin",
                                             "commit",
                                             "commit",
                                             "commit",
                                             "verify",
                                             "clear waiting",
                                             "drop reference vlan 1",
                                             "nonsense"};
        return others[chance_.below(std::size(others))];
    }

private:
    std::string listedName() {
        auto it = listed_.begin();
        std::advance(it, chance_.below(static_cast<unsigned>(listed_.size())));
        return *it;
    }

    std::string ofClients() {
        std::string const name(1, static_cast<char>('a' + chance_.below(4)));
        unsigned const what = chance_.below(6);
        if (what < 4) {
            listed_.insert(name);
            return "client add " + name;
        }
        listed_.erase(name);
        return (what == 4 ? "client remove " : "client retire ") + name;
    }

    std::string vport() {
        std::string const number = std::to_string(1 + chance_.below(4));
        switch (chance_.below(5)) {
        case 0:
            return "remote 10.0.0." + number + "@17";
        case 1:
            return "mlag 2001:db8::" + number + "@17";
        case 2:
            return "edge Ethernet" + number + ":100";
        case 3:
            return "efilter \"Port " + number + "\"";
        default:
            return "vlan " + number;
        }
    }

    Chance& chance_;
    std::set<std::string> listed_;
};

/// The same commands in memory, where a kill takes back what a state file does not keep.
class Memory {
public:
    Memory() { replay(); }

    /// False when the command ends the program; it has then no effect.
    bool apply(std::string const& command) {
        run_->write(command + '\n');
        if (!run_->readAnswers(run_->answers().size() + 1)) {
            replay();
            return false;
        }
        history_.push_back(command);
        bool const done = run_->answers().back().starts_with("{\"ok\"");
        if (done && command == "begin") {
            unit_ = history_.size() - 1;
        } else if (done && command == "commit") {
            unit_.reset();
        }
        if (!unit_) {
            durable_ = run_->database();
        }
        return true;
    }

    void kill() {
        if (unit_) {
            history_.resize(*unit_);
            unit_.reset();
            replay();
        }
        apply("stop");
    }

    /// What a state file holds now.
    std::string const& durable() const noexcept { return durable_; }

private:
    void replay() {
        run_ = std::make_unique<KillableRun>("");
        for (std::string const& command : history_) {
            run_->write(command + '\n');
        }
        ASSERT_TRUE(run_->readAnswers(history_.size()));
        if (!unit_) {
            durable_ = run_->database();
        }
    }

    std::unique_ptr<KillableRun> run_;
    Commands history_;
    std::optional<std::size_t> unit_; ///< where in the history the open unit begins
    std::string durable_;
};

/// What a life has been through, to be read after a failure.
class History {
public:
    /// A run was killed, by the way in `how`, after it had given these answers to what was sent.
    void killed(std::string const& how, Commands const& sent, Commands const& answers) {
        text_ += "round " + std::to_string(rounds_++) + ": " + how + ", " +
                 std::to_string(answers.size()) + " of " + std::to_string(sent.size()) +
                 " acknowledged\n";
        for (std::size_t at = 0; at < sent.size(); ++at) {
            text_ += "    " + sent[at] + "  # " +
                     (at < answers.size() ? answers[at] : "not acknowledged") + '\n';
        }
    }

    std::string const& text() const noexcept { return text_; }

private:
    unsigned rounds_ = 0;
    std::string text_;
};

/// Whether a child of this process has ended by itself and nobody has looked at it yet.
bool aChildHasEnded() {
    siginfo_t info{};
    return ::waitid(P_ALL, 0, &info, WEXITED | WNOHANG | WNOWAIT) == 0 && info.si_pid != 0;
}

/// One state file through a life of kills.
class RandomKill : public testing::TestWithParam<unsigned> {
protected:
    RandomKill() : chance_(GetParam()), script_(chance_) {}

    static void SetUpTestSuite() { killsBeforeTheEnd_ = stops_ = 0; }

    /// Kills of runs that have nothing left to do prove little.
    static void TearDownTestSuite() {
        std::cout << killsBeforeTheEnd_ << " runs were killed before their last answer, and "
                  << stops_ << " had stopped by themselves, as in memory\n";
        EXPECT_GT(killsBeforeTheEnd_, 0u) << "all kills came after the last answer";
    }

    /// After a failure all that is needed to understand it: the commands and answers of the life,
    /// and the files as the last kill left them.
    void TearDown() override {
        if (HasFailure()) {
            std::filesystem::path const kept =
                std::filesystem::path(testing::TempDir()) /
                ("vpagent-kill-" + std::to_string(GetParam()) + "-" + std::to_string(::getpid()));
            copyFiles(left_.path(), kept);
            ADD_FAILURE() << "the life of seed " << GetParam() << ":\n"
                          << history_.text() << "what the last kill left is kept in " << kept;
        }
    }

    std::string path() const { return (folder_.path() / "state").string(); }

    /// Starts a run, which must find all that was acknowledged, and what was under way as a whole
    /// or not at all. Null when it does not.
    std::unique_ptr<KillableRun> nextRun() {
        copyFiles(folder_.path(), left_.path());
        auto run = std::make_unique<KillableRun>(path());
        std::string const database = run->database();
        resolve(database);
        if (HasFailure()) {
            return nullptr;
        }
        std::set<std::string> listed;
        Json const parsed = Json::parse(database); // the walk below does not keep it
        for (auto const& [name, config] : parsed.at("config").items()) {
            listed.insert(name);
        }
        script_.listedAre(std::move(listed));
        return run;
    }

    /// Finds out with which of the commands that were sent the killed run had ended: with the last
    /// one that was answered, or with the next one that changed the file.
    void resolve(std::string const& database) {
        std::size_t count = 0;
        while (count < answered_) {
            ASSERT_TRUE(memory_.apply(sent_[count]))
                << "acknowledged, but ends the program in memory: " << sent_[count];
            ++count;
        }
        std::string const acknowledged = memory_.durable();
        while (database != memory_.durable() && memory_.durable() == acknowledged &&
               count < sent_.size() && memory_.apply(sent_[count])) {
            ++count;
        }
        ASSERT_EQ(database, memory_.durable())
            << answered_ << " of " << sent_.size() << " acknowledged, which left:\n"
            << acknowledged;
        if (stopped_) {
            ASSERT_TRUE(count < sent_.size() && !memory_.apply(sent_[count]))
                << "a stop that the same commands in memory do not meet";
        }
        memory_.kill();
    }

    /// Sends commands in one of several ways, and kills the run at some moment.
    void sendAndKill(KillableRun& run, bool early) {
        makeCommands();
        std::size_t const before = run.answers().size();
        unsigned const way = chance_.below(3);
        std::string how;
        if (early || way == 0) {
            run.write(all());
            how = "sent at once" + wait(early ? 20000 : 8000);
        } else if (way == 1) {
            run.write(all());
            run.readAnswers(before + sent_.size());
            run.endInput();
            how = "sent at once, answers awaited, input ended" + wait(4000);
        } else {
            std::size_t const last = chance_.below(static_cast<unsigned>(sent_.size()));
            for (std::size_t at = 0; at < last; ++at) {
                run.write(sent_[at] + '\n');
                run.readAnswers(before + at + 1);
            }
            run.write(sent_[last] + '\n');
            sent_.resize(last + 1);
            how = "sent one by one" + wait(600);
        }
        bool const ended = aChildHasEnded();
        run.kill();
        expectEnd(run.status(), way == 1 && !early);
        answered_ = run.answers().size() - before;
        killsBeforeTheEnd_ += !ended && answered_ < sent_.size() ? 1u : 0u;
        auto const first = run.answers().begin() + static_cast<std::ptrdiff_t>(before);
        history_.killed(how + (ended ? ", after it had ended" : "") +
                            (early ? ", the run after one that was killed at once" : ""),
                        sent_, Commands(first, run.answers().end()));
    }

    /// A run ends by the kill, when its input ends, or by a stop of the library.
    void expectEnd(int status, bool inputEnded) {
        int const signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
        stopped_ = signal == SIGABRT;
        stops_ += stopped_ ? 1u : 0u;
        EXPECT_TRUE(stopped_ || signal == SIGKILL || (inputEnded && WIFEXITED(status)))
            << "wait status " << status;
    }

    void makeCommands() {
        sent_.clear();
        for (unsigned count = 1 + chance_.below(30); count != 0; --count) {
            sent_.push_back(script_.next());
        }
    }

    std::string all() const {
        std::string text;
        for (std::string const& command : sent_) {
            text += command + '\n';
        }
        return text;
    }

    /// Waits for less than so long, and says for how long.
    std::string wait(unsigned microseconds) {
        unsigned const chosen = chance_.below(microseconds);
        ::usleep(chosen);
        return ", killed after " + std::to_string(chosen) + " microseconds";
    }

    static void copyFiles(std::filesystem::path const& from, std::filesystem::path const& to) {
        std::filesystem::remove_all(to);
        std::filesystem::copy(from, to);
    }

    inline static unsigned killsBeforeTheEnd_ = 0; ///< while an answer was still to come
    inline static unsigned stops_ = 0;

    TemporaryFolder folder_;
    TemporaryFolder left_; ///< a copy of the files as the last kill left them
    Chance chance_;
    Script script_;
    Memory memory_;
    Commands sent_;
    std::size_t answered_ = 0;
    bool stopped_ = false; ///< the last run, by itself
    History history_;
};

constexpr unsigned killsOfALife = 40;

/// A number from the environment, so that a long run kills more often and at other moments.
unsigned fromEnvironment(char const* name, unsigned otherwise) {
    char const* const value = std::getenv(name);
    return value == nullptr ? otherwise : static_cast<unsigned>(std::stoul(value));
}

/// VORNIC_KILL_SEED is the seed of the first life, and VORNIC_KILLS the number of kills in all
/// lives, rounded up to whole lives; each life has a few more, early in its runs.
std::vector<unsigned> seedsOfLives() {
    unsigned const kills = fromEnvironment("VORNIC_KILLS", 8 * killsOfALife);
    std::vector<unsigned> seeds((kills + killsOfALife - 1) / killsOfALife);
    std::iota(seeds.begin(), seeds.end(), fromEnvironment("VORNIC_KILL_SEED", 1));
    return seeds;
}

TEST_P(RandomKill, LosesNothingThatWasAcknowledged) {
    unsigned kills = 0;
    for (unsigned round = 0; round < killsOfALife; ++round) {
        auto run = nextRun();
        if (HasFailure()) {
            return;
        }
        bool const early = chance_.oneIn(4);
        if (early) {
            run->kill();
            ++kills;
            run = std::make_unique<KillableRun>(path());
        }
        sendAndKill(*run, early);
        ++kills;
    }
    nextRun();
    std::cout << "1 life, seed " << GetParam() << ": " << kills << " kills\n";
}

INSTANTIATE_TEST_SUITE_P(Seeds, RandomKill, testing::ValuesIn(seedsOfLives()));

} // namespace
} // namespace VpAgentTest
