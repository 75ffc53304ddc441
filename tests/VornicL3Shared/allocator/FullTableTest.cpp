// What a keyed handler does when the table has no free index, the same for all five kinds.

#include "VornicL3Shared/allocator/KindTest.h"

namespace {

template <class K> class FullTable : public Test::KindTest<K> {};
TYPED_TEST_SUITE(FullTable, Test::AllKinds, Test::KindNames);

TYPED_TEST(FullTable, RecordsTheKeyWithTheInvalidIndex) {
    this->start({.tableSize = 8}, {"bgp"});
    this->request("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 8: 0-7\n"
                           "config bgp: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=65535} requests=0 failures=1 frees=0 size=8\n"
                           "references: <kind>{<1>=65535[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(FullTable, LetsTheKeyWaitWhenReallocationIsOn) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 8: 0-7\n"
                           "config bgp: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=65535} requests=0 failures=1 frees=0 size=8\n"
                           "references: <kind>{<1>=65535[bgp]}\n"
                           "waiting: <kind>{<1>}\n"
                           "boot:\n"));
}

TYPED_TEST(FullTable, SecondClientSharesTheWaitingKeyWithoutAnAttempt) {
    this->start({.tableSize = 9, .reallocation = true}, {"ospf", "bgp", "evpn"});
    this->request("ospf", 1);
    this->request("bgp", 2);
    this->world.sm->freeVpIndex(8); // an attempt would find it
    this->request("evpn", 2);
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-7\n"
                           "config ospf: <kind>{<1>}\n"
                           "config bgp: <kind>{<2>}\n"
                           "config evpn: <kind>{<2>}\n"
                           "status ospf: <kind>{<1>=8} requests=1 failures=0 frees=0 size=9\n"
                           "status bgp: <kind>{<2>=65535} requests=0 failures=1 frees=0 size=9\n"
                           "status evpn: <kind>{<2>=65535} requests=0 failures=0 frees=0 size=9\n"
                           "references: <kind>{<1>=8[ospf] <2>=65535[bgp evpn]}\n"
                           "waiting: <kind>{<2>}\n"
                           "boot:\n"));
}

TYPED_TEST(FullTable, BothClientsOfAWaitingKeyGetTheIndexThatIsReleased) {
    this->start({.tableSize = 9, .reallocation = true}, {"ospf", "bgp", "evpn"});
    this->request("ospf", 1);
    this->request("bgp", 2);
    this->request("evpn", 2);
    this->withdraw("ospf", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 9: 0-8\n"
                           "config ospf:\n"
                           "config bgp: <kind>{<2>}\n"
                           "config evpn: <kind>{<2>}\n"
                           "status ospf: requests=1 failures=0 frees=1 size=9\n"
                           "status bgp: <kind>{<2>=8} requests=0 failures=1 frees=0 size=9\n"
                           "status evpn: <kind>{<2>=8} requests=0 failures=0 frees=0 size=9\n"
                           "references: <kind>{<2>=8[bgp evpn]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(FullTable, KeepsAKeyWaitingWhenOneOfTwoClientsWithdraws) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp", "evpn"});
    this->request("bgp", 1);
    this->request("evpn", 1);
    this->withdraw("bgp", 1);
    EXPECT_EQ(this->state(),
              this->filled("pool 8: 0-7\n"
                           "config bgp:\n"
                           "config evpn: <kind>{<1>}\n"
                           "status bgp: requests=0 failures=1 frees=0 size=8\n"
                           "status evpn: <kind>{<1>=65535} requests=0 failures=0 frees=0 size=8\n"
                           "references: <kind>{<1>=65535[evpn]}\n"
                           "waiting: <kind>{<1>}\n"
                           "boot:\n"));
}

TYPED_TEST(FullTable, ForgetsAWaitingKeyWhenTheLastClientWithdraws) {
    for (bool const reallocation : {false, true}) {
        this->start({.tableSize = 8, .reallocation = reallocation}, {"bgp"});
        this->request("bgp", 1);
        this->withdraw("bgp", 1);
        EXPECT_EQ(this->state(), "pool 8: 0-7\n"
                                 "config bgp:\n"
                                 "status bgp: requests=0 failures=1 frees=0 size=8\n"
                                 "references:\n"
                                 "waiting:\n"
                                 "boot:\n");
    }
}

TYPED_TEST(FullTable, DoesNotTryAgainForAWaitingKeyThatIsHandledAgain) {
    this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->world.sm->freeVpIndex(8); // an attempt would find it
    this->handle("bgp", 2);
    EXPECT_EQ(
        this->state(),
        this->filled("pool 9: 0-7\n"
                     "config bgp: <kind>{<1> <2>}\n"
                     "status bgp: <kind>{<1>=8 <2>=65535} requests=1 failures=1 frees=0 size=9\n"
                     "references: <kind>{<1>=8[bgp] <2>=65535[bgp]}\n"
                     "waiting: <kind>{<2>}\n"
                     "boot:\n"));
}

} // namespace
