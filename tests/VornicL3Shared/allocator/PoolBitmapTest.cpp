// The bitmap of the pool as an object: when it is built anew, kept and detached.

#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>

namespace {

using Bask::HBitmap;
using Test::Lines;
using Test::World;

/// A table of 16 entries of which 0 to 7 and 12 are in use.
class PoolBitmap : public testing::Test {
protected:
    PoolBitmap() {
        world.start();
        world.sm->setVpBitmap(12);
        world.capture.forget();
    }

    World world;
};

TEST_F(PoolBitmap, IsKeptWithItsBitsWhenAskedForWithTheSameValues) {
    auto const* const before = world.sm->vpBitmap().get();
    auto const given = world.sm->vpBitmapIs(0, 16, HBitmap::BitState::clear);
    EXPECT_EQ(given.get(), before);
    EXPECT_EQ(world.sm->vpBitmap(), given);
    EXPECT_EQ(world.pool(), "16: 0-7 12");
}

TEST_F(PoolBitmap, BeginsEmptyWhenAskedForWithAnotherIdentifier) {
    auto const given = world.sm->vpBitmapIs(1, 16, HBitmap::BitState::clear);
    EXPECT_EQ(world.sm->vpBitmap(), given);
    EXPECT_EQ(given->id(), 1u);
    EXPECT_EQ(world.pool(), "16:");
}

TEST_F(PoolBitmap, BeginsEmptyWhenAskedForWithAnotherSize) {
    auto const given = world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    EXPECT_EQ(world.sm->vpBitmap(), given);
    EXPECT_EQ(world.pool(), "32:");
}

TEST_F(PoolBitmap, BeginsFullWhenAskedForWithTheOtherInitialState) {
    auto const given = world.sm->vpBitmapIs(0, 16, HBitmap::BitState::set);
    EXPECT_EQ(world.sm->vpBitmap(), given);
    EXPECT_EQ(given->initialBitState(), HBitmap::BitState::set);
    EXPECT_EQ(world.pool(), "16: 0-15");
}

TEST_F(PoolBitmap, GivesTheFormerOneBackWhenItIsReplaced) {
    auto const former = world.sm->vpBitmap();
    EXPECT_EQ(former->useCount(), 2u);
    world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    EXPECT_EQ(former->useCount(), 1u);
    EXPECT_TRUE(former->isBitSet(12));
}

TEST_F(PoolBitmap, IsDetachedByItsDeletion) {
    auto const detached = world.sm->vpBitmapDel();
    EXPECT_EQ(world.sm->vpBitmap(), nullptr);
    EXPECT_EQ(detached->useCount(), 1u);
    EXPECT_TRUE(detached->isBitSet(12));
    EXPECT_EQ(world.sm->vpBitmapDel(), nullptr);
}

TEST_F(PoolBitmap, IsBuiltAnewAfterItsDeletion) {
    world.sm->vpBitmapDel();
    world.sm->vpBitmapIs(0, 16, HBitmap::BitState::clear);
    EXPECT_EQ(world.pool(), "16:");
}

TEST_F(PoolBitmap, AnAllocationSearchesTheWholeBitmapNotTheTable) {
    world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    world.capture.forget();
    EXPECT_EQ(world.sm->allocVpIndex(true), 31);
    EXPECT_EQ(world.capture.traces(), Lines{"5 allocVpIndex index allocated is: 31"});
    EXPECT_EQ(world.pool(), "32:"); // what lies above the table size is not marked
    EXPECT_EQ(world.sm->allocVpIndex(false), 0);
    EXPECT_EQ(world.pool(), "32: 0");
    world.sm->vpBitmapIs(0, 12, HBitmap::BitState::clear);
    EXPECT_EQ(world.sm->allocVpIndex(true), 11);
    EXPECT_EQ(world.pool(), "12: 11");
}

TEST_F(PoolBitmap, ItsOwnOperationsLeaveNoTrace) {
    world.sm->vpBitmapIs(0, 16, HBitmap::BitState::clear);
    world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    world.sm->vpBitmapDel();
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.capture.ring(), Lines{});
}

} // namespace
