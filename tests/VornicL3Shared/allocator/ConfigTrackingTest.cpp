// How the directory state machine follows the config directory.

#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::Listener;
using Test::Notification;
using Test::vlan;
using Test::World;

class ConfigTracking : public testing::Test {
protected:
    void start() {
        world.start();
        world.capture.forget();
    }
    /// The clients that have an allocator, in order.
    std::string allocators() const {
        std::string text;
        for (VpIndexAllocatorDirSm::Allocators::Iterator it(world.sm->vpIndexAllocator()); it;
             it.advance()) {
            text += (text.empty() ? "" : " ") + std::string(it.key().view());
        }
        return text;
    }
    /// Calls the dispatch function as the publisher of the config directory does.
    void notify(Pelo::FieldId field, Pelo::String const& key) {
        Pelo::Subscriber subscriber(world.sm.get(),
                                    &VpIndexAllocatorDirSm::vpIndexConfigDirDispatch);
        VpIndexAllocatorDirSm::vpIndexConfigDirDispatch(world.configDir->publisher(), &subscriber,
                                                        field, &key, nullptr);
    }

    World world;
};

Lines const newAllocator{
    "1 handleVpIndexConfig, Name bgp", "1 handleInitialized bgp", "1 handleRemoteVport",
    "1 handleMlagRemoteVport",         "1 handleEdgeVport",       "1 handleVlanVport",
    "1 handleEFilterDisableVport",
};

TEST_F(ConfigTracking, EveryNameThatIsThereAtTheStartGetsItsAllocator) {
    world.client("mlag");
    world.client("bgp");
    start();
    EXPECT_EQ(allocators(), "mlag bgp");
    EXPECT_EQ(world.allocator("bgp").name(), "bgp");
    EXPECT_EQ(world.allocator("bgp").vpIndexConfig(), &world.config("bgp"));
    EXPECT_EQ(world.allocator("bgp").vpIndexStatus(), &world.status("bgp"));
    EXPECT_EQ(world.allocator("bgp").vpReference(), world.references);
    EXPECT_EQ(world.allocator("bgp").vpIndexAllocatorDirSm(), world.sm.get());
}

TEST_F(ConfigTracking, PassesTheForwardingSwitchOnUnchanged) {
    world.client("bgp");
    start();
    EXPECT_FALSE(world.allocator("bgp").vfiForwarding());
    world.settings.vfiForwarding = true;
    start();
    EXPECT_TRUE(world.allocator("bgp").vfiForwarding());
}

TEST_F(ConfigTracking, ANameThatIsAddedLaterGetsItsAllocator) {
    start();
    world.client("bgp");
    EXPECT_EQ(allocators(), "bgp");
    EXPECT_EQ(world.capture.traces(), newAllocator);
}

TEST_F(ConfigTracking, TheRingSaysTheNameInItsOwnWords) {
    start();
    world.client("bgp");
    Lines expected = newAllocator;
    expected.front() = "1 handleVpIndexConfig name = bgp";
    EXPECT_EQ(world.capture.ring(), expected);
}

TEST_F(ConfigTracking, ANewAllocatorIsActive) {
    start();
    world.client("bgp");
    EXPECT_TRUE(world.allocator("bgp").nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_EQ(world.config("bgp").publisher()->subscriberCount(), 1u);
}

TEST_F(ConfigTracking, ANameThatIsAddedWithRequestsIsServedAtOnce) {
    start();
    auto const config = vpIndexConfigFactory("bgp");
    config->vlanVportIs(Bridging::VlanId(100), true);
    world.statusDir->vpIndexStatusIs("bgp", vpIndexStatusFactory("bgp"));
    world.configDir->vpIndexConfigIs("bgp", config);
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(ConfigTracking, AddingTheSameNameAgainLeavesItsAllocator) {
    world.client("bgp");
    start();
    auto const* const allocator = &world.allocator("bgp");
    world.configDir->vpIndexConfigIs("bgp", world.configDir->vpIndexConfig("bgp"));
    EXPECT_EQ(&world.allocator("bgp"), allocator);
    EXPECT_EQ(world.capture.traces(), Lines{});
}

TEST_F(ConfigTracking, ASecondNotificationForANameLeavesItsAllocator) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    start();
    auto const* const allocator = &world.allocator("bgp");
    std::string const before = world.state();
    world.sm->handleVpIndexConfig("bgp");
    EXPECT_EQ(&world.allocator("bgp"), allocator);
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.capture.traces(), Lines{"1 handleVpIndexConfig, Name bgp"});
}

TEST_F(ConfigTracking, ANameWhoseConfigIsDeletedKeepsItsAllocatorAndItsIndices) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    start();
    auto const config = world.configDir->vpIndexConfigDel("bgp");
    EXPECT_EQ(world.capture.traces(), (Lines{"1 handleVpIndexConfig, Name bgp",
                                             "1 handleVpIndexConfig, Name bgp ignore deletes"}));
    EXPECT_EQ(world.capture.ring(), (Lines{"1 handleVpIndexConfig name = bgp",
                                           "1 handleVpIndexConfig, Name bgp ignore deletes"}));
    EXPECT_EQ(allocators(), "bgp");
    EXPECT_EQ(world.state(), "pool 16: 0-7 15\n"
                             "status bgp: vlan{100=15} requests=1 failures=0 frees=0 size=16\n"
                             "references: vlan{100=15[bgp]}\n"
                             "waiting:\n"
                             "boot:\n");
}

TEST_F(ConfigTracking, ANameWhoseConfigIsDeletedIsStillServed) {
    world.client("bgp");
    start();
    auto const config = world.configDir->vpIndexConfigDel("bgp");
    config->vlanVportIs(Bridging::VlanId(100), true);
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(ConfigTracking, TheSameConfigMayComeBack) {
    world.client("bgp");
    start();
    auto const* const allocator = &world.allocator("bgp");
    world.configDir->vpIndexConfigIs("bgp", world.configDir->vpIndexConfigDel("bgp"));
    EXPECT_EQ(&world.allocator("bgp"), allocator);
    EXPECT_EQ(world.configDir->vpIndexConfig("bgp")->publisher()->subscriberCount(), 1u);
}

TEST_F(ConfigTracking, ANameThatWasNeverThereIsTakenForADeletedOne) {
    start();
    world.sm->handleVpIndexConfig("bgp");
    EXPECT_EQ(world.capture.traces(), (Lines{"1 handleVpIndexConfig, Name bgp",
                                             "1 handleVpIndexConfig, Name bgp ignore deletes"}));
    EXPECT_EQ(allocators(), "");
}

TEST_F(ConfigTracking, WithoutADirectoryEveryNameIsTakenForADeletedOne) {
    world.configDir = nullptr;
    start();
    world.sm->handleVpIndexConfig();
    world.sm->handleVpIndexConfig("bgp");
    EXPECT_EQ(world.capture.traces(), (Lines{"1 handleVpIndexConfig, Name bgp",
                                             "1 handleVpIndexConfig, Name bgp ignore deletes"}));
}

TEST_F(ConfigTracking, AllNamesAreHandledInTheOrderOfTheDirectory) {
    start();
    world.sm->qorDoZombieReactors(true);
    world.client("mlag");
    world.client("bgp");
    world.sm->handleVpIndexConfig();
    EXPECT_EQ(allocators(), "mlag bgp");
}

TEST_F(ConfigTracking, AnAllocatorStandsUnderTheNameOfItsConfig) {
    start();
    world.statusDir->vpIndexStatusIs("entry", vpIndexStatusFactory("entry"));
    world.configDir->vpIndexConfigIs("entry", vpIndexConfigFactory("record"));
    EXPECT_EQ(allocators(), "record");
}

TEST_F(ConfigTracking, AWalkToleratesThatANameIsDeletedAndAnotherAdded) {
    world.client("first");
    world.client("second");
    Listener listener(world.status("first"), [&](Notification const&) {
        world.configDir->vpIndexConfigDel("first");
        world.configDir->vpIndexConfigDel("second");
        world.client("third");
    });
    start();
    EXPECT_EQ(allocators(), "first third");
}

TEST_F(ConfigTracking, AWalkWithoutNotificationsVisitsANameThatIsAddedDuringIt) {
    start();
    world.sm->qorDoZombieReactors(true);
    world.client("first");
    Listener listener(world.status("first"), [&](Notification const&) { world.client("second"); });
    world.sm->handleVpIndexConfig();
    EXPECT_EQ(allocators(), "first second");
}

TEST_F(ConfigTracking, OnlyTheCollectionOfConfigsIsHeeded) {
    world.client("bgp");
    start();
    for (Pelo::FieldId const field : {0u, 130u, 132u, 154u, 258u}) {
        notify(field, "bgp");
    }
    EXPECT_EQ(world.capture.traces(), Lines{});
    notify(131, "bgp");
    EXPECT_EQ(world.capture.traces(), Lines{"1 handleVpIndexConfig, Name bgp"});
}

TEST_F(ConfigTracking, AZombieIsNotNotified) {
    world.client("bgp");
    start();
    world.sm->qorDoZombieReactors(true);
    notify(131, "bgp");
    EXPECT_EQ(world.capture.traces(), Lines{});
}

} // namespace
