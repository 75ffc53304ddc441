#include "VornicL3Shared/model/Campaign.h"
#include "support/Sanitizers.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <exception>
#include <limits>
#include <stdexcept>
#include <string_view>
#include <vector>

/// The comparison itself: a model with one wrong belief must disagree with the library.
namespace ModelTest {
namespace {

/// A failure of a model with these beliefs, which must come within a few hundred sequences.
Failure failureOf(Flavour const& flavour, Beliefs const& beliefs) {
    Effort const effort{.sequences = 400};
    auto const failure = campaignInChildren(flavour, effort, beliefs);
    EXPECT_TRUE(failure) << "no sequence from seed " << effort.firstSeed << " on notices it";
    return failure.value_or(Failure{});
}

bool fails(Sequence const& sequence, Beliefs const& beliefs) {
    return runInChild(sequence, beliefs).has_value();
}

TEST(ModelCanary, SwappedRecycleOrderIsFoundAndShrunk) {
    Beliefs beliefs;
    std::swap(beliefs.recycleOrder[0], beliefs.recycleOrder[1]);
    Failure const failure = failureOf(fullTables(), beliefs);
    // Two clients or one, a start, an index in use, two keys that wait for it, and its release.
    EXPECT_LE(failure.shrunk.steps.size(), 10u) << failure.text();
    EXPECT_NE(failure.mismatch.what.find("reports differ"), std::string::npos) << failure.text();
}

TEST(ModelCanary, EveryStepOfAShrunkSequenceIsNeeded) {
    Beliefs beliefs;
    std::swap(beliefs.recycleOrder[3], beliefs.recycleOrder[4]);
    Failure const failure = failureOf(fullTables(), beliefs);
    EXPECT_TRUE(fails(failure.shrunk, beliefs)) << failure.text();
    for (std::size_t at = 0; at < failure.shrunk.steps.size(); ++at) {
        Sequence rest = failure.shrunk;
        rest.steps.erase(rest.steps.begin() + static_cast<std::ptrdiff_t>(at));
        EXPECT_FALSE(fails(rest, beliefs)) << "without step " << at << ":\n" << failure.text();
    }
}

TEST(ModelCanary, SameSeedGivesTheSameSequence) {
    EXPECT_EQ(scriptOf(generated(hostileRecords(), 7, 150)),
              scriptOf(generated(hostileRecords(), 7, 150)));
    EXPECT_NE(scriptOf(generated(hostileRecords(), 7, 150)),
              scriptOf(generated(hostileRecords(), 8, 150)));
}

TEST(ModelCanary, WrongPreferenceIsFound) {
    Beliefs beliefs;
    beliefs.localKindsAskHigh = false;
    Failure const failure = failureOf(politeClients(), beliefs);
    EXPECT_LE(failure.shrunk.steps.size(), 4u) << failure.text();
}

TEST(ModelCanary, WrongCounterIsFound) {
    Beliefs beliefs;
    beliefs.sharedIndicesCountAsRequests = true;
    Failure const failure = failureOf(politeClients(), beliefs);
    EXPECT_LE(failure.shrunk.steps.size(), 6u) << failure.text();
}

TEST(ModelCanary, WrongConditionOfBootRecoveryIsFound) {
    Beliefs beliefs;
    beliefs.hinderBootRecovery.push_back(Kind::mlag);
    Flavour const restarts{{{Verb::putReference, 2},
                            {Verb::putBoot, 2},
                            {Verb::clearReferences, 2},
                            {Verb::restart, 1}}};
    Failure const failure = failureOf(restarts, beliefs);
    // The start, an MLAG reference, a saved index of another kind, and the restart. A sequence that
    // saves the index before the start has to clear what the start recovers.
    EXPECT_LE(failure.shrunk.steps.size(), 5u) << failure.text();
}

TEST(ModelCanary, StopThatOnlyTheModelForeseesIsFound) {
    Beliefs beliefs;
    beliefs.reservedIndices = 16;
    Failure const failure = failureOf(fullTables(), beliefs);
    EXPECT_NE(failure.mismatch.what.find("expected 'assertion 'vpIndex >= maxSystemSourceVp_'"),
              std::string::npos)
        << failure.text();
}

TEST(ModelCanary, StopThatTheModelDoesNotForeseeIsFound) {
    Beliefs beliefs;
    beliefs.reservedIndices = 0;
    Failure const failure = failureOf(hostileRecords(), beliefs);
    EXPECT_EQ(failure.mismatch.what,
              "the process ended: unforeseen assertion 'vpIndex >= maxSystemSourceVp_' in void "
              "VornicCentral::VpIndexAllocator::verifyAndUpdateAllocStats(U16) of "
              "/src/VornicL3Shared/VornicL3VpIndexAllocator")
        << failure.text();
}

TEST(ModelCanary, AFullRunTriesEveryStopAndEveryFailingCheck) {
    Tally sampled;
    sampled.full = false;
    Tally full;
    full.full = true;
    for (U64 seed = 0; seed < 3; ++seed) {
        Sequence const sequence = generated(hostileRecords(), seed, 60);
        EXPECT_FALSE(run(sequence, {}, sampled)) << seed;
        EXPECT_FALSE(run(sequence, {}, full)) << seed;
    }
    U64 foreseen = 0;
    for (auto const& [text, count] : full.met) {
        foreseen += count;
    }
    EXPECT_EQ(full.stops + full.failedChecks, foreseen);
    EXPECT_EQ(full.passedChecks, sampled.passedChecks);
    EXPECT_GT(full.failedChecks, sampled.failedChecks);
}

/// Something ends the process within a step of the library.
class ModelCanaryDeathTest : public testing::Test {
protected:
    static constexpr U64 seed = 4712;
    static constexpr std::size_t steps = 6;

    /// A run of two sequences, in the second of which the third step does this.
    static void run(std::function<void()> const& fault) {
        Effort const effort{2, seed - 1, steps, steps};
        Tally tally;
        U64 before = 0;
        tally.onStep = [&] {
            if (tally.sequences == 2 && ++before == 3) {
                fault();
            }
        };
        static_cast<void>(campaign(politeClients(), effort, tally));
    }

    /// What it must say, as a regular expression.
    static std::string words() {
        std::string expression;
        for (char const each : "seed " + std::to_string(seed) + "\n" +
                                   scriptOf(generated(politeClients(), seed, steps))) {
            bool const plain = std::string_view(".[]{}()*+?|^$\\").find(each) == std::string::npos;
            expression += (plain ? "" : "\\") + std::string(1, each);
        }
        return expression;
    }

    /// Without a sanitizer it ends by the signal, as if nothing had been said.
    static auto endedBy(int signal) {
        return [signal](int status) {
            bool const sanitized = Support::addressSanitizer() || Support::threadSanitizer();
            return testing::KilledBySignal(signal)(status) ||
                   (sanitized && WIFEXITED(status) && WEXITSTATUS(status) != 0);
        };
    }
};

TEST_F(ModelCanaryDeathTest, ASignalLeavesSeedAndScript) {
    for (int const signal : {SIGSEGV, SIGBUS, SIGFPE, SIGILL}) {
        EXPECT_EXIT(run([signal] { raise(signal); }), endedBy(signal), words()) << signal;
    }
    EXPECT_EXIT(run([] { std::abort(); }), testing::KilledBySignal(SIGABRT), words());
}

TEST_F(ModelCanaryDeathTest, AnUncaughtExceptionLeavesSeedAndScript) {
    EXPECT_EXIT(run([] { std::terminate(); }), testing::KilledBySignal(SIGABRT), words());
    auto const catchOutside = [] {
        try {
            run([] { throw std::runtime_error("from a step"); });
        } catch (std::runtime_error const&) {
            _exit(EXIT_FAILURE);
        }
    };
    EXPECT_EXIT(catchOutside(), testing::ExitedWithCode(EXIT_FAILURE), words());
}

TEST_F(ModelCanaryDeathTest, AReportOfTheSanitizerLeavesSeedAndScript) {
    if (!Support::addressSanitizer()) {
        return; // there are no reports
    }
    std::vector<char> const bytes(8);
    std::size_t const volatile behind = bytes.size();
    char volatile read = 0;
    auto const readBehind = [&] { read = bytes.data()[behind]; };
    EXPECT_EXIT(run(readBehind), endedBy(SIGABRT), "AddressSanitizer: .*" + words());
    int volatile most = std::numeric_limits<int>::max();
    auto const overflow = [&] { most = most + 1; };
    EXPECT_EXIT(run(overflow), endedBy(SIGABRT), words());
}

} // namespace
} // namespace ModelTest
