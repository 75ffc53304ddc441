#include "vxlan/SwTunnelGroupId.h"

#include "support/MultiThreaded.h"
#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Support::parseOutcome;
using Vxlan::SwTunnelGroupId;

U32 users(U32 number) { return SwTunnelGroupId::refcountTable().count(number); }

TEST(SwTunnelGroupId, IsItsNumber) {
    SwTunnelGroupId const group(17);
    EXPECT_EQ(group.value(), 17u);
    EXPECT_EQ(group.stringValue(), "17");
    EXPECT_EQ(Support::printed(group), "17");
    EXPECT_EQ(group, SwTunnelGroupId(17));
    EXPECT_EQ(group.hash(), SwTunnelGroupId(17).hash());
    EXPECT_NE(group, SwTunnelGroupId(18));
    EXPECT_NE(group.hash(), SwTunnelGroupId(18).hash());
    EXPECT_EQ(SwTunnelGroupId(), SwTunnelGroupId(0));
}

TEST(SwTunnelGroupId, CountsEveryIdAsAUserOfItsGroup) {
    EXPECT_EQ(users(17), 0u);
    {
        SwTunnelGroupId const group(17);
        EXPECT_EQ(users(17), 1u);
        SwTunnelGroupId const copy(group);
        SwTunnelGroupId const again(17);
        EXPECT_EQ(users(17), 3u);
        EXPECT_EQ(users(18), 0u);
    }
    EXPECT_EQ(users(17), 0u);
}

TEST(SwTunnelGroupId, DefaultIsAUserOfGroupZero) {
    U32 const before = users(0);
    SwTunnelGroupId const group;
    EXPECT_EQ(users(0), before + 1);
}

TEST(SwTunnelGroupId, AMoveHandsTheUseOver) {
    SwTunnelGroupId one(17);
    SwTunnelGroupId moved(std::move(one));
    EXPECT_EQ(users(17), 1u);
    EXPECT_EQ(one.value(), 0u); // NOLINT(bugprone-use-after-move): a moved-from id reads as 0
    EXPECT_EQ(one, SwTunnelGroupId(0));
    EXPECT_EQ(one.hash(), SwTunnelGroupId(0).hash());
    SwTunnelGroupId const copyOfMoved(one);
    EXPECT_EQ(copyOfMoved.value(), 0u);
    EXPECT_EQ(users(0), 0u);
    one = moved;
    EXPECT_EQ(users(17), 2u);
    SwTunnelGroupId& self = one;
    one = self;
    EXPECT_EQ(users(17), 2u);
    one = SwTunnelGroupId(18);
    EXPECT_EQ(users(17), 1u);
    EXPECT_EQ(users(18), 1u);
}

TEST(SwTunnelGroupId, RefIncAddsAUser) {
    SwTunnelGroupId const group(17);
    group.refInc();
    group.refInc();
    EXPECT_EQ(users(17), 3u);
    group.refDec();
    SwTunnelGroupId(17).refDec();
    EXPECT_EQ(users(17), 1u);
}

TEST(SwTunnelGroupId, AnAddedUserKeepsTheGroupWithoutAnyId) {
    std::size_t const before = SwTunnelGroupId::refcountTable().size();
    SwTunnelGroupId(17).refInc();
    EXPECT_EQ(users(17), 1u);
    EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before + 1);
    SwTunnelGroupId(17).refDec();
    EXPECT_EQ(users(17), 0u);
    EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before);
}

TEST(SwTunnelGroupId, AMovedFromIdHasNoGroupToAddAUserTo) {
    SwTunnelGroupId one(17);
    SwTunnelGroupId const moved(std::move(one));
    U32 const ofZero = users(0);
    one.refInc(); // NOLINT(bugprone-use-after-move): a moved-from id is nobody's user
    one.refDec();
    EXPECT_EQ(users(17), 1u);
    EXPECT_EQ(users(0), ofZero);
}

TEST(SwTunnelGroupId, GroupsLeaveTheTableWithTheirLastUser) {
    std::size_t const before = SwTunnelGroupId::refcountTable().size();
    {
        std::vector<SwTunnelGroupId> groups;
        for (U32 number = 0; number < 10000; ++number) {
            groups.emplace_back(number * 4096);
        }
        EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before + groups.size());
        std::vector<SwTunnelGroupId> const copies(groups);
        EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before + groups.size());
        EXPECT_EQ(users(4096), 2u);
    }
    EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before);
}

TEST(SwTunnelGroupId, ReadsItsDecimalFormOnly) {
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("0"), "0");
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("4294967295"), "4294967295");
    std::string const number = ": expected a number from 0 to 4294967295";
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("4294967296"), "at 9" + number);
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>(""), "at 0" + number);
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("-1"), "at 0" + number);
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("017"), "at 1" + number);
    EXPECT_EQ(parseOutcome<SwTunnelGroupId>("17 "), "at 2" + number);
}

TEST(SwTunnelGroupId, ThreadsShareGroupsUnderTheThreadControlRule) {
    std::size_t const before = SwTunnelGroupId::refcountTable().size();
    {
        Support::MultiThreaded const on;
        SwTunnelGroupId const kept(100);
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&wrong, kept] {
                for (U32 round = 0; round < 20000; ++round) {
                    SwTunnelGroupId const group(100 + round % 3);
                    SwTunnelGroupId copy(group);
                    bool const right = copy.value() == 100 + round % 3 && users(100) >= 1;
                    copy = kept;
                    wrong += right ? 0 : 1;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(wrong, 0);
        EXPECT_EQ(users(100), 1u);
    }
    EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before);
}

} // namespace
