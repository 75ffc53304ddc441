// The counters of a client's status, and what they stop.

#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Test::World;
using VornicCentral::VpIndexAllocator;

/// The client bgp on a table of 16 entries.
class AllocStats : public testing::Test {
protected:
    AllocStats() {
        world.client("bgp");
        world.start();
    }
    VpIndexAllocator& allocator() const { return world.allocator("bgp"); }
    std::string counters() const {
        auto const& status = world.status("bgp");
        return std::to_string(status.vpAllocRequests()) + " requests, " +
               std::to_string(status.vpAllocFailures()) + " failures, " +
               std::to_string(status.vpFreeRequests()) + " frees";
    }

    World world;
};

TEST_F(AllocStats, CountTheInvalidIndexAsAFailureAndNotAsARequest) {
    allocator().verifyAndUpdateAllocStats(65535);
    allocator().verifyAndUpdateAllocStats(65535);
    EXPECT_EQ(counters(), "0 requests, 2 failures, 0 frees");
}

TEST_F(AllocStats, TakeIndicesFromTheFirstThatIsNotReservedToTheTableSizeItself) {
    allocator().verifyAndUpdateAllocStats(8);
    allocator().verifyAndUpdateAllocStats(15);
    allocator().verifyAndUpdateAllocStats(16);
    EXPECT_EQ(counters(), "3 requests, 0 failures, 0 frees");
}

TEST_F(AllocStats, CompareWithTheTableSizeOfTheStatus) {
    world.status("bgp").vpTableSizeIs(20);
    allocator().verifyAndUpdateAllocStats(20);
    EXPECT_EQ(counters(), "1 requests, 0 failures, 0 frees");
}

TEST_F(AllocStats, CountEveryReleaseOfAnIndex) {
    allocator().updateFreeStats(15);
    allocator().updateFreeStats(15);
    EXPECT_EQ(counters(), "0 requests, 0 failures, 2 frees");
}

TEST_F(AllocStats, DoNotCountTheReleaseOfTheInvalidIndex) {
    allocator().updateFreeStats(65535);
    EXPECT_EQ(counters(), "0 requests, 0 failures, 0 frees");
}

TEST_F(AllocStats, CheckNoIndexThatIsReleased) {
    allocator().updateFreeStats(3);
    allocator().updateFreeStats(17);
    EXPECT_EQ(counters(), "0 requests, 0 failures, 2 frees");
}

TEST_F(AllocStats, CountFreesOfAClientAndNotOfThePool) {
    world.client("evpn");
    for (char const* const name : {"bgp", "evpn"}) {
        world.request(name, ::Test::vlan(10));
    }
    for (char const* const name : {"bgp", "evpn"}) {
        world.withdraw(name, ::Test::vlan(10));
    }
    EXPECT_EQ(counters(), "1 requests, 0 failures, 1 frees");
    EXPECT_EQ(world.status("evpn").vpFreeRequests(), 1u);
}

std::string failure(std::string const& text, std::string const& operation) {
    return Test::assertionFailure("void VornicCentral::VpIndexAllocator::" + operation + "(U16)",
                                  text);
}

class AllocStatsDeathTest : public AllocStats {
protected:
    /// An allocator whose client has no status.
    Pelo::Ptr<VpIndexAllocator> withoutStatus() {
        return VornicCentral::vpIndexAllocatorFactory(world.sm.get(),
                                                      VornicCentral::vpIndexConfigFactory("evpn"),
                                                      nullptr, world.references, false);
    }

    std::string const tooHigh =
        failure("vpIndex <= vpIndexStatus()->vpTableSize()", "verifyAndUpdateAllocStats");
    std::string const reserved =
        failure("vpIndex >= maxSystemSourceVp_", "verifyAndUpdateAllocStats");
};

TEST_F(AllocStatsDeathTest, AnIndexAboveTheTableSizeStopsTheProcess) {
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(17), tooHigh);
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(65534), tooHigh);
}

TEST_F(AllocStatsDeathTest, AReservedIndexStopsTheProcess) {
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(7), reserved);
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(0), reserved);
}

TEST_F(AllocStatsDeathTest, TheTableSizeIsCheckedBeforeTheReservedIndices) {
    world.status("bgp").vpTableSizeIs(4);
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(5), tooHigh);
    EXPECT_DEATH(allocator().verifyAndUpdateAllocStats(4), reserved);
}

TEST_F(AllocStatsDeathTest, AMissingStatusStopsTheProcessAfterTheReservedIndices) {
    auto const allocator = withoutStatus();
    EXPECT_DEATH(allocator->verifyAndUpdateAllocStats(7), reserved);
    EXPECT_DEATH(allocator->verifyAndUpdateAllocStats(8),
                 failure("vpIndexStatus() != nullptr", "verifyAndUpdateAllocStats"));
}

TEST_F(AllocStatsDeathTest, AMissingStatusStopsTheCountOfAFailure) {
    EXPECT_DEATH(withoutStatus()->verifyAndUpdateAllocStats(65535),
                 failure("vpIndexStatus() != nullptr", "verifyAndUpdateAllocStats"));
}

TEST_F(AllocStatsDeathTest, AMissingStatusStopsTheReleaseOfAnIndex) {
    auto const allocator = withoutStatus();
    allocator->updateFreeStats(65535);
    EXPECT_DEATH(allocator->updateFreeStats(8),
                 failure("vpIndexStatus() != nullptr", "updateFreeStats"));
}

TEST_F(AllocStatsDeathTest, AnAllocationOfAnIndexThatTheStatusDoesNotAllowStopsTheProcess) {
    world.status("bgp").vpTableSizeIs(14);
    EXPECT_DEATH(world.request("bgp", ::Test::vlan(10)), tooHigh);
}

} // namespace
