// Tables of unusual sizes: no larger than the reserved indices, and around the largest VP index.

#include "VornicL3Shared/support/World.h"
#include "allocator/Trace.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Bask::HBitmap;
using Test::vlan;
using Test::World;

class PoolOfSize : public testing::Test {
protected:
    /// Starts with a table of `size` entries; without traces, which would be many.
    void start(U32 size) {
        VornicCentral::vpTraceHandle().levelsMaskIs(0);
        Lumlog::RingBuffer::currentIs(nullptr);
        world.settings.tableSize = size;
        world.start();
    }
    U16 allocateLow() { return world.sm->allocVpIndex(false); }
    U16 allocateHigh() { return world.sm->allocVpIndex(true); }

    /// Takes indices from one end until the table is full: how many, and the last of them.
    std::string fill(bool indexPreferenceHigh) {
        U32 count = 0;
        U32 last = 0;
        auto const& bitmap = *world.sm->vpBitmap();
        while (bitmap.numBitsInSetState() != bitmap.size()) {
            last = world.sm->allocVpIndex(indexPreferenceHigh);
            ++count;
        }
        return std::to_string(count) + " up to " + std::to_string(last);
    }

    World world;
};

class PoolOfReservedIndicesOnly : public PoolOfSize, public testing::WithParamInterface<U32> {};
INSTANTIATE_TEST_SUITE_P(Sizes, PoolOfReservedIndicesOnly, testing::Range(U32{1}, U32{9}),
                         testing::PrintToStringParamName());

TEST_P(PoolOfReservedIndicesOnly, IsFullFromTheStart) {
    U32 const size = GetParam();
    start(size);
    std::string const runs = size == 1 ? "0" : "0-" + std::to_string(size - 1);
    EXPECT_EQ(world.pool(), std::to_string(size) + ": " + runs);
    EXPECT_EQ(allocateLow(), 65535);
    EXPECT_EQ(allocateHigh(), 65535);
    EXPECT_TRUE(world.sm->initialized());
}

TEST_P(PoolOfReservedIndicesOnly, IsFullForAClientToo) {
    U32 const size = GetParam();
    world.client("bgp");
    world.request("bgp", vlan(100));
    start(size);
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 65535);
    EXPECT_EQ(world.status("bgp").vpAllocFailures(), 1u);
    EXPECT_EQ(world.status("bgp").vpTableSize(), size);
}

TEST_F(PoolOfSize, NoEntryAtAllIsFullFromTheStart) {
    start(0);
    EXPECT_EQ(world.pool(), "0:");
    EXPECT_EQ(allocateLow(), 65535);
    EXPECT_EQ(allocateHigh(), 65535);
    EXPECT_TRUE(world.sm->initialized());
}

TEST_F(PoolOfSize, NineEntriesServeOneIndex) {
    start(9);
    EXPECT_EQ(allocateHigh(), 8);
    EXPECT_EQ(allocateLow(), 65535);
}

TEST_F(PoolOfSize, SixteenEntriesServeEightIndices) {
    start(16);
    EXPECT_EQ(fill(false), "8 up to 15");
    EXPECT_EQ(allocateLow(), 65535);
}

TEST_F(PoolOfSize, TheLargestTableServesEveryIndexBelow65535FromTheLowEnd) {
    start(65535);
    EXPECT_EQ(fill(false), "65527 up to 65534");
    EXPECT_EQ(allocateLow(), 65535);
    EXPECT_EQ(world.pool(), "65535: 0-65534");
}

TEST_F(PoolOfSize, TheLargestTableServesEveryIndexBelow65535FromTheHighEnd) {
    start(65535);
    EXPECT_EQ(allocateHigh(), 65534);
    EXPECT_EQ(fill(true), "65526 up to 8");
    EXPECT_EQ(allocateHigh(), 65535);
}

TEST_F(PoolOfSize, MarkingTheInvalidIndexInTheLargestTablePassesTheBoundAndFindsNoBit) {
    start(65535);
    world.sm->setVpBitmap(65535);
    world.sm->setVpBitmap(65535);
    EXPECT_EQ(world.pool(), "65535: 0-7");
}

TEST_F(PoolOfSize, ATooLargeTableHandsOutTheInvalidIndexAndNeverGetsItBack) {
    start(65536);
    EXPECT_EQ(allocateHigh(), 65535);
    EXPECT_EQ(world.pool(), "65536: 0-7 65535");
    world.sm->freeVpIndex(65535);
    EXPECT_EQ(world.pool(), "65536: 0-7 65535");
    EXPECT_EQ(allocateHigh(), 65534);
}

TEST_F(PoolOfSize, ATooLargeTableServesTheInvalidIndexLastFromTheLowEnd) {
    start(65536);
    EXPECT_EQ(fill(false), "65528 up to 65535");
    EXPECT_EQ(allocateLow(), 65535);
}

TEST_F(PoolOfSize, MarkingTheInvalidIndexInATooLargeTableSetsItsBit) {
    start(65536);
    world.sm->setVpBitmap(65535);
    EXPECT_EQ(world.pool(), "65536: 0-7 65535");
}

} // namespace
