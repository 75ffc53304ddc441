// Releases of an index while changes of configs wait for their turn: the changes go first, for one
// of them may withdraw the very key that would take the index.

#include "VornicL3Shared/allocator/ReentrancyTestBase.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <string_view>
#include <vector>

namespace {

using Test::Lines;

template <class K> class RecycleReentry : public Test::ReentrancyTestBase<K> {};
TYPED_TEST_SUITE(RecycleReentry, Test::AllKinds, Test::KindNames);

TYPED_TEST(RecycleReentry, AWaitingKeyCanBeWithdrawnWithinTheReleaseOfAnIndex) {
    this->letOneWait();
    this->atFirstReference([this] { this->withdraw("evpn", 2); });
    this->withdraw("bgp", 1);
    this->expectSound("pool 9: 0-7\n"
                      "config bgp:\n"
                      "config evpn:\n"
                      "status bgp: requests=1 failures=0 frees=1 size=9\n"
                      "status evpn: requests=0 failures=1 frees=0 size=9\n"
                      "references:\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(RecycleReentry, AHeldAndAWaitingKeyCanBeWithdrawnWithinOneWrite) {
    this->letOneWait();
    this->atFirstStatus("bgp", [this] {
        this->withdraw("bgp", 1);
        this->withdraw("evpn", 2);
    });
    this->request("bgp", 3);
    this->expectSound("pool 9: 0-8\n"
                      "config bgp: <kind>{<3>}\n"
                      "config evpn:\n"
                      "status bgp: <kind>{<3>=8} requests=1 failures=1 frees=1 size=9\n"
                      "status evpn: requests=0 failures=1 frees=0 size=9\n"
                      "references: <kind>{<3>=8[bgp]}\n"
                      "waiting:\n"
                      "boot:\n");
}

TYPED_TEST(RecycleReentry, TheLastPointerToTheStateMachineCanBeDroppedWhileAReleaseWaits) {
    this->letOneWait();
    this->atFirstReference([this] {
        this->withdraw("evpn", 2);
        this->request("evpn", 3);
        this->world.stop();
    });
    this->withdraw("bgp", 1);
    this->expectState("pool none\n"
                      "config bgp:\n"
                      "config evpn: <kind>{<3>}\n"
                      "status bgp: requests=1 failures=0 frees=1 size=9\n"
                      "status evpn: <kind>{<3>=8} requests=0 failures=2 frees=0 size=9\n"
                      "references: <kind>{<3>=8[evpn]}\n"
                      "waiting:\n"
                      "boot:\n");
}

/// The same, told on VLANs.
using RecycleInTurn = RecycleReentry<VornicCentral::VlanVport>;

TEST_F(RecycleInTurn, WaitsUntilTheChangesThatAreLeftAreHandled) {
    start({.tableSize = 9, .reallocation = true}, {"bgp", "evpn"});
    request("bgp", 1);
    world.capture.forget();
    atFirstReference([this] { request("evpn", 3); });
    withdraw("bgp", 1);
    EXPECT_EQ(
        world.capture.traces(),
        (Lines{"1 handleVlanVport vlan: 101", "5 handleVlanVport vport deletion for: bgp",
               "5 handleVlanVport freeing vpIndex: 8", "1 handleInvalidVlanVport vlan: 101",
               "5 handleInvalidVlanVport vport deleted ", "1 handleVlanVport vlan: 103",
               "5 handleVlanVport vport addition for: evpn",
               "5 handleVlanVport allocating vp index for vlan: 103",
               "5 allocVpIndex VpIndex full return invalidVirtualPort",
               "5 handleVlanVport vlan: 103 vPort: 65535", "1 handleInvalidVlanVport vlan: 103",
               "5 handleInvalidVlanVport vport addition/modification for: 65535",
               "5 handleInvalidVlanVport vport added : 65535", "1 recycleOrFreeVpIndex",
               "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
               "vpIndexAllocator(evpn)->vpIndexStatus()->vlanVport(103)",
               "1 handleInvalidVlanVport vlan: 103",
               "5 handleInvalidVlanVport vport addition/modification for: 8",
               "5 handleInvalidVlanVport vport deleted : 8"}));
}

/// An allocator that cannot serve ends its turn with a change of bgp's still left.
TEST_F(RecycleInTurn, ByNameAfterAHandlerThatThrewReleasesAtOnce) {
    start({.tableSize = 10, .reallocation = true}, {"bgp"});
    request("bgp", 1);
    world.sm->setVpBitmap(8); // an index of the owner's, the last of the table
    auto const config = VornicCentral::vpIndexConfigFactory("ospf");
    auto const status = VornicCentral::vpIndexStatusFactory("ospf");
    config->vlanVportIs(Bridging::VlanId(104), true);
    ::Test::Listener const listener(*status,
                                    [this](::Test::Notification const&) { request("bgp", 2); });
    EXPECT_THROW(world.sm->vpIndexAllocatorIs(world.sm.get(), config, status, nullptr, false),
                 Qor::MutatorArgNullPointerException);
    world.capture.forget();
    Qor::callByName(*world.sm, "recycleOrFreeVpIndex", std::vector<std::string_view>{"8"});
    EXPECT_EQ(
        world.capture.traces(),
        (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8",
               "1 handleVlanVport vlan: 102", "5 handleVlanVport vport addition for: bgp",
               "5 handleVlanVport allocating vp index for vlan: 102",
               "5 allocVpIndex index allocated is: 8", "5 handleVlanVport allocated vpIndex: 8",
               "5 handleVlanVport vlan: 102 vPort: 8", "1 handleInvalidVlanVport vlan: 102",
               "5 handleInvalidVlanVport vport addition/modification for: 8",
               "5 handleInvalidVlanVport vport deleted : 8"}));
    expectSound("pool 10: 0-9\n"
                "config bgp: vlan{101 102}\n"
                "status bgp: vlan{101=9 102=8} requests=2 failures=0 frees=0 size=10\n"
                "references: vlan{101=9[bgp] 102=8[bgp]}\n"
                "waiting:\n"
                "boot:\n");
}

} // namespace
