#include "pelo/ThreadControl.h"

#include "support/MultiThreaded.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <vector>

namespace {

using Pelo::countDec;
using Pelo::countDecUnlessLast;
using Pelo::countInc;
using Pelo::ThreadControl;
using Pelo::ThreadControlGuard;

TEST(ThreadControl, IsOffUnlessTheHostSwitchesItOn) {
    EXPECT_FALSE(ThreadControl::multiThreaded());
    ThreadControl::multiThreadedIs(true);
    EXPECT_TRUE(ThreadControl::multiThreaded());
    ThreadControl::multiThreadedIs(false);
    EXPECT_FALSE(ThreadControl::multiThreaded());
}

TEST(ThreadControl, CountsAreTheSameOnAndOff) {
    for (bool const on : {false, true}) {
        ThreadControl::multiThreadedIs(on);
        U32 count = 1;
        countInc(count);
        countInc(count);
        EXPECT_EQ(count, 3u);
        EXPECT_FALSE(countDec(count));
        EXPECT_FALSE(countDec(count));
        EXPECT_EQ(count, 1u);
        EXPECT_TRUE(countDec(count));
        EXPECT_EQ(count, 0u);
    }
    ThreadControl::multiThreadedIs(false);
}

TEST(ThreadControl, LastUseIsKeptOnAndOff) {
    for (bool const on : {false, true}) {
        ThreadControl::multiThreadedIs(on);
        U32 count = 2;
        EXPECT_TRUE(countDecUnlessLast(count));
        EXPECT_FALSE(countDecUnlessLast(count));
        EXPECT_EQ(count, 1u);
    }
    ThreadControl::multiThreadedIs(false);
}

TEST(ThreadControl, CountsTakenWithItOffAreGivenBackWithItOn) {
    U32 count = 1;
    countInc(count);
    ThreadControl::multiThreadedIs(true);
    countInc(count);
    EXPECT_FALSE(countDec(count));
    ThreadControl::multiThreadedIs(false);
    EXPECT_FALSE(countDec(count));
    EXPECT_TRUE(countDec(count));
}

TEST(ThreadControl, OneOfManyThreadsGivesBackTheLastUse) {
    Support::MultiThreaded const on;
    constexpr U32 rounds = 20000;
    U32 count = 4 * rounds;
    std::vector<int> last(4, 0);
    std::vector<std::thread> threads;
    for (int& mine : last) {
        threads.emplace_back([&count, &mine] {
            for (U32 round = 0; round < rounds; ++round) {
                countInc(count);
                mine += countDec(count) ? 1 : 0;
                mine += countDec(count) ? 1 : 0;
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(count, 0u);
    EXPECT_EQ(last[0] + last[1] + last[2] + last[3], 1);
}

/// A mutex that writes down what is done to it.
struct Recorder {
    void lock() { calls += 'L'; }
    void unlock() { calls += 'U'; }
    std::string calls;
};

TEST(ThreadControl, GuardLocksOnlyWhileSeveralThreadsMayTouchEntities) {
    Recorder mutex;
    { ThreadControlGuard const guard(mutex); }
    EXPECT_EQ(mutex.calls, "");
    Support::MultiThreaded const on;
    {
        ThreadControlGuard const guard(mutex);
        EXPECT_EQ(mutex.calls, "L");
    }
    EXPECT_EQ(mutex.calls, "LU");
}

TEST(ThreadControl, GuardUnlocksWhatItLockedWhateverTheFlagSaysThen) {
    Recorder mutex;
    {
        ThreadControlGuard const unlocked(mutex);
        ThreadControl::multiThreadedIs(true);
    }
    EXPECT_EQ(mutex.calls, "");
    {
        ThreadControlGuard const locked(mutex);
        ThreadControl::multiThreadedIs(false);
    }
    EXPECT_EQ(mutex.calls, "LU");
}

} // namespace
