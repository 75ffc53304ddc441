// Subscribers of the records that change configs while a handler is writing: the change is handled
// after it.

#include "VornicL3Shared/allocator/KeyedTraceWords.h"
#include "VornicL3Shared/allocator/ReentrancyTestBase.h"
#include "VornicL3Shared/support/References.h"

namespace {

template <class K> class ReentrantChanges : public Test::ReentrancyTestBase<K> {};
TYPED_TEST_SUITE(ReentrantChanges, Test::AllKinds, Test::KindNames);

TYPED_TEST(ReentrantChanges, AKeyCanBeWithdrawnWithinTheWriteOfItsStatus) {
    this->requestAnd([this] { this->withdraw("bgp", 1); });
    this->expectSound("pool 16: 0-7\n"
                      "config bgp:\n"
                      "status bgp: requests=1 failures=0 frees=1 size=16\n"
                      "references:\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AKeyCanBeWithdrawnWithinTheWriteOfItsReference) {
    this->start({}, {"bgp"});
    this->atFirstReference([this] { this->withdraw("bgp", 1); });
    this->request("bgp", 1);
    this->expectSound("pool 16: 0-7\n"
                      "config bgp:\n"
                      "status bgp: requests=1 failures=0 frees=1 size=16\n"
                      "references:\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AWaitingKeyCanBeWithdrawnBeforeTheStateMachineSeesIt) {
    this->atFirstReference([this] { this->withdraw("bgp", 1); }); // subscribes before it
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    this->expectState("pool 8: 0-7\n"
                      "config bgp:\n"
                      "status bgp: requests=0 failures=1 frees=0 size=8\n"
                      "references:\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AKeyCanBeRequestedAgainWithinItsWithdrawal) {
    this->start({}, {"bgp"});
    this->request("bgp", 1);
    this->atFirstReference([this] { this->request("bgp", 1); });
    this->withdraw("bgp", 1);
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=2 failures=0 frees=1 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, ARequestThatIsTakenBackWithinTheSameHandler) {
    this->requestAnd([this] {
        this->request("bgp", 2);
        this->withdraw("bgp", 2);
    });
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, OtherKeysCanBeRequestedAndAreServedInTheirOrder) {
    this->requestAnd([this] {
        this->request("bgp", 3);
        this->request("bgp", 2);
    });
    this->expectSound(
        "pool 16: 0-7 13-15\n"
        "config bgp: <kind>{<1> <3> <2>}\n"
        "status bgp: <kind>{<1>=15 <3>=14 <2>=13} requests=3 failures=0 frees=0 size=16\n"
        "references: <kind>{<1>=15[bgp] <3>=14[bgp] <2>=13[bgp]}\n"
        "waiting:\n"
        "boot:\n");
}

TYPED_TEST(ReentrantChanges, AnotherClientCanRequestTheKeyAndSharesItsIndex) {
    this->requestAnd([this] { this->request("evpn", 1); }, {"bgp", "evpn"});
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "config evpn: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "status evpn: <kind>{<1>=15} requests=0 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp evpn]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, ANewClientCanAppearWithTheKeyAndSharesItsIndex) {
    this->requestAnd([this] {
        auto const config = VornicCentral::vpIndexConfigFactory("evpn");
        config->is<TypeParam>(Test::numbered<TypeParam>(1).key, true);
        this->world.statusDir->vpIndexStatusIs("evpn", VornicCentral::vpIndexStatusFactory("evpn"));
        this->world.configDir->vpIndexConfigIs("evpn", config);
    });
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "config evpn: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "status evpn: <kind>{<1>=15} requests=0 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp evpn]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AKeyCanBeWithdrawnWithinTheHandOverOfAnIndex) {
    this->letOneWait();
    this->request("evpn", 3);
    this->atFirstStatus("evpn", [this] { this->withdraw("evpn", 2); });
    this->withdraw("bgp", 1);
    this->expectSound("pool 9: 0-8\n"
                      "config bgp:\n"
                      "config evpn: <kind>{<3>}\n"
                      "status bgp: requests=1 failures=0 frees=1 size=9\n"
                      "status evpn: <kind>{<3>=8} requests=0 failures=2 frees=1 size=9\n"
                      "references: <kind>{<3>=8[evpn]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AKeyCanBeWithdrawnWithinTheFirstSweep) {
    this->world.client("bgp");
    this->request("bgp", 1);
    this->request("bgp", 2);
    this->atFirstStatus("bgp", [this] { this->withdraw("bgp", 1); });
    this->world.start();
    this->expectSound("pool 16: 0-7 14\n"
                      "config bgp: <kind>{<2>}\n"
                      "status bgp: <kind>{<2>=14} requests=2 failures=0 frees=1 size=16\n"
                      "references: <kind>{<2>=14[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, AKeyCanBeRequestedWithinTheCleanUpOfIt) {
    this->start({}, {"bgp"});
    this->world.references->template is<TypeParam>(
        Test::numbered<TypeParam>(1).key,
        VornicCentral::VpReference(VornicCentral::VirtualPort(12)));
    this->world.sm->setVpBitmap(12);
    this->atFirstReference([this] { this->request("bgp", 1); });
    this->world.sm->clearStaleEntries();
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, StaleEntriesClearedWithinAnAdditionWaitUntilItIsDone) {
    using Words = Test::KeyedTraceWords<TypeParam>;
    this->world.references->template is<TypeParam>(Test::numbered<TypeParam>(1).key,
                                                   Test::referenceOf(15, {"former"}));
    this->start({}, {"bgp"}); // the reference is stale now
    this->atFirstStatus("bgp", [this] {
        this->world.capture.forget();
        this->world.sm->clearStaleEntries();
    });
    this->request("bgp", 1);
    EXPECT_EQ(this->world.capture.traces(), (Test::Lines{Words::reference, "1 clearStaleEntries"}));
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=0 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantChanges, StaleEntriesClearedWithinAnAdditionAreClearedAfterIt) {
    this->world.references->template is<TypeParam>(Test::numbered<TypeParam>(2).key,
                                                   Test::referenceOf(14, {"former"}));
    this->requestAnd([this] { this->world.sm->clearStaleEntries(); });
    this->expectSound("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

} // namespace
