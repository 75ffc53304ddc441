#include "VornicL3Shared/memory/Cases.h"
#include "support/Sanitizers.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <iostream>
#include <string>
#include <vector>

/// Every single allocation of the library's operations, refused. See `Shortage.h`.
namespace MemoryTest {
namespace {

using Support::Shortage;
using World = ::Test::World;
using Way = Outcome::Way;

constexpr U32 all = 0xFFFFFFFF;

/// Below the thread sanitizer every fifth: nothing here has a second thread.
constexpr U32 step = Support::threadSanitizer() ? 5 : 1;

class EveryAllocation : public testing::TestWithParam<Case> {
protected:
    Outcome untroubled(void (*operate)(World&), void (*prepare)(World&)) const {
        Outcome outcome = runShort({scenario_.settings, prepare, operate}, all, Shortage::lasting);
        EXPECT_EQ(outcome.way, Way::untroubled) << outcome.what;
        return outcome;
    }

    /// A restart over what a process left gives what the operation gives, or what there was before,
    /// or what the case allows.
    void expectRestarts(Outcome const& outcome) const {
        EXPECT_TRUE(!outcome.restart.doubled || GetParam().mayDouble);
        EXPECT_THAT(restarts_, testing::Contains(outcome.restart.state));
    }

    /// The operation came to its end: at once, so that nobody noticed, or when it was done again.
    void expectDone(Outcome const& outcome) const {
        if (outcome.way == Way::done) {
            EXPECT_EQ(outcome.state, reference_.state);
            EXPECT_EQ(outcome.reports, reference_.reports);
        } else if (GetParam().cutShort == nullptr || plain(outcome.state) != restarts_.back()) {
            EXPECT_EQ(plain(outcome.state), plain(reference_.state));
        }
        EXPECT_EQ(outcome.kept, reference_.kept);
    }

    /// How it went when one allocation failed, or all from there on.
    Way tryAt(U32 passing, Shortage shortage) const {
        SCOPED_TRACE("allocation " + std::to_string(passing) +
                     (shortage == Shortage::momentary ? "" : " and all after it"));
        Outcome const outcome = runShort(scenario_, passing, shortage);
        EXPECT_TRUE(outcome.way == Way::done || outcome.way == Way::refused ||
                    outcome.way == Way::stopped)
            << outcome.what;
        if (outcome.way == Way::stopped) {
            EXPECT_EQ(outcome.what, "std::bad_alloc");
        } else if (outcome.way == Way::done || shortage == Shortage::momentary) {
            expectDone(outcome);
        }
        expectRestarts(outcome);
        EXPECT_EQ(outcome.objects, 0u); // nothing outlives the world
        return outcome.way;
    }

    void learn() {
        reference_ = untroubled(scenario_.operate, scenario_.prepare);
        auto const nothing = [](World&) {};
        restarts_ = {reference_.restart.state,
                     untroubled(nothing, scenario_.prepare).restart.state};
        if (GetParam().cutShort != nullptr) {
            restarts_.push_back(untroubled(nothing, GetParam().cutShort).restart.state);
        }
    }

    Scenario const& scenario_ = GetParam().scenario;
    Outcome reference_;
    std::vector<std::string> restarts_;
};

TEST_P(EveryAllocation, IsMadeOrRefusedOrEndsTheProcess) {
    ASSERT_NO_FATAL_FAILURE(learn());
    std::array<U32, 5> ways{};
    for (U32 at = 0; at < reference_.allocations && !HasFailure(); at += step) {
        Way const way = tryAt(at, Shortage::momentary);
        ++ways[static_cast<std::size_t>(way)];
        // What ends the process at once does so too when there is no memory afterwards.
        if (way != Way::stopped) {
            EXPECT_NE(tryAt(at, Shortage::lasting), Way::broken);
        }
    }
    auto const times = [&](Way way) { return ways[static_cast<std::size_t>(way)]; };
    EXPECT_GT(times(Way::refused) + times(Way::stopped), 0u);
    std::cout << reference_.allocations << " allocations: " << times(Way::done) << " done without, "
              << times(Way::refused) << " refused, " << times(Way::stopped) << " stopped\n";
}

INSTANTIATE_TEST_SUITE_P(Operations, EveryAllocation, testing::ValuesIn(cases()),
                         [](auto const& one) { return std::string(one.param.name); });

} // namespace
} // namespace MemoryTest
