// The clean-up of references that no client came back for.

#include "VornicL3Shared/allocator/KindTest.h"

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::Lines;
using Test::remote;
using Test::vlan;

class StaleEntries : public testing::Test {
protected:
    /// Starts over references that were written by hand.
    void startWith(bool reallocation) {
        world.settings = {.tableSize = 16, .reallocation = reallocation};
        world.start();
        world.capture.forget();
    }
    template <class V> void survive(V const& vport, U16 vpIndex) {
        world.references->is<typename V::Kind>(vport.key, VpReference(VirtualPort(vpIndex)));
    }
    ::Test::World world;
};

TEST_F(StaleEntries, WithoutAnyOnlyTheNameIsTraced) {
    world.client("bgp");
    startWith(false);
    world.request("bgp", vlan(5));
    std::string const before = world.state();
    world.capture.forget();
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.capture.traces(), Lines{"1 clearStaleEntries"});
    EXPECT_EQ(world.capture.ring(), Lines{"1 clearStaleEntries"});
    EXPECT_EQ(world.state(), before);
}

TEST_F(StaleEntries, AreReleasedInTheOrderOfKindsTheIndexBeforeTheReference) {
    survive(vlan(5), 12);
    survive(remote("10.0.0.1@17"), 13);
    startWith(false);
    world.sm->clearStaleEntries();
    EXPECT_EQ(
        world.capture.traces(),
        (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 13, references: []}",
               "5 freeVpIndex index freed is: 13", "1 handleInvalidRemoteVport vtep: 10.0.0.1",
               "1 clearStaleEntries free  {vPort: 12, references: []}",
               "5 freeVpIndex index freed is: 12", "1 handleInvalidVlanVport vlan: 5"}));
    EXPECT_EQ(world.state(), "pool 16: 0-7\nreferences:\nwaiting:\nboot:\n");
}

TEST_F(StaleEntries, WithoutAnIndexAreDeletedAndFreeNothing) {
    survive(vlan(5), 65535);
    startWith(false);
    world.sm->clearStaleEntries();
    EXPECT_EQ(
        world.capture.traces(),
        (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 65535, references: []}",
               "1 handleInvalidVlanVport vlan: 5"}));
    EXPECT_EQ(world.state(), "pool 16: 0-7\nreferences:\nwaiting:\nboot:\n");
}

TEST_F(StaleEntries, WithReallocationTheIndexGoesToAWaitingKey) {
    for (U16 index = 8; index < 16; ++index) {
        survive(vlan(static_cast<U16>(100 + index)), index);
    }
    world.client("bgp");
    startWith(true);
    world.request("bgp", edge("Ethernet1:10"));
    ASSERT_EQ(world.indexOf("bgp", edge("Ethernet1:10")), 65535);
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.state(),
              "pool 16: 0-8\n"
              "config bgp: edge{Ethernet1:10}\n"
              "status bgp: edge{Ethernet1:10=8} requests=0 failures=1 frees=0 size=16\n"
              "references: edge{Ethernet1:10=8[bgp]}\nwaiting:\nboot:\n");
}

TEST_F(StaleEntries, AStaleReferenceThatWaitsDoesNotTakeTheIndexOfAnother) {
    survive(vlan(5), 12);
    survive(vlan(6), 65535);
    startWith(true);
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.state(), "pool 16: 0-7\nreferences:\nwaiting:\nboot:\n");
}

TEST_F(StaleEntries, MayBeClearedAgain) {
    survive(vlan(5), 12);
    startWith(true);
    world.sm->clearStaleEntries();
    world.capture.forget();
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.capture.traces(), Lines{"1 clearStaleEntries"});
}

TEST_F(StaleEntries, AreTracedInTheRingToo) {
    survive(vlan(5), 12);
    startWith(false);
    world.sm->clearStaleEntries();
    EXPECT_EQ(world.capture.ring(),
              (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 12, references: []}",
                     "5 freeVpIndex index freed is: 12", "1 handleInvalidVlanVport vlan: 5"}));
}

} // namespace
