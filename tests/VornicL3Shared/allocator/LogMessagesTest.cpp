// The two log messages, and how a keyed handler says that the table is full.

#include "VornicL3Shared/support/World.h"
#include "qor/LogHandle.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Test::edge;
using Test::efilter;
using Test::Lines;
using Test::mlag;
using Test::remote;
using Test::vlan;
using Test::World;

Qor::LogDescriptor const& descriptor(char const* id) {
    return Qor::LogHandle::find(id)->descriptor();
}
Lines fields(Qor::LogDescriptor const& descriptor) {
    return {descriptor.id, descriptor.format, descriptor.explanation, descriptor.recommendedAction,
            std::to_string(descriptor.severity)};
}

TEST(LogMessages, ResourceNormalIsDescribed) {
    EXPECT_EQ(fields(descriptor("VORNIC_VIRTUALPORT_RESOURCE_NORMAL")),
              (Lines{"VORNIC_VIRTUALPORT_RESOURCE_NORMAL",
                     "Hardware resources are available to add virtual port for %s", "", "", "3"}));
}

TEST(LogMessages, ResourceFullIsDescribed) {
    EXPECT_EQ(
        fields(descriptor("VORNIC_VIRTUALPORT_RESOURCE_FULL")),
        (Lines{"VORNIC_VIRTUALPORT_RESOURCE_FULL",
               "Hardware resources are insufficient to add virtual port for %s",
               "The switch is unable to program virtual port (remote VTEP or edge vlan-port pair) "
               "for the vxlan end point due to insufficient hardware resources. Traffic forwarding "
               "will not happen on this virtual port.",
               "Reconfigure the network to reduce the number of entries in the hardware table like "
               "remote VTEPs or edge vlan-port pairs.",
               "3"}));
}

TEST(LogMessages, DescriptorsFollowEachOtherWithNormalFirst) {
    EXPECT_EQ(&descriptor("VORNIC_VIRTUALPORT_RESOURCE_NORMAL") + 1,
              &descriptor("VORNIC_VIRTUALPORT_RESOURCE_FULL"));
}

/// The client bgp before a full table.
class FullMessage : public testing::Test {
protected:
    FullMessage() {
        world.settings.tableSize = 8;
        world.client("bgp");
        world.client("evpn");
        world.start();
    }
    template <class V> Lines logsOf(V const& vport) {
        world.request("bgp", vport);
        return world.capture.logs();
    }
    static std::string full(std::string const& vport) {
        return "VORNIC_VIRTUALPORT_RESOURCE_FULL: Hardware resources are insufficient to add "
               "virtual port for " +
               vport;
    }

    World world;
};

TEST_F(FullMessage, NamesARemoteVtepByItsTunnelGroupAfterTwoBlanks) {
    EXPECT_EQ(logsOf(remote("10.0.0.2@17")), Lines{full("vxlan remote  vtep: 17")});
}

TEST_F(FullMessage, NamesAnMlagRemoteVtepWithTwoBlanksOnEachSide) {
    EXPECT_EQ(logsOf(mlag("10.0.0.2@17")), Lines{full("vxlan remote  mlag  vtep: 17")});
}

TEST_F(FullMessage, NamesAnEdgePortByItsFullNameAndVlan) {
    EXPECT_EQ(logsOf(edge("Ethernet1/1:100")),
              Lines{full("vxlan edge port: Ethernet1/1, vlan: 100")});
}

TEST_F(FullMessage, NamesAVlan) { EXPECT_EQ(logsOf(vlan(100)), Lines{full("vxlan vlan 100 svp")}); }

TEST_F(FullMessage, NamesAnInterfaceByItsFullName) {
    EXPECT_EQ(logsOf(efilter("Port-Channel12")),
              Lines{full("eFilterDisable intf Port-Channel12 svp")});
}

TEST_F(FullMessage, HoldsAllOfATextOf127Bytes) {
    std::string const name(127 - std::string("eFilterDisable intf  svp").size(), 'e');
    EXPECT_EQ(logsOf(efilter(name)), Lines{full("eFilterDisable intf " + name + " svp")});
}

TEST_F(FullMessage, CutsATextThatDoesNotFitInto128Bytes) {
    std::string const name(128 - std::string("eFilterDisable intf  svp").size(), 'e');
    EXPECT_EQ(logsOf(efilter(name)), Lines{full("eFilterDisable intf " + name + " sv")});
}

TEST_F(FullMessage, CutsANameThatIsLongerThanTheBuffer) {
    std::string const name(500, 'e');
    EXPECT_EQ(logsOf(efilter(name)), Lines{full("eFilterDisable intf " + std::string(107, 'e'))});
    EXPECT_EQ(logsOf(edge(name + ":100")),
              Lines{full("vxlan edge port: " + std::string(110, 'e'))});
}

TEST_F(FullMessage, TakesOfANameWhatStandsBeforeAZero) {
    EXPECT_EQ(logsOf(efilter(std::string("Et1\0/2", 6))),
              Lines{full("eFilterDisable intf Et1 svp")});
}

TEST_F(FullMessage, TakesAPercentSignInANameAsItIs) {
    EXPECT_EQ(logsOf(efilter("%s%n")), Lines{full("eFilterDisable intf %s%n svp")});
}

TEST_F(FullMessage, IsLoggedOnceForEachKeyThatCouldNotBeServed) {
    world.request("bgp", vlan(1));
    world.request("evpn", vlan(1));
    world.request("bgp", vlan(2));
    world.allocator("bgp").handleVlanVport(vlan(1).key);
    world.allocator("bgp").handleVlanVport();
    EXPECT_EQ(world.capture.logs(), (Lines{full("vxlan vlan 1 svp"), full("vxlan vlan 2 svp")}));
}

TEST_F(FullMessage, IsLoggedAgainForAKeyThatComesBack) {
    world.request("bgp", vlan(1));
    world.withdraw("bgp", vlan(1));
    world.request("bgp", vlan(1));
    EXPECT_EQ(world.capture.logs(), (Lines{full("vxlan vlan 1 svp"), full("vxlan vlan 1 svp")}));
}

TEST_F(FullMessage, IsNeverHeldBack) {
    Lines expected;
    for (U16 number = 1; number <= 1000; ++number) {
        world.request("bgp", vlan(number));
        expected.push_back(full("vxlan vlan " + std::to_string(number) + " svp"));
    }
    EXPECT_EQ(world.capture.logs(), expected);
}

TEST_F(FullMessage, IsNotLoggedWhileThereIsAFreeIndex) {
    world.settings.tableSize = 9;
    world.start();
    EXPECT_EQ(logsOf(vlan(1)), Lines{});
    EXPECT_EQ(logsOf(vlan(2)), Lines{full("vxlan vlan 2 svp")});
}

TEST_F(FullMessage, IsLoggedForWhatAStartCannotServe) {
    world.stop();
    world.request("bgp", vlan(1));
    world.request("bgp", remote("10.0.0.2@17"));
    world.start();
    EXPECT_EQ(world.capture.logs(),
              (Lines{full("vxlan remote  vtep: 17"), full("vxlan vlan 1 svp")}));
}

/// One index, for which two keys of the client bgp take turns.
TEST(NormalMessage, IsNeverHeldBack) {
    World world({.tableSize = 9, .reallocation = true});
    world.client("bgp");
    world.start();
    world.request("bgp", vlan(0));
    Lines expected;
    for (U16 number = 1; number <= 1000; ++number) {
        std::string const vport = "virtual port for vxlan vlan " + std::to_string(number) + " svp";
        world.request("bgp", vlan(number));
        world.withdraw("bgp", vlan(static_cast<U16>(number - 1)));
        expected.push_back("VORNIC_VIRTUALPORT_RESOURCE_FULL: Hardware resources are insufficient "
                           "to add " +
                           vport);
        expected.push_back("VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available "
                           "to add " +
                           vport);
    }
    EXPECT_EQ(world.capture.logs(), expected);
}

TEST(NormalMessage, IsLoggedOnceWhenAWaitingKeyOfTwoClientsGetsAnIndex) {
    World world({.tableSize = 9, .reallocation = true});
    for (char const* const name : {"bgp", "evpn", "ospf"}) {
        world.client(name);
    }
    world.start();
    world.request("bgp", vlan(1));
    world.request("evpn", vlan(2));
    world.request("ospf", vlan(2));
    world.capture.forget();
    world.withdraw("bgp", vlan(1));
    EXPECT_EQ(world.capture.logs(),
              Lines{"VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to add "
                    "virtual port for vxlan vlan 2 svp"});
}

/// What is logged when a waiting key takes the only index.
template <class V> Lines logsOfTheHandOverTo(V const& vport) {
    World world({.tableSize = 9, .reallocation = true});
    world.client("bgp");
    world.start();
    world.request("bgp", vlan(1));
    world.request("bgp", vport);
    world.capture.forget();
    world.withdraw("bgp", vlan(1));
    return world.capture.logs();
}
Lines normal(std::string const& vport) {
    return {"VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to add virtual "
            "port for " +
            vport};
}

TEST(NormalMessage, HoldsAllOfATextOf127Bytes) {
    std::string const port(127 - std::string("vxlan edge port: , vlan: 100").size(), 'e');
    EXPECT_EQ(logsOfTheHandOverTo(edge(port + ":100")),
              normal("vxlan edge port: " + port + ", vlan: 100"));
    std::string const intf(127 - std::string("eFilterDisable intf: ").size(), 'e');
    EXPECT_EQ(logsOfTheHandOverTo(efilter(intf)), normal("eFilterDisable intf: " + intf));
}

TEST(NormalMessage, CutsATextThatDoesNotFitInto128Bytes) {
    std::string const port(128 - std::string("vxlan edge port: , vlan: 100").size(), 'e');
    EXPECT_EQ(logsOfTheHandOverTo(edge(port + ":100")),
              normal("vxlan edge port: " + port + ", vlan: 10"));
    EXPECT_EQ(logsOfTheHandOverTo(efilter(std::string(500, 'e'))),
              normal("eFilterDisable intf: " + std::string(106, 'e')));
}

} // namespace
