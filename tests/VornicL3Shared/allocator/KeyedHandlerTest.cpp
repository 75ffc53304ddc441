// What a keyed handler does to records, counters and pool, the same for all five kinds.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/References.h"

namespace {

using Test::Lines;

template <class K> class KeyedHandler : public Test::KindTest<K> {};
TYPED_TEST_SUITE(KeyedHandler, Test::AllKinds, Test::KindNames);

TYPED_TEST(KeyedHandler, GivesANewRequestTheHighestFreeIndex) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    EXPECT_EQ(
        this->state(),
        this->filled("pool 16: 0-7 14-15\n"
                     "config bgp: <kind>{<1> <2>}\n"
                     "status bgp: <kind>{<1>=15 <2>=14} requests=2 failures=0 frees=0 size=16\n"
                     "references: <kind>{<1>=15[bgp] <2>=14[bgp]}\n"
                     "waiting:\n"
                     "boot:\n"));
}

TYPED_TEST(KeyedHandler, TakesAKeyWhoseValueIsFalseAsRequested) {
    this->start({}, {"bgp"});
    this->world.config("bgp").template is<TypeParam>(Test::numbered<TypeParam>(1).key, false);
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 15\n"
                           "config bgp: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=15[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(KeyedHandler, LetsASecondClientShareTheIndex) {
    this->start({}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 15\n"
                           "config bgp: <kind>{<1>}\n"
                           "config evpn: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                           "status evpn: <kind>{<1>=15} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=15[bgp evpn]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(KeyedHandler, LeavesAKeyThatIsRequestedAgainAsItIs) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    auto const before = this->state();
    this->world.config("bgp").template is<TypeParam>(Test::numbered<TypeParam>(1).key, false);
    this->handle("bgp", 1);
    EXPECT_EQ(this->state(), before);
}

TYPED_TEST(KeyedHandler, KeepsTheIndexWhenOneOfTwoClientsWithdraws) {
    this->start({}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 1);
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 15\n"
                           "config bgp:\n"
                           "config evpn: <kind>{<1>}\n"
                           "status bgp: requests=1 failures=0 frees=1 size=16\n"
                           "status evpn: <kind>{<1>=15} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=15[evpn]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(KeyedHandler, FreesTheIndexWhenTheLastClientWithdraws) {
    for (bool const reallocation : {false, true}) {
        this->start({.reallocation = reallocation}, {"bgp", "evpn"});
        this->request("bgp", 1);
        this->request("evpn", 1);
        this->withdraw("bgp", 1);
        this->withdraw("evpn", 1);
        EXPECT_EQ(this->state(), "pool 16: 0-7\n"
                                 "config bgp:\n"
                                 "config evpn:\n"
                                 "status bgp: requests=1 failures=0 frees=1 size=16\n"
                                 "status evpn: requests=0 failures=0 frees=1 size=16\n"
                                 "references:\n"
                                 "waiting:\n"
                                 "boot:\n");
    }
}

TYPED_TEST(KeyedHandler, HandsTheIndexToAWaitingKeyWhenTheLastClientWithdraws) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 2);
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-8\n"
                           "config bgp:\n"
                           "config evpn: <kind>{<2>}\n"
                           "status bgp: requests=1 failures=0 frees=1 size=9\n"
                           "status evpn: <kind>{<2>=8} requests=0 failures=1 frees=0 size=9\n"
                           "references: <kind>{<2>=8[evpn]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(KeyedHandler, LeavesAWaitingKeyWithoutIndexWhileReallocationIsOff) {
    this->start({.tableSize = 9}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 2);
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-7\n"
                           "config bgp:\n"
                           "config evpn: <kind>{<2>}\n"
                           "status bgp: requests=1 failures=0 frees=1 size=9\n"
                           "status evpn: <kind>{<2>=65535} requests=0 failures=1 frees=0 size=9\n"
                           "references: <kind>{<2>=65535[evpn]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(KeyedHandler, ChangesNothingForAKeyThatNobodyHolds) {
    for (bool const reallocation : {false, true}) {
        this->start({.reallocation = reallocation}, {"bgp"});
        this->handle("bgp", 1);
        EXPECT_EQ(this->state(), "pool 16: 0-7\n"
                                 "config bgp:\n"
                                 "status bgp: requests=0 failures=0 frees=0 size=16\n"
                                 "references:\n"
                                 "waiting:\n"
                                 "boot:\n");
    }
}

TYPED_TEST(KeyedHandler, WithdrawalOfAKeyWhoseRecoveredReferenceNamesNobody) {
    for (bool const reallocation : {false, true}) {
        this->world.references->template is<TypeParam>(Test::numbered<TypeParam>(1).key,
                                                       Test::referenceOf(12, {}));
        this->start({.reallocation = reallocation}, {"bgp"});
        this->handle("bgp", 1);
        EXPECT_EQ(this->state(), "pool 16: 0-7 12\n" // the client never held the index
                                 "config bgp:\n"
                                 "status bgp: requests=0 failures=0 frees=0 size=16\n"
                                 "references:\n"
                                 "waiting:\n"
                                 "boot:\n");
    }
}

TYPED_TEST(KeyedHandler, ChangesNothingForAKeyThatOnlyAnotherClientHolds) {
    this->start({}, {"bgp", "evpn"});
    this->request("evpn", 1);
    auto const before = this->state();
    this->handle("bgp", 1);
    EXPECT_EQ(this->state(), before);
}

TYPED_TEST(KeyedHandler, GivesAKeyThatComesBackANewIndex) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->withdraw("bgp", 1);
    this->request("bgp", 2);
    this->request("bgp", 1);
    EXPECT_EQ(
        this->state(),
        this->filled("pool 16: 0-7 14-15\n"
                     "config bgp: <kind>{<2> <1>}\n"
                     "status bgp: <kind>{<2>=15 <1>=14} requests=3 failures=0 frees=1 size=16\n"
                     "references: <kind>{<2>=15[bgp] <1>=14[bgp]}\n"
                     "waiting:\n"
                     "boot:\n"));
}

TYPED_TEST(KeyedHandler, NeverRemovesAKeyInASweep) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->world.allocator("bgp").qorDoZombieReactors(true);
    this->withdraw("bgp", 1);
    this->request("bgp", 2);
    this->sweep("bgp");
    EXPECT_EQ(
        this->state(),
        this->filled("pool 16: 0-7 14-15\n"
                     "config bgp: <kind>{<2>}\n"
                     "status bgp: <kind>{<1>=15 <2>=14} requests=2 failures=0 frees=0 size=16\n"
                     "references: <kind>{<1>=15[bgp] <2>=14[bgp]}\n"
                     "waiting:\n"
                     "boot:\n"));
}

} // namespace
