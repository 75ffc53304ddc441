// Restarts over all kinds: what decides between the reference list and the boot status, the order
// of the kinds, and what stops the process.

#include "VornicL3Shared/allocator/TraceLines.h"
#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/References.h"
#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::efilter;
using Test::Lines;
using Test::linesOf;
using Test::mlag;
using Test::referenceOf;
using Test::remote;
using Test::vlan;

class ReconcileKinds : public testing::Test {
protected:
    template <class V> void boot(V const& vport, U16 index) {
        world.boot->is<typename V::Kind>(vport.key, VirtualPort(index));
    }
    template <class V> void survive(V const& vport, U16 index) {
        world.references->is<typename V::Kind>(vport.key, VpReference(VirtualPort(index)));
    }
    /// Gives one key of each kind, the last kind first, to a function, with the indices 12 to 8.
    template <class Give> static void oneOfEachKind(Give const& give) {
        give(efilter("Ethernet7"), U16{12});
        give(vlan(5), U16{11});
        give(edge("Ethernet1:10"), U16{10});
        give(mlag("10.0.0.2@18"), U16{9});
        give(remote("10.0.0.1@17"), U16{8});
    }
    Lines reconciled() { return linesOf(world.capture.traces(), "reconcile"); }

    ::Test::World world;
};

/// What `oneOfEachKind` leaves in the trace when it is recovered.
Lines const inTheFixedOrder{"1 reconcile",
                            "5 reconcile recovered vpIndex: 8 for vtep: 10.0.0.1@17",
                            "5 reconcile recovered mlag vpIndex: 9 for remote vtep: 10.0.0.2@18",
                            "5 reconcile recovered vpIndex: 10 for edge port: Ethernet1:10",
                            "5 reconcile recovered vpIndex: 11 for vlan: 5",
                            "5 reconcile recovered vpIndex: 12 for intf: Ethernet7"};

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
    survive(efilter("Ethernet7"), 11);
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

TEST_F(ReconcileKinds, ABootEntryOfAKeyWithAReferenceStaysEvenWithAReservedIndex) {
    survive(mlag("10.0.0.1@1"), 12);
    survive(efilter("Ethernet7"), 11);
    boot(mlag("10.0.0.1@1"), 3);
    boot(efilter("Ethernet7"), 7);
    world.start();
    EXPECT_EQ(
        reconciled(),
        (Lines{"1 reconcile", "5 reconcile recovered mlag vpIndex: 12 for remote vtep: 10.0.0.1@1",
               "5 reconcile recovered vpIndex: 11 for intf: Ethernet7"}));
    EXPECT_EQ(world.state(), "pool 16: 0-7 11-12\n"
                             "references: mlag{10.0.0.1@1=12[]} efilter{Ethernet7=11[]}\n"
                             "waiting:\n"
                             "boot: mlag{10.0.0.1@1=3} efilter{Ethernet7=7}\n");
}

TEST_F(ReconcileKinds, KindsOfTheReferenceListAreRecoveredInTheFixedOrder) {
    oneOfEachKind([this](auto const& vport, U16 index) { survive(vport, index); });
    world.start();
    EXPECT_EQ(reconciled(), inTheFixedOrder);
}

TEST_F(ReconcileKinds, KindsOfTheBootStatusAreRecoveredInTheFixedOrder) {
    oneOfEachKind([this](auto const& vport, U16 index) { boot(vport, index); });
    world.start();
    EXPECT_EQ(reconciled(), inTheFixedOrder);
}

TEST_F(ReconcileKinds, KindsAreCleanedUpInTheFixedOrderClientAfterClient) {
    for (char const* const name : {"mlag", "bgp"}) {
        world.client(name);
        oneOfEachKind([&]<class V>(V const& vport, U16 index) {
            world.status(name).is<typename V::Kind>(vport.key, VirtualPort(index));
        });
    }
    world.start();
    Lines expected{"1 reconcile"};
    for (std::string const name : {"mlag", "bgp"}) {
        for (std::string const& line :
             {" clean up status for: " + name, std::string(" delete status for vtep: 10.0.0.1@17"),
              std::string(" delete status (mlag) for vtep: 10.0.0.2@18"),
              std::string(" delete status for pvKey: Ethernet1:10"),
              std::string(" delete status for vlan: 5"),
              std::string(" delete status for intf: Ethernet7")}) {
            expected.push_back("5 reconcile" + line);
        }
    }
    EXPECT_EQ(reconciled(), expected);
}

TEST_F(ReconcileKinds, ThePhasesFollowOneAnother) {
    survive(efilter("Ethernet7"), 12);
    boot(remote("10.0.0.1@17"), 8);
    world.client("bgp");
    world.status("bgp").vlanVportIs(vlan(5).key, VirtualPort(11));
    world.start();
    EXPECT_EQ(
        reconciled(),
        (Lines{"1 reconcile", "5 reconcile recovered vpIndex: 12 for intf: Ethernet7",
               "5 reconcile recovered vpIndex: 8 for vtep: 10.0.0.1@17",
               "5 reconcile clean up status for: bgp", "5 reconcile delete status for vlan: 5"}));
}

TEST_F(ReconcileKinds, AStatusWithoutAConfigIsNotTouched) {
    world.client("bgp");
    world.statusDir->vpIndexStatusIs("host", vpIndexStatusFactory("host"));
    oneOfEachKind([this]<class V>(V const& vport, U16 index) {
        world.status("host").is<typename V::Kind>(vport.key, VirtualPort(index));
        world.references->is<typename V::Kind>(vport.key, referenceOf(index, {"host"}));
    });
    world.start();
    EXPECT_EQ(world.state(), "pool 16: 0-12\n"
                             "config bgp:\n"
                             "status bgp: requests=0 failures=0 frees=0 size=16\n"
                             "status host: remote{10.0.0.1@17=8} mlag{10.0.0.2@18=9} "
                             "edge{Ethernet1:10=10} vlan{5=11} efilter{Ethernet7=12} "
                             "requests=0 failures=0 frees=0 size=0\n"
                             "references: remote{10.0.0.1@17=8[]} mlag{10.0.0.2@18=9[]} "
                             "edge{Ethernet1:10=10[]} vlan{5=11[]} efilter{Ethernet7=12[]}\n"
                             "waiting:\n"
                             "boot:\n");
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
    world.request("bgp", efilter("Ethernet7"));
    std::string const before = world.state();
    world.start();
    EXPECT_EQ(world.state(), before);
}

TEST_F(ReconcileKinds, WithoutABootStatusAnEmptyReferenceListIsRefused) {
    world.boot = nullptr;
    EXPECT_THROW(world.start(), Qor::MutatorArgNullPointerException);
}

std::string const twice =
    Test::assertionFailure("void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap(U32)",
                           "!vpBitmap()->isBitSet( vpIndex )");
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
