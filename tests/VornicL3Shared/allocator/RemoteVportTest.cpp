// What is special about the two remote kinds: they are kept apart, and ask from the end that the
// chip's capability says.

#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

namespace {

using Test::Lines;
using Test::mlag;
using Test::remote;
using Test::Settings;
using Test::vlan;
using Test::World;

/// The clients bgp and evpn.
class RemoteVports : public testing::Test {
protected:
    void start(Settings const& settings) {
        world.settings = settings;
        world.client("bgp");
        world.client("evpn");
        world.start();
        world.capture.forget();
    }

    World world;
};

TEST_F(RemoteVports, OfOneKeyAndTwoKindsAreTwoAllocations) {
    start({});
    world.request("bgp", remote("10.0.0.1@1"));
    world.request("evpn", mlag("10.0.0.1@1"));
    EXPECT_EQ(world.state(),
              "pool 16: 0-7 14-15\n"
              "config bgp: remote{10.0.0.1@1}\n"
              "config evpn: mlag{10.0.0.1@1}\n"
              "status bgp: remote{10.0.0.1@1=15} requests=1 failures=0 frees=0 size=16\n"
              "status evpn: mlag{10.0.0.1@1=14} requests=1 failures=0 frees=0 size=16\n"
              "references: remote{10.0.0.1@1=15[bgp]} mlag{10.0.0.1@1=14[evpn]}\n"
              "waiting:\n"
              "boot:\n");
}

TEST_F(RemoteVports, OfOneKeyAndTwoKindsMoveIndependently) {
    start({});
    world.request("bgp", remote("10.0.0.1@1"));
    world.request("bgp", mlag("10.0.0.1@1"));
    world.withdraw("bgp", remote("10.0.0.1@1"));
    EXPECT_EQ(world.state(),
              "pool 16: 0-7 14\n"
              "config bgp: mlag{10.0.0.1@1}\n"
              "config evpn:\n"
              "status bgp: mlag{10.0.0.1@1=14} requests=2 failures=0 frees=1 size=16\n"
              "status evpn: requests=0 failures=0 frees=0 size=16\n"
              "references: mlag{10.0.0.1@1=14[bgp]}\n"
              "waiting:\n"
              "boot:\n");
}

TEST_F(RemoteVports, FindNoReferenceOfTheOtherKind) {
    start({});
    world.request("bgp", remote("10.0.0.1@1"));
    world.capture.forget();
    world.request("evpn", mlag("10.0.0.1@1"));
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 handleMlagRemoteVport mlagVtep: 10.0.0.1@1",
                     "1 handleRemoteVportCommon mlag  vtep: 10.0.0.1",
                     "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::"
                     "getRemoteVportRef(const VornicCentral::RemoteVtepKey&, bool) const"
                     " : remoteVtep : 10.0.0.1@1, mlag = true, vpIndex = 65535 --  No Match ",
                     "5 handleRemoteVportCommon mlag  vport addition for: evpn",
                     "5 handleRemoteVportCommon mlag : allocating vp index for vtep: 10.0.0.1",
                     "5 allocVpIndex index allocated is: 14",
                     "5 handleRemoteVportCommon allocated vpIndex: 14",
                     "5 handleRemoteVportCommon remoteVtepKey: 10.0.0.1@1 vPort: 14",
                     "1 handleInvalidMlagRemoteVport vtep: 10.0.0.1"}));
}

TEST_F(RemoteVports, OfOneAddressAndTwoTunnelGroupsAreTwoAllocations) {
    start({});
    world.request("bgp", remote("10.0.0.1@1"));
    world.request("evpn", remote("10.0.0.1@2"));
    EXPECT_EQ(world.indexOf("bgp", remote("10.0.0.1@1")), 15);
    EXPECT_EQ(world.indexOf("evpn", remote("10.0.0.1@2")), 14);
}

TEST_F(RemoteVports, AreNamedByTheirIp6AddressAsWell) {
    start({});
    world.request("bgp", mlag("2001:db8::1@1"));
    auto const ring = world.capture.ring();
    EXPECT_EQ(ring[1], "1 handleRemoteVportCommon mlag  vtep: 2001:db8::1");
    EXPECT_EQ(ring[8], "5 addRemoteVportToStatusmlag 2001:db8::1 vPort: 15");
    EXPECT_EQ(ring[9], "1 handleInvalidMlagRemoteVport vtep: 2001:db8::1");
}

/// Requests two VTEPs of each remote kind and a VLAN, in turns.
class IndexPreference : public RemoteVports {
protected:
    std::string indices() {
        world.request("bgp", remote("10.0.0.1@1"));
        world.request("bgp", mlag("10.0.0.2@2"));
        world.request("bgp", vlan(10));
        world.request("bgp", remote("10.0.0.3@3"));
        world.request("bgp", mlag("10.0.0.4@4"));
        auto const state = world.state();
        auto const from = state.find("references:");
        return state.substr(from, state.find('\n', from) - from);
    }
};

TEST_F(IndexPreference, OfARemoteVtepIsLowWithTheCapability) {
    start({.remoteLow = true});
    EXPECT_EQ(indices(), "references: remote{10.0.0.1@1=8[bgp] 10.0.0.3@3=9[bgp]} "
                         "mlag{10.0.0.2@2=15[bgp] 10.0.0.4@4=13[bgp]} vlan{10=14[bgp]}");
}

TEST_F(IndexPreference, OfARemoteVtepIsHighWithoutTheCapability) {
    start({.remoteLow = false});
    EXPECT_EQ(indices(), "references: remote{10.0.0.1@1=15[bgp] 10.0.0.3@3=12[bgp]} "
                         "mlag{10.0.0.2@2=14[bgp] 10.0.0.4@4=11[bgp]} vlan{10=13[bgp]}");
}

TEST_F(IndexPreference, OfARemoteVtepIsHighWhenTheCapabilitiesAreNotKnown) {
    world.client("bgp");
    world.sm = VornicCentral::vpIndexAllocatorDirSmFactory(world.references, world.waiting,
                                                           world.configDir, world.statusDir, 16,
                                                           world.boot, false, false, nullptr);
    EXPECT_EQ(indices(), "references: remote{10.0.0.1@1=15[bgp] 10.0.0.3@3=12[bgp]} "
                         "mlag{10.0.0.2@2=14[bgp] 10.0.0.4@4=11[bgp]} vlan{10=13[bgp]}");
}

} // namespace
