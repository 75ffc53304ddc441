// Recovery from the reference list, and the clean-up of statuses.

#include "VornicL3Shared/allocator/KindTest.h"
#include "qor/Exceptions.h"

#include <map>

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::Lines;
using Test::mlag;
using Test::remote;
using Test::vlan;

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

/// The lines of one operation.
Lines linesOf(Lines const& all, std::string const& operation) {
    Lines lines;
    for (std::string const& line : all) {
        if (line.substr(2, operation.size()) == operation) {
            lines.push_back(line);
        }
    }
    return lines;
}

template <class Kind> class Reconcile : public ::Test::KindTest<Kind> {
protected:
    void startOver(bool reallocation) {
        this->world.settings = {.tableSize = 16, .reallocation = reallocation};
        this->world.capture.forget();
        this->world.start();
    }
    /// A reference that names a client, as it survives.
    void survive(U32 number, U16 vpIndex) {
        VpReference reference{VirtualPort(vpIndex)};
        reference.referenceIs("former", true);
        this->world.references->template is<Kind>(::Test::numbered<Kind>(number).key, reference);
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
    VpReference byMlag{VirtualPort(15)};
    byMlag.referenceIs("mlag", true);
    EXPECT_EQ(this->reference(1), byMlag);
    EXPECT_EQ(this->world.pool(), "16: 0-7 15");
    EXPECT_FALSE(
        this->world.status("bgp").template has<TypeParam>(::Test::numbered<TypeParam>(1).key));
}

TYPED_TEST(Reconcile, AKeyWithoutAReferenceGainsOneThatNamesNobody) {
    this->start({.tableSize = 16}, {"bgp"});
    this->world.stop();
    this->world.status("bgp").template is<TypeParam>(::Test::numbered<TypeParam>(1).key,
                                                     VirtualPort(12));
    this->startOver(false);
    EXPECT_TRUE(
        this->world.references->template has<TypeParam>(::Test::numbered<TypeParam>(1).key));
    EXPECT_EQ(this->reference(1), VpReference());
    EXPECT_EQ(this->world.pool(), "16: 0-7");
}

class ReconcileKinds : public testing::Test {
protected:
    template <class V> void boot(V const& vport, U16 index) {
        world.boot->is<typename V::Kind>(vport.key, VirtualPort(index));
    }
    template <class V> void survive(V const& vport, U16 index) {
        world.references->is<typename V::Kind>(vport.key, VpReference(VirtualPort(index)));
    }
    ::Test::World world;
};

TEST_F(ReconcileKinds, OneRemoteEdgeOrVlanReferenceKeepsTheBootStatusOut) {
    boot(remote("10.0.0.9@1"), 9);
    for (int survivor = 0; survivor < 3; ++survivor) {
        world.references = vpReferenceListFactory("references");
        survivor == 0   ? survive(remote("10.0.0.1@1"), 12)
        : survivor == 1 ? survive(edge("Ethernet1:1"), 12)
                        : survive(vlan(1), 12);
        world.start();
        EXPECT_EQ(world.pool(), "16: 0-7 12");
        EXPECT_EQ(world.boot->memberCount(), 1u);
    }
}

TEST_F(ReconcileKinds, MlagAndEFilterReferencesDoNot) {
    survive(mlag("10.0.0.1@1"), 12);
    survive(::Test::efilter("Ethernet7"), 11);
    boot(mlag("10.0.0.1@1"), 14); // has a reference, which stays
    boot(mlag("10.0.0.2@1"), 13);
    boot(vlan(5), 10);
    world.start();
    EXPECT_EQ(
        world.state(),
        "pool 16: 0-7 10-13\n"
        "references: mlag{10.0.0.1@1=12[] 10.0.0.2@1=13[]} vlan{5=10[]} efilter{Ethernet7=11[]}\n"
        "waiting:\n"
        "boot: mlag{10.0.0.1@1=14 10.0.0.2@1=13} vlan{5=10}\n");
}

TEST_F(ReconcileKinds, ARestartGivesEveryClientItsIndicesBack) {
    world.settings = {.tableSize = 64, .reallocation = true};
    world.client("bgp");
    world.client("mlag");
    world.start();
    world.request("bgp", remote("10.0.0.1@1"));
    world.request("mlag", mlag("10.0.0.1@1"));
    world.request("bgp", edge("Ethernet1:10"));
    world.request("mlag", edge("Ethernet1:10"));
    world.request("bgp", vlan(10));
    world.withdraw("bgp", remote("10.0.0.1@1"));
    world.request("bgp", ::Test::efilter("Ethernet7"));
    std::string const before = world.state();
    world.start();
    EXPECT_EQ(world.state(), before);
}

TEST_F(ReconcileKinds, WithoutABootStatusAnEmptyReferenceListIsRefused) {
    world.boot = nullptr;
    EXPECT_THROW(world.start(), Qor::MutatorArgNullPointerException);
}

std::string const twice = "/src/VornicL3Shared/VornicL3VpIndexAllocator:[0-9]+: "
                          "void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap\\(U32\\): "
                          "Assertion '!vpBitmap\\(\\)->isBitSet\\( vpIndex \\)' failed\\.";
using ReconcileDeathTest = ReconcileKinds;

TEST_F(ReconcileDeathTest, TwoReferencesWithOneIndex) {
    survive(vlan(1), 12);
    survive(edge("Ethernet1:1"), 12);
    EXPECT_DEATH(world.start(), twice);
}

TEST_F(ReconcileDeathTest, AReferenceAndABootEntryWithOneIndex) {
    survive(mlag("10.0.0.1@1"), 12);
    boot(vlan(1), 12);
    EXPECT_DEATH(world.start(), twice);
}

TEST_F(ReconcileDeathTest, AReferenceWithAReservedIndex) {
    survive(vlan(1), 3);
    EXPECT_DEATH(world.start(), twice);
}

TEST_F(ReconcileDeathTest, ABootEntryWithIndexZeroIsNotReserved) {
    boot(vlan(1), 0);
    EXPECT_DEATH(world.start(), twice);
}

} // namespace
