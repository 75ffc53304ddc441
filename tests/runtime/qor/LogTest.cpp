#include "qor/Log.h"

#include "SinkFixture.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <memory>

namespace Qor {
namespace {

using namespace std::chrono_literals;
using Texts = std::vector<std::string>;

constexpr LogDescriptor descriptor{"TEST_FULL", "resource for %s is full", "why", "what to do", 3};

/// Messages at times that the test chooses.
class LogTest : public SinkTest {
protected:
    LogTest() {
        formerClock_ = logClockIs([this] { return now_; });
        logSinkIs([this](LogMessage const& message) {
            messages_.emplace_back(message.text);
            passed_.push_back({now_, message.suppressed});
        });
    }
    ~LogTest() override { logClockIs(formerClock_); }

    struct Passed {
        Pelo::Duration when;
        U32 suppressed;
        bool operator==(Passed const&) const = default;
    };

    /// One message each at `from`, `from + step` and so on up to `to`.
    void logEvery(LogHandle& handle, Pelo::Duration from, Pelo::Duration step, Pelo::Duration to) {
        for (now_ = from; now_ <= to; now_ += step) {
            log(handle, "x");
        }
    }
    std::vector<Pelo::Duration> times() const {
        std::vector<Pelo::Duration> result;
        for (Passed const& passed : passed_) {
            result.push_back(passed.when);
        }
        return result;
    }

    Pelo::Duration now_ = 1000h;
    std::vector<Passed> passed_;

private:
    LogClock formerClock_;
};

using Times = std::vector<Pelo::Duration>;

TEST_F(LogTest, TextStandsInItsPlace) {
    LogHandle handle(descriptor);
    log(handle, "vxlan edge port: Ethernet1, vlan: 7");
    log(handle, "");
    log(handle, "100 %s");
    EXPECT_EQ(messages_, (Texts{"resource for vxlan edge port: Ethernet1, vlan: 7 is full",
                                "resource for  is full", "resource for 100 %s is full"}));
}

TEST_F(LogTest, MessageBearsItsDescriptor) {
    LogDescriptor const* seen = nullptr;
    logSinkIs([&](LogMessage const& message) { seen = &message.descriptor; });
    LogHandle handle(descriptor);
    log(handle, "x");
    EXPECT_EQ(seen, &descriptor);
}

TEST_F(LogTest, NothingIsSuppressedByDefault) {
    LogHandle handle(descriptor);
    LogHandle explicitHandle(descriptor, 0s, 1.0, 0, 0);
    for (int count = 0; count < 100; ++count) {
        log(handle, "x");
        log(explicitHandle, "x");
    }
    EXPECT_EQ(passed_, std::vector<Passed>(200, {1000h, 0}));
}

TEST_F(LogTest, ZeroIntervalSuppressesNothingWhateverTheRest) {
    LogHandle handle(descriptor, 0s, 8.0, 1, 100);
    for (int count = 0; count < 100; ++count) {
        log(handle, "x");
    }
    EXPECT_EQ(passed_, std::vector<Passed>(100, {1000h, 0}));
}

TEST_F(LogTest, MinimumIntervalLiesBetweenMessages) {
    LogHandle handle(descriptor, 10s);
    logEvery(handle, 0s, 1s, 35s);
    EXPECT_EQ(passed_, (std::vector<Passed>{{0s, 0}, {10s, 0}, {20s, 0}, {30s, 0}}));
}

TEST_F(LogTest, MessageAfterExactlyTheIntervalPasses) {
    LogHandle handle(descriptor, 10s);
    logEvery(handle, 0s, 1s, 9s);
    now_ = 10s - 1ns;
    log(handle, "x");
    EXPECT_EQ(times(), Times{0s});
    now_ = 10s;
    log(handle, "x");
    EXPECT_EQ(times(), (Times{0s, 10s}));
}

TEST_F(LogTest, IntervalGrowsByTheFactorWhileTheConditionLasts) {
    LogHandle handle(descriptor, 10s, 2.0);
    logEvery(handle, 0s, 1s, 160s);
    EXPECT_EQ(times(), (Times{0s, 10s, 30s, 70s, 150s}));
}

TEST_F(LogTest, IntervalGrowsUpToTheLongest) {
    LogHandle handle(descriptor, 30min, 10.0);
    logEvery(handle, 0h, 1min, 4h);
    EXPECT_EQ(times(), (Times{0min, 30min, 90min, 150min, 210min}));
    passed_.clear();
    LogHandle longer(descriptor, 2h, 10.0);
    logEvery(longer, 0h, 1min, 5h);
    EXPECT_EQ(times(), (Times{0h, 2h, 4h}));
}

TEST_F(LogTest, QuietTimeOfOneIntervalBringsTheBeginningBack) {
    LogHandle handle(descriptor, 10s, 2.0);
    logEvery(handle, 0s, 1s, 70s); // the interval is 80 seconds now
    passed_.clear();
    logEvery(handle, 70s + 80s - 1ns, 1s,
             155s); // one nanosecond too early: still the same condition
    EXPECT_EQ(times(), (Times{70s + 80s + 1s - 1ns}));
    passed_.clear();
    logEvery(handle, 1000s, 1s, 1035s);
    EXPECT_EQ(times(), (Times{1000s, 1010s, 1030s}));
}

TEST_F(LogTest, SuppressedMessagesAreNoQuietTime) {
    LogHandle handle(descriptor, 10s, 3.0);
    logEvery(handle, 0s, 9s, 100s);
    EXPECT_EQ(times(), (Times{0s, 18s, 54s}));
}

TEST_F(LogTest, MessagesFurtherApartThanTheIntervalAllPass) {
    LogHandle handle(descriptor, 10s, 2.0);
    logEvery(handle, 0s, 10s, 50s);
    EXPECT_EQ(times(), (Times{0s, 10s, 20s, 30s, 40s, 50s}));
}

TEST_F(LogTest, BurstPassesAtOnce) {
    for (U32 const burst : {0u, 1u, 2u, 5u}) {
        passed_.clear();
        LogHandle handle(descriptor, 10s, 1.0, burst);
        now_ = 0s;
        for (int count = 0; count < 8; ++count) {
            log(handle, "x");
        }
        EXPECT_EQ(passed_.size(), std::max(burst, 1u)) << burst;
        logEvery(handle, 1s, 1s, 25s);
        EXPECT_EQ(passed_.size(), std::max(burst, 1u) + 2)
            << "the interval applies after the burst of " << burst;
        passed_.clear();
        now_ = 100s;
        for (int count = 0; count < 8; ++count) {
            log(handle, "x");
        }
        EXPECT_EQ(passed_.size(), std::max(burst, 1u)) << "after a quiet time";
    }
}

TEST_F(LogTest, SuppressedMessagesAreReportedUpToTheCount) {
    LogHandle handle(descriptor, 10s, 1.0, 0, 5);
    logEvery(handle, 0s, 3s, 25s);  // 3, 6, 9 suppressed; 15, 18, 21 suppressed
    logEvery(handle, 25s, 1s, 40s); // more than 5
    EXPECT_EQ(passed_, (std::vector<Passed>{{0s, 0}, {12s, 3}, {24s, 3}, {34s, 5}}));
}

TEST_F(LogTest, NoSuppressedMessagesAreReportedWithoutACount) {
    LogHandle handle(descriptor, 10s, 1.0, 0, 0);
    logEvery(handle, 0s, 1s, 10s);
    EXPECT_EQ(passed_, (std::vector<Passed>{{0s, 0}, {10s, 0}}));
}

TEST_F(LogTest, SuppressedMessagesAreReportedAfterAQuietTimeToo) {
    LogHandle handle(descriptor, 10s, 1.0, 0, 100);
    logEvery(handle, 0s, 1s, 4s);
    now_ = 60s;
    log(handle, "x");
    log(handle, "x");
    EXPECT_EQ(passed_, (std::vector<Passed>{{0s, 0}, {60s, 4}}));
}

TEST_F(LogTest, HandlesAreLimitedEachByItself) {
    LogHandle one(descriptor, 10s);
    LogHandle two(descriptor, 10s);
    log(one, "x");
    log(two, "x");
    log(one, "x");
    EXPECT_EQ(passed_.size(), 2u);
}

TEST_F(LogTest, FirstMessagePassesWhateverTheClockSays) {
    LogHandle handle(descriptor, 10s);
    now_ = 0s;
    log(handle, "x");
    EXPECT_EQ(passed_.size(), 1u);
}

TEST(LogHandle, UsesTheSteadyClockByDefault) {
    LogHandle handle(descriptor, 1h);
    EXPECT_TRUE(handle.passes());
    EXPECT_FALSE(handle.passes());
}

TEST(LogHandle, IsFoundByIdWhileItLives) {
    static constexpr LogDescriptor first{"LOG_TEST_FIRST", "%s", "", "", 3};
    static constexpr LogDescriptor second{"LOG_TEST_SECOND", "%s", "", "", 3};
    EXPECT_EQ(LogHandle::find("LOG_TEST_FIRST"), nullptr);
    {
        LogHandle firstHandle(first);
        LogHandle secondHandle(second);
        EXPECT_EQ(LogHandle::find("LOG_TEST_FIRST"), &firstHandle);
        EXPECT_EQ(LogHandle::find("LOG_TEST_SECOND"), &secondHandle);
        EXPECT_EQ(LogHandle::first(), &secondHandle);
        EXPECT_EQ(secondHandle.next(), &firstHandle);
        EXPECT_EQ(&secondHandle.descriptor(), &second);
    }
    EXPECT_EQ(LogHandle::find("LOG_TEST_FIRST"), nullptr);
}

TEST(LogHandle, MayGoBeforeThoseThatWereBuiltAfterIt) {
    static constexpr LogDescriptor olderOne{"LOG_TEST_OLDER", "%s", "", "", 3};
    static constexpr LogDescriptor newerOne{"LOG_TEST_NEWER", "%s", "", "", 3};
    auto older = std::make_unique<LogHandle>(olderOne);
    LogHandle const newer(newerOne);
    older = nullptr;
    EXPECT_EQ(LogHandle::find("LOG_TEST_OLDER"), nullptr);
    EXPECT_EQ(LogHandle::find("LOG_TEST_NEWER"), &newer);
}

TEST(LogHandleDeathTest, RefusesArgumentsWithoutMeaning) {
    static constexpr LogDescriptor none{"ID", "no argument", "", "", 3};
    static constexpr LogDescriptor two{"ID", "%s %s", "", "", 3};
    EXPECT_DEATH(LogHandle{none}, "Assertion 'hasOneArgument\\(descriptor.format\\)' failed");
    EXPECT_DEATH(LogHandle{two}, "Assertion 'hasOneArgument\\(descriptor.format\\)' failed");
    EXPECT_DEATH((LogHandle{descriptor, -1ns}),
                 "Assertion 'minInterval >= Pelo::Duration::zero\\(\\)' failed");
    EXPECT_DEATH((LogHandle{descriptor, 1s, 0.5}), "Assertion 'factor >= 1.0' failed");
}

} // namespace
} // namespace Qor
