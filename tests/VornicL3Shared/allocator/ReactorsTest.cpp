// Switching the reactors of the directory state machine on and off, and its zombie flag.

#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::Lines;
using Test::vlan;
using Test::World;

/// A state machine that runs for the client bgp.
class Reactors : public testing::Test {
protected:
    Reactors() {
        world.client("bgp");
        world.start();
        world.capture.forget();
    }

    /// How many reactors the reference list, the config directory and bgp's config have: "1 1 1".
    std::string subscribers() const {
        return std::to_string(world.references->publisher()->subscriberCount()) + " " +
               std::to_string(world.configDir->publisher()->subscriberCount()) + " " +
               std::to_string(world.config("bgp").publisher()->subscriberCount());
    }
    /// Changes all three, and gives what of it was noticed.
    Lines changes() {
        world.references->edgeVportIs(edge("Ethernet1/1:100").key, VpReference(VirtualPort(12)));
        world.references->edgeVportDel(edge("Ethernet1/1:100").key);
        world.configDir->vpIndexConfigDel("absent");
        world.client("mlag");
        world.configDir->vpIndexConfigDel("mlag");
        return world.capture.traces();
    }

    World world;
};

Lines const noticed{
    "1 handleInvalidEdgeVport pvKey: Ethernet1/1:100",
    "1 handleInvalidEdgeVport pvKey: Ethernet1/1:100",
    "1 handleVpIndexConfig, Name mlag",
    "1 handleInitialized mlag",
    "1 handleRemoteVport",
    "1 handleMlagRemoteVport",
    "1 handleEdgeVport",
    "1 handleVlanVport",
    "1 handleEFilterDisableVport",
    "1 handleVpIndexConfig, Name mlag",
    "1 handleVpIndexConfig, Name mlag ignore deletes",
};

TEST_F(Reactors, AreOnAfterTheStart) {
    EXPECT_EQ(subscribers(), "1 1 1");
    EXPECT_EQ(changes(), noticed);
}

TEST_F(Reactors, SwitchedOnTwiceSubscribeOnce) {
    world.sm->hasNotificationActiveIs(true);
    world.sm->hasNotificationActiveIs(true);
    EXPECT_EQ(subscribers(), "1 1 1");
    EXPECT_EQ(changes(), noticed);
    world.allocator("bgp").hasNotificationActiveIs(false);
    world.sm->hasNotificationActiveIs(true);
    EXPECT_EQ(subscribers(), "1 1 0"); // nobody is asked to subscribe again
}

TEST_F(Reactors, SwitchedOnAgainLeaveAnAllocatorThatWasSwitchedOffByItself) {
    world.allocator("bgp").hasNotificationActiveIs(false);
    world.sm->hasNotificationActiveIs(true);
    EXPECT_FALSE(world.allocator("bgp").nodeFlag(Pelo::NodeFlag::notificationActive));
    world.request("bgp", vlan(100));
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 65535);
}

TEST_F(Reactors, SwitchedOffAgainLeaveAnAllocatorThatWasSwitchedOnByItself) {
    world.sm->hasNotificationActiveIs(false);
    world.allocator("bgp").hasNotificationActiveIs(true);
    world.sm->hasNotificationActiveIs(false);
    EXPECT_EQ(subscribers(), "0 0 1");
    world.request("bgp", vlan(100));
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(Reactors, SwitchedOffRemoveBothSubscriptionsAndThoseOfEveryAllocator) {
    world.client("mlag");
    world.sm->hasNotificationActiveIs(false);
    EXPECT_EQ(subscribers(), "0 0 0");
    EXPECT_FALSE(world.config("mlag").publisher()->hasSubscribers());
    EXPECT_FALSE(world.sm->nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_FALSE(world.allocator("bgp").nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_FALSE(world.allocator("mlag").nodeFlag(Pelo::NodeFlag::notificationActive));
}

TEST_F(Reactors, SwitchedOffNoticeNothing) {
    world.sm->hasNotificationActiveIs(false);
    world.request("bgp", vlan(100));
    EXPECT_EQ(changes(), Lines{});
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 65535);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("mlag"));
}

TEST_F(Reactors, SwitchedOffTwiceAreOnAfterOneSwitch) {
    world.sm->hasNotificationActiveIs(false);
    world.sm->hasNotificationActiveIs(false);
    world.sm->hasNotificationActiveIs(true);
    EXPECT_EQ(subscribers(), "1 1 1");
    EXPECT_EQ(changes(), noticed);
    world.request("bgp", vlan(100));
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(Reactors, OfAStateMachineWithoutRecordsCanBeSwitched) {
    auto const sm = vpIndexAllocatorDirSmFactory(nullptr, nullptr, nullptr, nullptr, 16, nullptr,
                                                 false, false, nullptr);
    sm->hasNotificationActiveIs(false);
    sm->hasNotificationActiveIs(true);
    EXPECT_TRUE(sm->nodeFlag(Pelo::NodeFlag::notificationActive));
}

TEST_F(Reactors, OfAZombieIgnoreEveryNotification) {
    world.sm->qorDoZombieReactors(true);
    EXPECT_EQ(subscribers(), "1 1 1");
    EXPECT_EQ(changes(), Lines{});
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("mlag"));
}

TEST_F(Reactors, HeedNotificationsWhenTheZombieFlagIsCleared) {
    world.sm->qorDoZombieReactors(true);
    world.sm->qorDoZombieReactors(true);
    world.sm->qorDoZombieReactors(false);
    EXPECT_EQ(changes(), noticed);
}

TEST_F(Reactors, KeepTheirZombieFlagWhenTheyAreSwitched) {
    world.sm->hasNotificationActiveIs(false);
    EXPECT_FALSE(world.sm->isZombie());
    world.sm->qorDoZombieReactors(true);
    world.sm->hasNotificationActiveIs(true);
    EXPECT_TRUE(world.sm->isZombie());
    world.sm->hasNotificationActiveIs(false);
    EXPECT_TRUE(world.sm->isZombie());
}

TEST_F(Reactors, OfTheAllocatorsAreNoZombiesWhenTheStateMachineIs) {
    world.sm->qorDoZombieReactors(true);
    world.request("bgp", vlan(100));
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

} // namespace
