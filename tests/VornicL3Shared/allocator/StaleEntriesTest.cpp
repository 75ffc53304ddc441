// The clean-up of references that no client came back for.

#include "VornicL3Shared/allocator/KeyedTraceWords.h"
#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Death.h"

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

TEST_F(StaleEntries, WithReallocationTheIndexIsHandedOverBeforeTheReferenceGoes) {
    for (U16 index = 8; index < 16; ++index) {
        survive(vlan(static_cast<U16>(100 + index)), index);
    }
    world.client("bgp");
    world.client("mlag");
    startWith(true);
    for (U16 number = 109; number < 116; ++number) {
        world.request("mlag", vlan(number)); // all but the one that holds 8 come back
    }
    world.request("bgp", edge("Ethernet1:10"));
    world.capture.forget();
    world.sm->clearStaleEntries();
    EXPECT_EQ(
        world.capture.traces(),
        (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 8, references: []}",
               "1 recycleOrFreeVpIndex",
               "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
               "vpIndexAllocator(bgp)->vpIndexStatus()->edgeVport(Ethernet1:10)",
               "1 handleInvalidEdgeVport pvKey: Ethernet1:10",
               "5 handleInvalidEdgeVport vport addition/modification for: 8",
               "5 handleInvalidEdgeVport vport deleted : 8", "1 handleInvalidVlanVport vlan: 108",
               "5 handleInvalidVlanVport vport deleted "}));
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

/// One reference of a kind that holds 12, and one of a client that holds 15.
template <class Kind> class StaleEntriesOfAKind : public ::Test::KindTest<Kind> {
protected:
    void startWith(bool reallocation) {
        this->world.references->template is<Kind>(::Test::numbered<Kind>(1).key,
                                                  VpReference(VirtualPort(12)));
        this->start({.tableSize = 16, .reallocation = reallocation}, {"bgp"});
        this->request("bgp", 2);
        this->world.capture.forget();
    }
    std::string const cleared =
        this->filled("pool 16: 0-7 15\n"
                     "config bgp: <kind>{<2>}\n"
                     "status bgp: <kind>{<2>=15} requests=1 failures=0 frees=0 size=16\n"
                     "references: <kind>{<2>=15[bgp]}\n"
                     "waiting:\n"
                     "boot:\n");
};
TYPED_TEST_SUITE(StaleEntriesOfAKind, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(StaleEntriesOfAKind, AreFreed) {
    this->startWith(false);
    this->world.sm->clearStaleEntries();
    EXPECT_EQ(
        this->world.capture.traces(),
        (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 12, references: []}",
               "5 freeVpIndex index freed is: 12", ::Test::KeyedTraceWords<TypeParam>::reference}));
    EXPECT_EQ(this->state(), this->cleared);
}

TYPED_TEST(StaleEntriesOfAKind, AreFreedByTheRecyclingWithReallocationWhenNobodyWaits) {
    using Words = ::Test::KeyedTraceWords<TypeParam>;
    this->startWith(true);
    this->world.sm->clearStaleEntries();
    EXPECT_EQ(this->world.capture.traces(),
              (Lines{"1 clearStaleEntries", "1 clearStaleEntries free  {vPort: 12, references: []}",
                     "1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 12", Words::reference,
                     Words::gone}));
    EXPECT_EQ(this->state(), this->cleared);
}

TYPED_TEST(StaleEntriesOfAKind, SeveralGoInOneWalk) {
    for (U32 number = 1; number <= 3; ++number) {
        this->world.references->template is<TypeParam>(
            ::Test::numbered<TypeParam>(number).key,
            VpReference(VirtualPort(static_cast<U16>(10 + number))));
    }
    this->start({.tableSize = 16}, {"bgp"});
    this->request("bgp", 3);
    this->world.sm->clearStaleEntries();
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 13\n"
                           "config bgp: <kind>{<3>}\n"
                           "status bgp: <kind>{<3>=13} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<3>=13[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

template <class Kind> class StaleEntriesDeathTest : public ::Test::KindTest<Kind> {};
TYPED_TEST_SUITE(StaleEntriesDeathTest, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(StaleEntriesDeathTest, BeforeTheyAreClearedTheTableFailsItsCheckAndAfterThatItPasses) {
    this->start({.tableSize = 16}, {"bgp"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->world.stop();
    this->withdraw("bgp", 1);
    this->world.start();
    EXPECT_DEATH(
        this->world.sm->verify(),
        ::Test::assertionFailure("void VornicCentral::VpIndexAllocatorDirSm::verify() const",
                                 "reference.references()"));
    this->world.sm->clearStaleEntries();
    this->world.sm->verify();
    EXPECT_EQ(this->world.pool(), "16: 0-7 14");
}

} // namespace
