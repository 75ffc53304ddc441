// What about the pool stops the process.

#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/World.h"
#include "qor/Sinks.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Bask::HBitmap;
using Test::assertionFailure;
using Test::World;

class PoolDeathTest : public testing::Test {
protected:
    PoolDeathTest() { world.start(); }

    World world;
    std::string const markedTwice =
        assertionFailure("void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap(U32)",
                         "!vpBitmap()->isBitSet( vpIndex )");
    std::string const nothingFound =
        assertionFailure("U16 VornicCentral::VpIndexAllocatorDirSm::allocVpIndex(bool)",
                         "vpIndex != Bask::HBitmap::null()");
};

TEST_F(PoolDeathTest, MarkingAnIndexTwice) {
    world.sm->setVpBitmap(12);
    EXPECT_DEATH(world.sm->setVpBitmap(12), markedTwice);
}

TEST_F(PoolDeathTest, MarkingAReservedIndex) {
    EXPECT_DEATH(world.sm->setVpBitmap(0), markedTwice);
    EXPECT_DEATH(world.sm->setVpBitmap(7), markedTwice);
}

TEST_F(PoolDeathTest, MarkingAnAllocatedIndex) {
    U16 const vpIndex = world.sm->allocVpIndex(true);
    EXPECT_DEATH(world.sm->setVpBitmap(vpIndex), markedTwice);
}

TEST_F(PoolDeathTest, MarkingTheTableSizeTwiceWhereTheBitmapHasThatBit) {
    world.sm->vpBitmapIs(0, 32, HBitmap::BitState::clear);
    world.sm->setVpBitmap(16);
    EXPECT_DEATH(world.sm->setVpBitmap(16), markedTwice);
}

TEST_F(PoolDeathTest, AFullBitmapThatDoesNotCountAsFull) {
    world.sm->vpBitmapIs(0, 10, HBitmap::BitState::set);
    EXPECT_DEATH(world.sm->allocVpIndex(false), nothingFound);
    EXPECT_DEATH(world.sm->allocVpIndex(true), nothingFound);
}

TEST_F(PoolDeathTest, AFailedSearchIsTracedBeforeItStops) {
    world.sm->vpBitmapIs(0, 10, HBitmap::BitState::set);
    auto const allocate = [this] {
        Qor::traceSinkIs({}); // to standard error, as the assertion
        world.sm->allocVpIndex(false);
    };
    EXPECT_DEATH(allocate(), " allocVpIndex index allocated is: 4294967295\n[^\n]*" + nothingFound);
}

TEST_F(PoolDeathTest, ABitmapWithoutBitsThatDoesNotCountAsFull) {
    world.sm->vpBitmapIs(0, 0, HBitmap::BitState::clear);
    EXPECT_DEATH(world.sm->allocVpIndex(false), nothingFound);
}

TEST_F(PoolDeathTest, StartingUpAgainOverAPoolThatIsThere) {
    EXPECT_DEATH(world.sm->handleInitialized(), markedTwice);
}

TEST_F(PoolDeathTest, WhatNeedsAPoolThatWasTakenAway) {
    world.client("bgp");
    world.config("bgp").vlanVportIs(Bridging::VlanId(7), true);
    std::string const noPool = assertionFailure(
        "Bask::Bitmap& VornicCentral::VpIndexAllocatorDirSm::pool() const", "vpBitmap_ != nullptr");
    world.sm->vpBitmapDel();
    EXPECT_DEATH(world.sm->setVpBitmap(12), noPool);
    EXPECT_DEATH(world.sm->allocVpIndex(true), noPool);
    EXPECT_DEATH(world.sm->freeVpIndex(12), noPool);
    EXPECT_DEATH(world.sm->recycleOrFreeVpIndex(12), noPool);
    EXPECT_DEATH(world.config("bgp").vlanVportIs(Bridging::VlanId(8), true), noPool);
    EXPECT_DEATH(world.config("bgp").vlanVportDel(Bridging::VlanId(7)), noPool);
    EXPECT_DEATH(world.sm->verify(), noPool);
    EXPECT_DEATH(world.allocator("bgp").verify(), noPool);
    world.sm->freeVpIndex(65535); // no index, which needs no pool
}

} // namespace
