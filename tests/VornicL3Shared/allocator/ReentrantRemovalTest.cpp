// Subscribers of the records that remove what a handler is working for, or the state machine
// itself.

#include "VornicL3Shared/allocator/ReentrancyTestBase.h"

namespace {

template <class K> class ReentrantRemoval : public Test::ReentrancyTestBase<K> {};
TYPED_TEST_SUITE(ReentrantRemoval, Test::AllKinds, Test::KindNames);

TYPED_TEST(ReentrantRemoval, AClientAndItsAllocatorCanBeRemovedAndTheHandlerIsDoneAllTheSame) {
    this->requestAnd([this] {
        this->world.configDir->vpIndexConfigDel("bgp");
        this->world.sm->vpIndexAllocatorDel("bgp");
    });
    this->expectState("pool 16: 0-7 15\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, AnAllocatorCanBeRemovedBeforeAChangeThatItWasLeft) {
    this->requestAnd([this] {
        this->request("bgp", 2);
        this->world.sm->vpIndexAllocatorDel("bgp");
    });
    this->expectState("pool 16: 0-7 14-15\n"
                      "config bgp: <kind>{<1> <2>}\n"
                      "status bgp: <kind>{<1>=15 <2>=14} requests=2 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp] <2>=14[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, TheLastPointerToTheStateMachineCanBeDroppedWithinAnAddition) {
    this->requestAnd([this] { this->dropStateMachine(); });
    this->expectGone();
    this->expectState("pool none\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, TheLastPointerToTheStateMachineCanBeDroppedWithinAWithdrawal) {
    this->letOneWait();
    this->atFirstReference([this] { this->dropStateMachine(); });
    this->withdraw("bgp", 1);
    this->expectGone();
    this->expectState("pool none\n"
                      "config bgp:\n"
                      "config evpn: <kind>{<2>}\n"
                      "status bgp: requests=1 failures=0 frees=1 size=9\n"
                      "status evpn: <kind>{<2>=8} requests=0 failures=1 frees=0 size=9\n"
                      "references: <kind>{<2>=8[evpn]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, TheLastPointerToTheStateMachineCanBeDroppedWhenAKeyBeginsToWait) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->atFirstWaiting([this] { this->dropStateMachine(); });
    this->world.references->template is<TypeParam>(Test::numbered<TypeParam>(1).key,
                                                   VornicCentral::VpReference());
    this->expectGone();
    this->expectState("pool none\n"
                      "config bgp:\n"
                      "status bgp: requests=0 failures=0 frees=0 size=8\n"
                      "references: <kind>{<1>=65535[]}\n"
                      "waiting: <kind>{<1>}\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, TheLastPointerToTheStateMachineCanBeDroppedWhileANewClientIsServed) {
    this->start({}, {});
    auto const status = VornicCentral::vpIndexStatusFactory("bgp");
    auto const config = VornicCentral::vpIndexConfigFactory("bgp");
    config->is<TypeParam>(Test::numbered<TypeParam>(1).key, true);
    this->world.statusDir->vpIndexStatusIs("bgp", status);
    this->atFirst(*status, [this] { this->dropStateMachine(); });
    this->world.configDir->vpIndexConfigIs("bgp", config);
    this->expectGone();
    this->expectState("pool none\n"
                      "config bgp: <kind>{<1>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval,
           TheLastPointerToTheStateMachineCanBeDroppedWhileStaleEntriesAreCleared) {
    this->world.references->template is<TypeParam>(
        Test::numbered<TypeParam>(1).key,
        VornicCentral::VpReference(VornicCentral::VirtualPort(9)));
    this->world.references->template is<TypeParam>(
        Test::numbered<TypeParam>(2).key,
        VornicCentral::VpReference(VornicCentral::VirtualPort(10)));
    this->start({}, {});
    this->atFirstReference([this] { this->dropStateMachine(); });
    this->world.sm->clearStaleEntries();
    this->expectGone();
    this->expectState("pool none\n"
                      "references:\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, AChangeThatIsLeftToAStateMachineWithoutPointersIsStillHandled) {
    this->requestAnd([this] {
        this->request("bgp", 2);
        this->dropStateMachine();
    });
    this->expectGone();
    this->expectState("pool none\n"
                      "config bgp: <kind>{<1> <2>}\n"
                      "status bgp: <kind>{<1>=15 <2>=14} requests=2 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp] <2>=14[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, AnAllocatorThatBecomesAZombieIgnoresWhatItWasLeft) {
    this->requestAnd([this] {
        this->request("bgp", 2);
        this->world.allocator("bgp").qorDoZombieReactors(true);
    });
    this->expectState("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1> <2>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, AStateMachineThatBecomesAZombieIgnoresANameThatItWasLeft) {
    this->requestAnd([this] {
        this->world.client("evpn");
        this->request("evpn", 2);
        this->world.sm->qorDoZombieReactors(true);
    });
    EXPECT_FALSE(this->world.sm->vpIndexAllocatorHas("evpn"));
    this->expectState("pool 16: 0-7 15\n"
                      "config bgp: <kind>{<1>}\n"
                      "config evpn: <kind>{<2>}\n"
                      "status bgp: <kind>{<1>=15} requests=1 failures=0 frees=0 size=16\n"
                      "status evpn: requests=0 failures=0 frees=0 size=0\n"
                      "references: <kind>{<1>=15[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(ReentrantRemoval, ASubscriberCanLeaveWithinItsNotification) {
    this->requestAnd([this] { this->listeners.front()->leave(); });
    this->request("bgp", 2);
    EXPECT_EQ(this->listeners.front()->fields(),
              (std::vector<Pelo::FieldId>{263, TypeParam::field}));
}

} // namespace
