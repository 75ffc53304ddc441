#include "VornicL3Shared/model/Campaign.h"

#include <gtest/gtest.h>

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

} // namespace
} // namespace ModelTest
