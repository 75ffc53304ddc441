#include "bridging/VlanId.h"

#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

namespace {

using Bridging::VlanId;
using Support::parseOutcome;

TEST(VlanId, IsItsNumber) {
    EXPECT_EQ(VlanId().value(), 0);
    EXPECT_EQ(VlanId(4094).value(), 4094);
    EXPECT_EQ(VlanId(100), VlanId(100));
    EXPECT_NE(VlanId(100), VlanId(101));
    EXPECT_LT(VlanId(99), VlanId(100));
    EXPECT_LE(VlanId(100), VlanId(100));
    EXPECT_EQ(VlanId(100).hash(), VlanId(100).hash());
    EXPECT_NE(VlanId(100).hash(), VlanId(101).hash());
}

TEST(VlanId, EveryNumberReadsAsItPrintsAndHasAPlaceOfItsOwn) {
    for (U32 number = 0; number < VlanId::directBound; ++number) {
        VlanId const vlan(static_cast<U16>(number));
        ASSERT_EQ(vlan.directIndex(), number);
        ASSERT_EQ(vlan.stringValue(), std::to_string(number));
        auto const parsed = VlanId::parse(vlan.stringValue());
        ASSERT_TRUE(parsed);
        ASSERT_EQ(*parsed, vlan);
    }
    EXPECT_EQ(Support::printed(VlanId(65535)), "65535");
}

TEST(VlanId, RefusesWhatIsNoNumberOf16Bits) {
    EXPECT_EQ(parseOutcome<VlanId>("65536"), "at 4: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VlanId>(""), "at 0: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VlanId>("-1"), "at 0: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VlanId>("0100"), "at 1: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VlanId>("100x"), "at 3: expected a number from 0 to 65535");
}

} // namespace
