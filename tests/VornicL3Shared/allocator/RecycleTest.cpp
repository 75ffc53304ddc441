// What becomes of an index that is released.

#include "VornicL3Shared/support/References.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::efilter;
using Test::Lines;
using Test::mlag;
using Test::referenceOf;
using Test::remote;
using Test::vlan;

/// A table of nine entries, so that one client port fills it, with reallocation.
class Recycle : public testing::Test {
protected:
    Recycle() {
        world.client("bgp");
        world.client("mlag");
        world.start();
        world.request("bgp", vlan(1));
        world.capture.forget();
    }
    /// The traces of the release and of the pool, without those of the handlers.
    Lines recycleTraces() {
        Lines lines;
        for (std::string const& line : world.capture.traces()) {
            if (line.find("recycleOrFreeVpIndex") != std::string::npos ||
                line.find("freeVpIndex") != std::string::npos) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    ::Test::World world{{.tableSize = 9, .reallocation = true}};
};

TEST_F(Recycle, FreesOnceWhenNobodyWaits) {
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8"}));
    EXPECT_EQ(world.state(), "pool 9: 0-7\n"
                             "config bgp: vlan{1}\n"
                             "config mlag:\n"
                             "status bgp: vlan{1=8} requests=1 failures=0 frees=0 size=9\n"
                             "status mlag: requests=0 failures=0 frees=0 size=9\n"
                             "references: vlan{1=8[bgp]}\n"
                             "waiting:\n"
                             "boot:\n");
}

TEST_F(Recycle, WithoutReallocationTheIndexIsFreedTwice) {
    world.settings.reallocation = false;
    world.start();
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8",
                     "5 freeVpIndex index freed is: 8"}));
}

TEST_F(Recycle, WithoutReallocationTheIndexIsFreedTwiceWhenNoWaitingKeyTakesIt) {
    world.settings.reallocation = false;
    world.start();
    world.references->vlanVportIs(vlan(5).key, VpReference());
    world.waiting->vlanVportIs(vlan(5).key, true);  // names nobody
    world.waiting->vlanVportIs(vlan(90).key, true); // no reference
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8",
                     "5 freeVpIndex index freed is: 8"}));
    EXPECT_EQ(world.state(), "pool 9: 0-7\n"
                             "config bgp: vlan{1}\n"
                             "config mlag:\n"
                             "status bgp: vlan{1=8} requests=1 failures=0 frees=0 size=9\n"
                             "status mlag: requests=0 failures=0 frees=0 size=9\n"
                             "references: vlan{1=8[bgp] 5=65535[]}\n"
                             "waiting: vlan{5}\n"
                             "boot:\n");
}

TEST_F(Recycle, WithoutReallocationAWaitingVlanStillTakesTheFreedIndex) {
    world.settings.reallocation = false;
    world.start();
    world.request("bgp", vlan(2));
    world.waiting->vlanVportIs(vlan(2).key, true);
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(recycleTraces(), (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8",
                                      "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
                                      "vpIndexAllocator(bgp)->vpIndexStatus()->vlanVport(2)"}));
    EXPECT_EQ(world.state(), "pool 9: 0-7\n"
                             "config bgp: vlan{1 2}\n"
                             "config mlag:\n"
                             "status bgp: vlan{1=8 2=8} requests=1 failures=1 frees=0 size=9\n"
                             "status mlag: requests=0 failures=0 frees=0 size=9\n"
                             "references: vlan{1=8[bgp] 2=8[bgp]}\n"
                             "waiting: vlan{2}\n"
                             "boot:\n");
}

TEST_F(Recycle, TheInvalidIndexIsNeitherHandedOverNorFreed) {
    world.request("bgp", vlan(2));
    std::string const before = world.state();
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(65535);
    EXPECT_EQ(world.capture.traces(), (Lines{"1 recycleOrFreeVpIndex"}));
    EXPECT_EQ(world.state(), before);
}

TEST_F(Recycle, AnIndexIsCutToSixteenBits) {
    world.sm->recycleOrFreeVpIndex(0x10008);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8"}));
    world.sm->recycleOrFreeVpIndex(0x1FFFF);
    EXPECT_EQ(world.capture.traces(), (Lines{"1 recycleOrFreeVpIndex"}));
}

TEST_F(Recycle, AnIndexIsCutBeforeItIsHandedOver) {
    world.request("bgp", vlan(2));
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(0x10008);
    EXPECT_EQ(recycleTraces(), (Lines{"1 recycleOrFreeVpIndex",
                                      "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
                                      "vpIndexAllocator(bgp)->vpIndexStatus()->vlanVport(2)"}));
    EXPECT_EQ(world.state(), "pool 9: 0-8\n"
                             "config bgp: vlan{1 2}\n"
                             "config mlag:\n"
                             "status bgp: vlan{1=8 2=8} requests=1 failures=1 frees=0 size=9\n"
                             "status mlag: requests=0 failures=0 frees=0 size=9\n"
                             "references: vlan{1=8[bgp] 2=8[bgp]}\n"
                             "waiting:\n"
                             "boot:\n");
}

TEST_F(Recycle, KindsAreServedVlanRemoteMlagEdgeEFilter) {
    world.request("bgp", efilter("Ethernet7"));
    world.request("bgp", edge("Ethernet1:10"));
    world.request("bgp", mlag("10.0.0.2@17"));
    world.request("bgp", remote("10.0.0.1@17"));
    world.request("bgp", vlan(2));
    world.capture.forget();
    world.withdraw("bgp", vlan(1));
    world.withdraw("bgp", vlan(2));
    world.withdraw("bgp", remote("10.0.0.1@17"));
    world.withdraw("bgp", mlag("10.0.0.2@17"));
    world.withdraw("bgp", edge("Ethernet1:10"));
    Lines const normal{"VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                       "add virtual port for vxlan vlan 2 svp",
                       "VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                       "add virtual port for "
                       "vxlan remote vtep: 17",
                       "VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                       "add virtual port for "
                       "vxlan remote vtep: 17",
                       "VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                       "add virtual port for "
                       "vxlan edge port: Ethernet1, vlan: 10",
                       "VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                       "add virtual port for "
                       "eFilterDisable intf: Ethernet7"};
    EXPECT_EQ(world.capture.logs(), normal);
    EXPECT_EQ(world.state(),
              "pool 9: 0-8\n"
              "config bgp: efilter{Ethernet7}\n"
              "config mlag:\n"
              "status bgp: efilter{Ethernet7=8} requests=1 failures=5 frees=5 size=9\n"
              "status mlag: requests=0 failures=0 frees=0 size=9\n"
              "references: efilter{Ethernet7=8[bgp]}\n"
              "waiting:\n"
              "boot:\n");
}

TEST_F(Recycle, AKeyThatDoesNotWaitAnyMoreIsTakenOffAndPassedOver) {
    world.waiting->vlanVportIs(vlan(90).key, true); // no reference
    world.references->edgeVportIs(edge("Ethernet9:9").key, referenceOf(8, {"bgp"}));
    world.waiting->edgeVportIs(edge("Ethernet9:9").key, true); // a valid one
    world.request("bgp", efilter("Ethernet7"));
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.indexOf("bgp", efilter("Ethernet7")), 8);
    EXPECT_EQ(world.waiting->memberCount(), 0u);
}

TEST_F(Recycle, AWaitingKeyThatNamesNobodyStaysAndTakesNothing) {
    world.references->vlanVportIs(vlan(5).key, VpReference());
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8"}));
    EXPECT_TRUE(world.waits(vlan(5)));
    EXPECT_EQ(world.references->vlanVport(vlan(5).key), VpReference());
}

TEST_F(Recycle, WithoutAReferenceListTheIndexIsFreed) {
    world.references = nullptr;
    world.configDir = vpIndexConfigDirFactory("config");
    world.start();
    world.sm->setVpBitmap(8);
    world.waiting->vlanVportIs(vlan(2).key, true);
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8"}));
    EXPECT_EQ(world.pool(), "9: 0-7");
    EXPECT_TRUE(world.waits(vlan(2)));
}

TEST_F(Recycle, TheWaitingEntryIsLeftToTheHandlerOfTheReferenceList) {
    world.request("bgp", vlan(2));
    world.sm->hasNotificationActiveIs(false);
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.indexOf("bgp", vlan(2)), 8);
    EXPECT_TRUE(world.waits(vlan(2)));
    world.sm->recycleOrFreeVpIndex(8); // the next pass sees a reference that holds an index
    EXPECT_FALSE(world.waits(vlan(2)));
}

} // namespace
