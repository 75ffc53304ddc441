// The pool of VP indices and the operations on it.

#include "VornicL3Shared/support/World.h"
#include "allocator/Trace.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Bask::HBitmap;
using Test::Lines;
using Test::World;
using Indices = std::vector<U32>;

class Pool : public testing::Test {
protected:
    void start(U32 tableSize) {
        world.settings.tableSize = tableSize;
        world.start();
        world.capture.forget();
    }
    Indices allocate(std::size_t count, bool indexPreferenceHigh) {
        Indices indices;
        while (indices.size() < count) {
            indices.push_back(world.sm->allocVpIndex(indexPreferenceHigh));
        }
        return indices;
    }

    static constexpr bool low = false;
    static constexpr bool high = true;
    World world;
};

TEST_F(Pool, StartsWithTheReservedIndicesSet) {
    start(16);
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_EQ(world.sm->vpBitmap()->id(), 0u);
    EXPECT_EQ(world.sm->vpBitmap()->initialBitState(), HBitmap::BitState::clear);
}

TEST_F(Pool, LowPreferenceTakesTheLowestIndicesUntilTheTableIsFull) {
    start(16);
    EXPECT_EQ(allocate(10, low), (Indices{8, 9, 10, 11, 12, 13, 14, 15, 65535, 65535}));
    EXPECT_EQ(world.pool(), "16: 0-15");
}

TEST_F(Pool, HighPreferenceTakesTheHighestIndicesUntilTheTableIsFull) {
    start(16);
    EXPECT_EQ(allocate(10, high), (Indices{15, 14, 13, 12, 11, 10, 9, 8, 65535, 65535}));
}

TEST_F(Pool, PreferencesMeetInTheMiddle) {
    start(12);
    EXPECT_EQ(allocate(1, high), Indices{11});
    EXPECT_EQ(allocate(2, low), (Indices{8, 9}));
    EXPECT_EQ(allocate(2, high), (Indices{10, 65535}));
}

TEST_F(Pool, AFreedIndexIsTheLowestAgain) {
    start(16);
    allocate(6, low);
    world.sm->freeVpIndex(12);
    EXPECT_EQ(allocate(2, low), (Indices{12, 14}));
}

TEST_F(Pool, AFreedIndexMakesAFullTableServeAgain) {
    start(10);
    allocate(2, high);
    world.sm->freeVpIndex(8);
    EXPECT_EQ(allocate(2, high), (Indices{8, 65535}));
}

TEST_F(Pool, AnAllocationIsTracedWithItsIndex) {
    start(16);
    allocate(1, low);
    Lines const expected{"5 allocVpIndex index allocated is: 8"};
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.capture.ring(), expected);
}

TEST_F(Pool, AFullTableIsTracedAndNotLogged) {
    start(8);
    allocate(1, low);
    Lines const expected{"5 allocVpIndex VpIndex full return invalidVirtualPort"};
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.capture.ring(), expected);
    EXPECT_EQ(world.capture.logs(), Lines{});
}

TEST_F(Pool, AReleaseIsTracedWithItsIndex) {
    start(16);
    world.sm->setVpBitmap(12);
    world.sm->freeVpIndex(12);
    Lines const expected{"5 freeVpIndex index freed is: 12"};
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.capture.ring(), expected);
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(Pool, FreeingTheInvalidIndexDoesNothingAndTracesNothing) {
    start(16);
    world.sm->freeVpIndex(65535);
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.capture.ring(), Lines{});
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(Pool, FreeingAnIndexThatIsClearOrOutsideTheTableChangesNothing) {
    start(16);
    for (U32 const vpIndex : {U32{9}, U32{16}, U32{17}, U32{65536}, U32{4294967295}}) {
        world.sm->freeVpIndex(vpIndex);
    }
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_EQ(world.capture.traces(),
              (Lines{"5 freeVpIndex index freed is: 9", "5 freeVpIndex index freed is: 16",
                     "5 freeVpIndex index freed is: 17", "5 freeVpIndex index freed is: 65536",
                     "5 freeVpIndex index freed is: 4294967295"}));
}

TEST_F(Pool, FreeingDoesNotProtectTheReservedIndices) {
    start(16);
    world.sm->freeVpIndex(3);
    EXPECT_EQ(world.pool(), "16: 0-2 4-7");
}

TEST_F(Pool, MarkingAnIndexSetsItsBitWithoutATrace) {
    start(16);
    world.sm->setVpBitmap(12);
    EXPECT_EQ(world.pool(), "16: 0-7 12");
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.capture.ring(), Lines{});
}

TEST_F(Pool, MarkingAnIndexAboveTheTableSizeIsIgnored) {
    start(16);
    for (U32 const vpIndex : {U32{17}, U32{17}, U32{65535}, U32{65536}, U32{4294967295}}) {
        world.sm->setVpBitmap(vpIndex);
    }
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_EQ(world.capture.traces(), Lines{});
}

TEST_F(Pool, MarkingTheTableSizePassesTheBoundAndFindsNoBit) {
    start(16);
    world.sm->setVpBitmap(16);
    world.sm->setVpBitmap(16);
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(Pool, TheBoundIsTheTableSizeAndNotTheSizeOfTheBitmap) {
    start(16);
    world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    world.sm->setVpBitmap(16);
    world.sm->setVpBitmap(17);
    EXPECT_EQ(world.pool(), "32: 16");
}

TEST_F(Pool, DefaultVpsAreTheIndices1To7) {
    start(16);
    Indices defaults;
    for (U32 const vpIndex :
         {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 9u, 65535u, 65537u, 4294967295u}) {
        if (world.sm->isDefaultVp(vpIndex)) {
            defaults.push_back(vpIndex);
        }
    }
    EXPECT_EQ(defaults, (Indices{1, 2, 3, 4, 5, 6, 7}));
}

TEST_F(Pool, EightIndicesAreReserved) {
    EXPECT_EQ(VornicCentral::VpIndexAllocatorDirSm::maxSystemSourceVp_, 8u);
}

} // namespace
