// Restarts of one kind: recovery from the reference list and the boot status, and the clean-up of
// statuses.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/allocator/TraceLines.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/References.h"

#include <map>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::linesOf;
using Test::referenceOf;

/// The words of each kind in the traces of reconciliation, written for key 1.
struct Words {
    std::string recovered; ///< "reconcile" and up to the index
    std::string recoveredFor;
    std::string ringFor;
    std::string bootRingFor;
    std::string skip;
    std::string deleteStatus;
    std::string ringDeleteStatus;
};

template <class Kind> Words const& words() {
    static std::map<std::string, Words> const all{
        {"remote",
         {" recovered vpIndex: ", " for vtep: 10.0.0.1@1001",
          " recovered vpIndex: 12 for vtep: 10.0.0.1", " recovered vpIndex: 12 for vtep: 10.0.0.1",
          " skipping reconcile for vtep: 10.0.0.1@1001 as it is using a reserved vp index",
          " delete status for vtep: 10.0.0.1@1001", " delete status for vtep: 10.0.0.1@1001"}},
        {"mlag",
         {" recovered mlag vpIndex: ", " for remote vtep: 10.0.0.1@1001",
          " recovered vpIndex: 12 for vtep: 10.0.0.1",
          " recovered mlag vpIndex: 12 for remote vtep: 10.0.0.1",
          " skipping reconcile for vtep: 10.0.0.1@1001 as it is using a reserved vp index",
          " delete status (mlag) for vtep: 10.0.0.1@1001",
          " delete status (mlag) for vtep: 10.0.0.1@1001"}},
        {"edge",
         {" recovered vpIndex: ", " for edge port: Ethernet1/1:100",
          " recovered vpIndex: 12 for port: Et1/1 vlan: 100",
          " recovered vpIndex: 12 for port: Et1/1 vlan: 100",
          " skipping reconcile for edgePort: Ethernet1/1:100 as it is using a reserved vp index",
          " delete status for pvKey: Ethernet1/1:100",
          " delete status for port: Ethernet1/1 vlan: 100"}},
        {"vlan",
         {" recovered vpIndex: ", " for vlan: 101", " recovered vpIndex: 12 for vlan: 101",
          " recovered vpIndex: 12 for vlan: 101",
          " skipping reconcile for vlan: 101 as it is using a reserved vp index",
          " delete status for vlan: 101", " delete status for vlan: 101"}},
        {"efilter",
         {" recovered vpIndex: ", " for intf: Ethernet2/1",
          " recovered vpIndex: 12 for intf: Et2/1", " recovered vpIndex: 12 for intf: Et2/1",
          " skipping reconcile for intf: Ethernet2/1 as it is using a reserved vp index",
          " delete status for intf: Ethernet2/1", " delete status for intf: Ethernet2/1"}}};
    return all.at(Kind::word);
}

template <class Kind> class Reconcile : public ::Test::KindTest<Kind> {
protected:
    void startOver(bool reallocation) {
        this->world.settings = {.tableSize = 16, .reallocation = reallocation};
        this->world.capture.forget();
        this->world.start();
    }
    /// A reference that names a client, as it survives.
    void survive(U32 number, U16 vpIndex, char const* name = "former") {
        this->world.references->template is<Kind>(::Test::numbered<Kind>(number).key,
                                                  referenceOf(vpIndex, {name}));
    }
    /// An entry of a client's status, as it survives.
    void hold(char const* name, U32 number, U16 vpIndex) {
        this->world.status(name).template is<Kind>(::Test::numbered<Kind>(number).key,
                                                   VirtualPort(vpIndex));
    }
    void boot(U32 number, U16 vpIndex) {
        this->world.boot->template is<Kind>(::Test::numbered<Kind>(number).key,
                                            VirtualPort(vpIndex));
    }
    VpReference reference(U32 number) const {
        return this->world.references->template get<Kind>(::Test::numbered<Kind>(number).key);
    }
};
TYPED_TEST_SUITE(Reconcile, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(Reconcile, AReferenceKeepsItsIndexAndLosesItsNames) {
    auto const& word = words<TypeParam>();
    this->survive(1, 12);
    this->startOver(false);
    EXPECT_EQ(linesOf(this->world.capture.traces(), "reconcile"),
              (Lines{"1 reconcile", "5 reconcile" + word.recovered + "12" + word.recoveredFor}));
    EXPECT_EQ(linesOf(this->world.capture.ring(), "reconcile"),
              (Lines{"1 reconcile", "5 reconcile" + word.ringFor}));
    EXPECT_EQ(this->world.pool(), "16: 0-7 12");
    EXPECT_EQ(this->reference(1), VpReference(VirtualPort(12)));
}

TYPED_TEST(Reconcile, AReferenceWithoutAnIndexWaitsOnlyWithReallocation) {
    this->survive(1, 65535);
    this->startOver(false);
    EXPECT_EQ(this->world.waiting->memberCount(), 0u);
    this->startOver(true);
    EXPECT_TRUE(this->world.waits(::Test::numbered<TypeParam>(1)));
    EXPECT_EQ(this->world.pool(), "16: 0-7");
}

TYPED_TEST(Reconcile, WithReallocationTheListIsRebuiltEvenIfTheHandlerDoesNotRun) {
    this->survive(1, 65535);
    this->startOver(true);
    this->world.waiting->template delAll<TypeParam>();
    this->world.sm->hasNotificationActiveIs(false); // no handler: the entry is reconciliation's own
    this->world.sm->reconcile();
    EXPECT_TRUE(this->world.waits(::Test::numbered<TypeParam>(1)));
}

TYPED_TEST(Reconcile, ABootEntryIsTakenOverAndStays) {
    auto const& word = words<TypeParam>();
    this->boot(1, 12);
    this->startOver(true);
    EXPECT_EQ(linesOf(this->world.capture.traces(), "reconcile"),
              (Lines{"1 reconcile", "5 reconcile" + word.recovered + "12" + word.recoveredFor}));
    EXPECT_EQ(linesOf(this->world.capture.ring(), "reconcile"),
              (Lines{"1 reconcile", "5 reconcile" + word.bootRingFor}));
    EXPECT_EQ(this->world.pool(), "16: 0-7 12");
    EXPECT_EQ(this->reference(1), VpReference(VirtualPort(12)));
    EXPECT_EQ(this->world.boot->memberCount(), 1u);
}

TYPED_TEST(Reconcile, ABootEntryWithAReservedIndexIsDropped) {
    auto const& word = words<TypeParam>();
    this->boot(1, 3);
    this->startOver(true);
    EXPECT_EQ(linesOf(this->world.capture.traces(), "reconcile"),
              (Lines{"1 reconcile", "5 reconcile" + word.skip}));
    EXPECT_EQ(this->world.state(), "pool 16: 0-7\nreferences:\nwaiting:\nboot:\n");
}

TYPED_TEST(Reconcile, EveryIndexFromOneToSevenIsReservedAndEightIsNot) {
    for (U16 index = 1; index <= 8; ++index) {
        this->boot(index, index);
    }
    this->startOver(false);
    EXPECT_EQ(this->world.boot->memberCount(), 1u);
    EXPECT_EQ(this->reference(8), VpReference(VirtualPort(8)));
    EXPECT_EQ(this->world.pool(), "16: 0-8");
}

TYPED_TEST(Reconcile, ABootEntryWithoutAnIndexWaitsWithReallocation) {
    this->boot(1, 65535);
    this->startOver(true);
    EXPECT_TRUE(this->world.waits(::Test::numbered<TypeParam>(1)));
    EXPECT_EQ(this->reference(1), VpReference());
}

TYPED_TEST(Reconcile, ABootEntryWithoutAnIndexWaitsEvenIfTheHandlerDoesNotRun) {
    this->startOver(true);
    this->boot(1, 65535);
    this->world.sm->hasNotificationActiveIs(false);
    this->world.sm->reconcile();
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=65535[]}\n"
                                          "waiting: <kind>{<1>}\n"
                                          "boot: <kind>{<1>=65535}\n"));
}

TYPED_TEST(Reconcile, ABootEntryWithoutAnIndexDoesNotWaitWithoutReallocation) {
    this->boot(1, 65535);
    this->startOver(false);
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=65535[]}\n"
                                          "waiting:\n"
                                          "boot: <kind>{<1>=65535}\n"));
}

TYPED_TEST(Reconcile, AnIndexOutsideTheTableIsKeptAndMarksNothing) {
    this->survive(1, 16);
    this->survive(2, 100);
    this->startOver(true);
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=16[] <2>=100[]}\n"
                                          "waiting:\n"
                                          "boot:\n"));
}

TYPED_TEST(Reconcile, ABootEntryOutsideTheTableIsTakenOverAndMarksNothing) {
    this->boot(1, 16);
    this->boot(2, 100);
    this->startOver(true);
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=16[] <2>=100[]}\n"
                                          "waiting:\n"
                                          "boot: <kind>{<1>=16 <2>=100}\n"));
}

TYPED_TEST(Reconcile, AnIndexAboveTheTableSizeIsHandedToTheClientAsItIs) {
    this->world.client("bgp");
    this->request("bgp", 1);
    this->survive(1, 100);
    this->startOver(true);
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7\n"
                           "config bgp: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=100} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=100[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(Reconcile, AStatusEntryThatNoConfigBacksGoesAndItsIndexStays) {
    auto const& word = words<TypeParam>();
    this->start({.tableSize = 16}, {"bgp", "mlag"});
    this->request("bgp", 1);
    this->request("mlag", 1);
    this->world.stop();
    this->world.config("bgp").template delAll<TypeParam>();
    this->world.capture.forget();
    this->startOver(false);
    Lines const expected{"5 reconcile clean up status for: bgp", "5 reconcile" + word.deleteStatus,
                         "5 reconcile clean up status for: mlag"};
    Lines const traces = linesOf(this->world.capture.traces(), "reconcile");
    EXPECT_EQ(Lines(traces.end() - 3, traces.end()), expected);
    Lines const ring = linesOf(this->world.capture.ring(), "reconcile");
    EXPECT_EQ(ring[ring.size() - 2], "5 reconcile" + word.ringDeleteStatus);
    EXPECT_EQ(this->reference(1), referenceOf(15, {"mlag"}));
    EXPECT_EQ(this->world.pool(), "16: 0-7 15");
    EXPECT_FALSE(
        this->world.status("bgp").template has<TypeParam>(::Test::numbered<TypeParam>(1).key));
}

TYPED_TEST(Reconcile, AKeyWithoutAReferenceGainsOneThatNamesNobody) {
    this->start({.tableSize = 16}, {"bgp"});
    this->world.stop();
    this->hold("bgp", 1, 12);
    this->startOver(false);
    EXPECT_TRUE(
        this->world.references->template has<TypeParam>(::Test::numbered<TypeParam>(1).key));
    EXPECT_EQ(this->reference(1), VpReference());
    EXPECT_EQ(this->world.pool(), "16: 0-7");
}

TYPED_TEST(Reconcile, TheCleanUpOfAStatusTakesTheNameOutOfTheReference) {
    this->world.client("bgp");
    this->survive(1, 12);
    this->hold("bgp", 1, 12);
    ::Test::Listener comeBack(this->world.status("bgp"), [this](auto const& told) {
        if (told.field == TypeParam::field) { // the entry is gone: both names enter themselves
            this->world.references->template is<TypeParam>(::Test::numbered<TypeParam>(1).key,
                                                           referenceOf(12, {"bgp", "other"}));
        }
    });
    this->startOver(false);
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7 12\n"
                                          "config bgp:\n"
                                          "status bgp: requests=0 failures=0 frees=0 size=16\n"
                                          "references: <kind>{<1>=12[other]}\n"
                                          "waiting:\n"
                                          "boot:\n"));
}

TYPED_TEST(Reconcile, SeveralStatusEntriesGoInOneWalk) {
    this->world.client("bgp");
    this->request("bgp", 3);
    for (U32 number = 1; number <= 3; ++number) {
        U16 const vpIndex = static_cast<U16>(10 + number);
        this->survive(number, vpIndex, "bgp");
        this->hold("bgp", number, vpIndex);
    }
    this->startOver(false);
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 11-13\n"
                           "config bgp: <kind>{<3>}\n"
                           "status bgp: <kind>{<3>=13} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=11[] <2>=12[] <3>=13[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

TYPED_TEST(Reconcile, ARequestWithTheValueFalseBacksItsStatusEntry) {
    this->world.client("bgp");
    this->world.config("bgp").template is<TypeParam>(::Test::numbered<TypeParam>(1).key, false);
    this->survive(1, 12, "bgp");
    this->hold("bgp", 1, 12);
    ::Test::Listener changes(this->world.status("bgp"));
    this->startOver(false);
    EXPECT_EQ(changes.fields(), std::vector<Pelo::FieldId>{266}); // the table size alone
    EXPECT_EQ(this->state(),
              this->filled("pool 16: 0-7 12\n"
                           "config bgp: <kind>{<1>}\n"
                           "status bgp: <kind>{<1>=12} requests=0 failures=0 frees=0 size=16\n"
                           "references: <kind>{<1>=12[bgp]}\n"
                           "waiting:\n"
                           "boot:\n"));
}

} // namespace
