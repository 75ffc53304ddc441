#include "vpstate/PortVlanKey.h"

#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using Bridging::VlanId;
using Netzo::IntfId;
using VornicCentral::PortVlanKey;

std::string outcome(std::string_view text) { return Support::parseOutcome<PortVlanKey>(text); }

TEST(PortVlanKey, EqualityAndHashAreOfBothFields) {
    PortVlanKey const key(IntfId("Ethernet1/1"), VlanId(100));
    EXPECT_EQ(key.intf(), IntfId("Ethernet1/1"));
    EXPECT_EQ(key.vlan(), VlanId(100));
    EXPECT_EQ(key, PortVlanKey(IntfId("Ethernet1/1"), VlanId(100)));
    EXPECT_EQ(key.hash(), PortVlanKey(IntfId("Ethernet1/1"), VlanId(100)).hash());
    EXPECT_NE(key, PortVlanKey(IntfId("Ethernet1/1"), VlanId(101)));
    EXPECT_NE(key.hash(), PortVlanKey(IntfId("Ethernet1/1"), VlanId(101)).hash());
    EXPECT_NE(key, PortVlanKey(IntfId("Ethernet1/2"), VlanId(100)));
    EXPECT_NE(key.hash(), PortVlanKey(IntfId("Ethernet1/2"), VlanId(100)).hash());
    EXPECT_EQ(sizeof(PortVlanKey), 16u);
}

TEST(PortVlanKey, PrintsInterfaceColonVlan) {
    PortVlanKey const key(IntfId("Ethernet1/1"), VlanId(100));
    EXPECT_EQ(key.stringValue(), "Ethernet1/1:100");
    EXPECT_EQ(Support::printed(key), "Ethernet1/1:100");
}

TEST(PortVlanKey, IsSplitAtTheLastColon) {
    auto const key = PortVlanKey::parse("a:b::7:65535");
    ASSERT_TRUE(key);
    EXPECT_EQ(*key, PortVlanKey(IntfId("a:b::7"), VlanId(65535)));
    EXPECT_EQ(*PortVlanKey::parse("::0"), PortVlanKey(IntfId(":"), VlanId(0)));
}

TEST(PortVlanKey, RefusesWhatIsNoKeyAtTheByteThatDoesNotFit) {
    std::string const vlan = "a number from 0 to 65535";
    std::string const control = "an interface name without control characters";
    EXPECT_EQ(outcome(""), "at 0: expected an interface name");
    EXPECT_EQ(outcome(":100"), "at 0: expected an interface name");
    EXPECT_EQ(outcome("Ethernet1"), "at 9: expected ':' and a VLAN");
    EXPECT_EQ(outcome("Ethernet1:"), "at 10: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:65536"), "at 14: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:-1"), "at 10: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:0100"), "at 11: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:100 "), "at 13: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:100:"), "at 14: expected " + vlan);
    EXPECT_EQ(outcome("Ethernet1:Vlan100"), "at 10: expected " + vlan);
    EXPECT_EQ(outcome("Eth\ternet1:100"), "at 3: expected " + control);
    EXPECT_EQ(outcome("Eth\n"), "at 3: expected " + control);
    EXPECT_EQ(outcome(std::string_view("Ethernet1:1\0", 12)), "at 11: expected " + vlan);
}

TEST(PortVlanKey, ReadsWhatItPrints) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 20000; ++round) {
        std::string name;
        for (U32 length = 1 + random.below(20); length > 0; --length) {
            name += random.of("Ethernet:/0123 @\"\\\xC3\xA4");
        }
        PortVlanKey const key(IntfId(name), VlanId(static_cast<U16>(random.below(65536))));
        auto const parsed = PortVlanKey::parse(key.stringValue());
        ASSERT_TRUE(parsed) << key;
        ASSERT_EQ(*parsed, key);
    }
}

} // namespace
