// What becomes of an index that is released.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::efilter;
using Test::Lines;
using Test::mlag;
using Test::remote;
using Test::vlan;

VpReference reference(U16 vpIndex, std::initializer_list<char const*> names) {
    VpReference result{VirtualPort(vpIndex)};
    for (char const* const name : names) {
        result.referenceIs(name, true);
    }
    return result;
}

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
    /// The first nine records that a hand-over and its surroundings leave, without the levels of
    /// the handlers.
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
    EXPECT_EQ(world.pool(), "9: 0-7");
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
    world.references->edgeVportIs(edge("Ethernet9:9").key, reference(8, {"bgp"}));
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

TEST_F(Recycle, TheWaitingEntryIsLeftToTheHandlerOfTheReferenceList) {
    world.request("bgp", vlan(2));
    world.sm->hasNotificationActiveIs(false);
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.indexOf("bgp", vlan(2)), 8);
    EXPECT_TRUE(world.waits(vlan(2)));
    world.sm->recycleOrFreeVpIndex(8); // the next pass sees a reference that holds an index
    EXPECT_FALSE(world.waits(vlan(2)));
}

TEST_F(Recycle, TheRingNamesEachHandOver) {
    world.request("bgp", edge("Ethernet1/1:10"));
    world.capture.forget();
    world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(world.capture.ring(),
              (Lines{"1 recycleOrFreeVpIndex",
                     "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
                     "vpIndexAllocator(bgp)->vpIndexStatus()->edgeVport(Ethernet1/1:10)",
                     "1 handleInvalidEdgeVport port: Et1/1 vlan: 10",
                     "5 handleInvalidEdgeVport vport addition/modification for: 8",
                     "5 handleInvalidEdgeVport vport deleted : 8"}));
}

template <class Kind> class RecycleKind : public ::Test::KindTest<Kind> {};
TYPED_TEST_SUITE(RecycleKind, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(RecycleKind, AllClientsOfTheKeyGetTheIndexWithOneMessageAndOneReferenceWrite) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp", "mlag"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->request("mlag", 2);
    this->world.capture.forget();
    ::Test::Listener references(*this->world.references);
    this->world.sm->recycleOrFreeVpIndex(8);
    EXPECT_EQ(this->world.capture.logs().size(), 1u);
    EXPECT_EQ(references.fields(), (std::vector<Pelo::FieldId>{TypeParam::field}));
    EXPECT_EQ(this->world.indexOf("bgp", ::Test::numbered<TypeParam>(2)), 8);
    EXPECT_EQ(this->world.indexOf("mlag", ::Test::numbered<TypeParam>(2)), 8);
    EXPECT_FALSE(this->world.waits(::Test::numbered<TypeParam>(2)));
}

TYPED_TEST(RecycleKind, TheKeyThatHasWaitedLongestIsServedFirst) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
    for (U32 number = 1; number <= 4; ++number) {
        this->request("bgp", number);
    }
    this->withdraw("bgp", 2); // leaves the queue and enters it again at its end
    this->request("bgp", 2);
    std::vector<U32> served;
    for (U32 holder = 1, rounds = 0; rounds < 3; ++rounds) {
        this->withdraw("bgp", holder);
        for (U32 number = 1; number <= 4; ++number) {
            if (this->world.indexOf("bgp", ::Test::numbered<TypeParam>(number)) == 8) {
                holder = number;
            }
        }
        served.push_back(holder);
    }
    EXPECT_EQ(served, (std::vector<U32>{3, 4, 2}));
}

TYPED_TEST(RecycleKind, AllocationCountersDoNotMove) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->world.sm->recycleOrFreeVpIndex(8);
    auto const& status = this->world.status("bgp");
    EXPECT_EQ(std::to_string(status.vpAllocRequests()) + " " +
                  std::to_string(status.vpAllocFailures()) + " " +
                  std::to_string(status.vpFreeRequests()),
              "1 1 0");
}

} // namespace
