// Construction of the directory state machine: what it stores and the order of its start-up.

#include "VornicL3Shared/support/References.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Test::efilter;
using Test::Lines;
using Test::referenceOf;
using Test::vlan;
using Test::World;

class StartUp : public testing::Test {
protected:
    World world;
};

/// The attributes that the nine arguments set, numbers and switches as text.
std::string argumentsText(VpIndexAllocatorDirSm const& sm) {
    return std::to_string(sm.vpTableSize()) + (sm.vpReallocationEnabled() ? " reallocation" : "") +
           (sm.vfiForwarding() ? " vfiForwarding" : "");
}

TEST_F(StartUp, StoresEveryArgument) {
    auto const capabilities = vxlanCapabilitiesFactory("capabilities", true);
    for (auto* const create :
         {&VpIndexAllocatorDirSm::VpIndexAllocatorDirSmIs, &vpIndexAllocatorDirSmFactory}) {
        auto const sm = create(world.references, world.waiting, world.configDir, world.statusDir,
                               64, world.boot, true, false, capabilities);
        EXPECT_EQ(sm->vpReference(), world.references);
        EXPECT_EQ(sm->vpInvalidReference(), world.waiting);
        EXPECT_EQ(sm->vpIndexConfigDir(), world.configDir);
        EXPECT_EQ(sm->vpIndexStatusDir(), world.statusDir);
        EXPECT_EQ(sm->vxlanBootStatus(), world.boot);
        EXPECT_EQ(sm->vxlanCapabilities(), capabilities);
        EXPECT_EQ(argumentsText(*sm), "64 reallocation");
        EXPECT_EQ(sm->useCount(), 1u);
    }
}

TEST_F(StartUp, KeepsTheTwoSwitchesApart) {
    world.settings.vfiForwarding = true;
    world.start();
    EXPECT_EQ(argumentsText(*world.sm), "16 vfiForwarding");
}

TEST_F(StartUp, TakesOneUseOfEachRecord) {
    world.start();
    EXPECT_EQ(world.references->useCount(), 2u);
    EXPECT_EQ(world.waiting->useCount(), 2u);
    EXPECT_EQ(world.configDir->useCount(), 2u);
    EXPECT_EQ(world.statusDir->useCount(), 2u);
    EXPECT_EQ(world.boot->useCount(), 2u);
    EXPECT_EQ(world.sm->vxlanCapabilities()->useCount(), 1u);
}

TEST_F(StartUp, LeavesTheReservedIndicesSetAndTheStateMachineInitialized) {
    world.start();
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_TRUE(world.sm->initialized());
}

TEST_F(StartUp, TracesAnEmptyStart) {
    world.start();
    Lines const expected{"1 handleInitialized", "1 reconcile"};
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.capture.ring(), expected);
}

TEST_F(StartUp, RecoversBeforeItServesAndServesBeforeItEnds) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    world.boot->vlanVportIs(Bridging::VlanId(200), VirtualPort(15));
    world.start();
    Lines const expected{
        "1 handleInitialized",
        "1 reconcile",
        "5 reconcile recovered vpIndex: 15 for vlan: 200",
        "1 handleInvalidVlanVport vlan: 200",
        "5 reconcile clean up status for: bgp",
        "1 handleVpIndexConfig, Name bgp",
        "1 handleInitialized bgp",
        "1 handleRemoteVport",
        "1 handleMlagRemoteVport",
        "1 handleEdgeVport",
        "1 handleVlanVport",
        "1 handleVlanVport vlan: 100",
        "5 handleVlanVport vport addition for: bgp",
        "5 handleVlanVport allocating vp index for vlan: 100",
        "5 allocVpIndex index allocated is: 14",
        "5 handleVlanVport allocated vpIndex: 14",
        "5 handleVlanVport vlan: 100 vPort: 14",
        "1 handleInvalidVlanVport vlan: 100",
        "1 handleEFilterDisableVport",
    };
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.state(), "pool 16: 0-7 14-15\n"
                             "config bgp: vlan{100}\n"
                             "status bgp: vlan{100=14} requests=1 failures=0 frees=0 size=16\n"
                             "references: vlan{200=15[] 100=14[bgp]}\n"
                             "waiting:\n"
                             "boot: vlan{200=15}\n");
}

TEST_F(StartUp, RecoversTheReferenceListBeforeItServes) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    world.references->vlanVportIs(Bridging::VlanId(200), VpReference(VirtualPort(15)));
    world.start();
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 14);
    EXPECT_EQ(world.pool(), "16: 0-7 14-15");
}

TEST_F(StartUp, ServesClientsInTheOrderOfTheConfigDirectory) {
    for (char const* const name : {"mlag", "bgp"}) {
        world.client(name);
    }
    world.request("bgp", vlan(100));
    world.request("mlag", vlan(200));
    world.start();
    EXPECT_EQ(world.indexOf("mlag", vlan(200)), 15);
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 14);
}

TEST_F(StartUp, TellsChangesOfTheReferenceListFromTheConstructorOn) {
    world.settings.reallocation = true;
    world.boot->vlanVportIs(Bridging::VlanId(200), VirtualPort());
    world.start();
    EXPECT_TRUE(world.waits(vlan(200)));
    EXPECT_EQ(world.capture.traces(),
              (Lines{
                  "1 handleInitialized",
                  "1 reconcile",
                  "5 reconcile recovered vpIndex: 65535 for vlan: 200",
                  "1 handleInvalidVlanVport vlan: 200",
                  "5 handleInvalidVlanVport vport addition/modification for: 65535",
                  "5 handleInvalidVlanVport vport added : 65535",
              }));
}

TEST_F(StartUp, SubscribesOnceToTheReferenceListAndTheConfigDirectory) {
    world.start();
    EXPECT_EQ(world.references->publisher()->subscriberCount(), 1u);
    EXPECT_EQ(world.configDir->publisher()->subscriberCount(), 1u);
    EXPECT_EQ(world.statusDir->publisher()->subscriberCount(), 0u);
    EXPECT_EQ(world.waiting->publisher()->subscriberCount(), 0u);
    EXPECT_EQ(world.boot->publisher()->subscriberCount(), 0u);
}

TEST_F(StartUp, EndsWithNotificationsActive) {
    world.client("bgp");
    world.start();
    EXPECT_TRUE(world.sm->nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_TRUE(world.allocator("bgp").nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_FALSE(world.sm->isZombie());
}

TEST_F(StartUp, TheConstructorAloneLeavesNotificationsSubscribedAndNotActive) {
    auto const sm = Pelo::newNode<VpIndexAllocatorDirSm>(world.references, world.waiting,
                                                         world.configDir, world.statusDir, U32{16},
                                                         world.boot, false, false, nullptr);
    EXPECT_FALSE(sm->nodeFlag(Pelo::NodeFlag::notificationActive));
    EXPECT_TRUE(sm->initialized());
    EXPECT_EQ(world.references->publisher()->subscriberCount(), 1u);
    EXPECT_EQ(world.configDir->publisher()->subscriberCount(), 1u);
}

TEST_F(StartUp, TheConstructorAloneStaysSubscribedWhenItIsSwitchedOff) {
    auto const sm = Pelo::newNode<VpIndexAllocatorDirSm>(world.references, world.waiting,
                                                         world.configDir, world.statusDir, U32{16},
                                                         world.boot, false, false, nullptr);
    sm->hasNotificationActiveIs(false); // it is not on, so nothing happens
    EXPECT_EQ(world.references->publisher()->subscriberCount(), 1u);
    EXPECT_EQ(world.configDir->publisher()->subscriberCount(), 1u);
    world.client("bgp");
    EXPECT_TRUE(sm->vpIndexAllocatorHas("bgp"));
}

TEST_F(StartUp, WithoutAReferenceListIsNotSubscribedToIt) {
    world.references = nullptr;
    world.start();
    EXPECT_TRUE(world.sm->initialized());
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_EQ(world.configDir->publisher()->subscriberCount(), 1u);
    world.client("bgp");
    EXPECT_TRUE(world.sm->vpIndexAllocatorHas("bgp"));
}

TEST_F(StartUp, WithoutAReferenceListCleansStatusesUpAndKnowsNothingStale) {
    world.client("bgp");
    world.status("bgp").vlanVportIs(vlan(100).key, VirtualPort(12));
    world.references = nullptr;
    world.start();
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 65535);
    world.capture.forget();
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.capture.traces(), Lines{"1 clearStaleEntries"});
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(StartUp, WithoutAConfigDirectoryIsNotSubscribedToIt) {
    world.configDir = nullptr;
    world.start();
    EXPECT_TRUE(world.sm->initialized());
    EXPECT_EQ(world.pool(), "16: 0-7");
    EXPECT_EQ(world.references->publisher()->subscriberCount(), 1u);
}

TEST_F(StartUp, NeedsNeitherStatusDirectoryNorBootStatusNorCapabilities) {
    world.references->vlanVportIs(Bridging::VlanId(200), VpReference(VirtualPort(12)));
    auto const sm = vpIndexAllocatorDirSmFactory(world.references, nullptr, world.configDir,
                                                 nullptr, 16, nullptr, false, false, nullptr);
    EXPECT_TRUE(sm->initialized());
    EXPECT_TRUE(sm->vpBitmap()->isBitSet(12));
}

TEST_F(StartUp, NeedsNoInvalidReferenceListWithReallocation) {
    world.waiting = nullptr;
    world.settings = {.tableSize = 9, .reallocation = true};
    world.references->eFilterDisableVportIs(efilter("Ethernet7").key, VpReference());
    world.boot->vlanVportIs(vlan(200).key, VirtualPort());
    world.client("bgp");
    world.start();
    EXPECT_EQ(world.references->eFilterDisableVport(efilter("Ethernet7").key), VpReference());
    EXPECT_EQ(world.references->vlanVport(vlan(200).key), VpReference());
    world.request("bgp", vlan(1));
    world.request("bgp", vlan(2));
    EXPECT_EQ(world.indexOf("bgp", vlan(1)), 8);
    EXPECT_EQ(world.references->vlanVport(vlan(2).key), referenceOf(65535, {"bgp"}));
    world.withdraw("bgp", vlan(1));
    EXPECT_EQ(world.indexOf("bgp", vlan(2)), 65535);
    EXPECT_EQ(world.pool(), "9: 0-7");
}

TEST_F(StartUp, RunsAgainOverAPoolThatWasDeletedBefore) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    world.start();
    auto const* const allocator = &world.allocator("bgp");
    world.sm->vpBitmapDel();
    world.capture.forget();
    world.sm->handleInitialized();
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 handleInitialized", "1 reconcile",
                     "5 reconcile recovered vpIndex: 15 for vlan: 100",
                     "1 handleInvalidVlanVport vlan: 100", "5 reconcile clean up status for: bgp",
                     "1 handleVpIndexConfig, Name bgp"}));
    EXPECT_EQ(world.pool(), "16: 0-7 15");
    EXPECT_EQ(&world.allocator("bgp"), allocator);
}

} // namespace
