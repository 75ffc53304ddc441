#include "vpstate/VirtualPort.h"

#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

namespace {

using Support::parseOutcome;
using VornicCentral::VirtualPort;

TEST(VirtualPort, DefaultHoldsIndex65535AndIsNotValid) {
    EXPECT_EQ(VirtualPort().vpIndex(), 65535);
    EXPECT_EQ(VornicCentral::invalidVpIndex, 65535);
    EXPECT_FALSE(VirtualPort().valid());
}

TEST(VirtualPort, EveryOtherIndexIsValidAndReadsAsItPrints) {
    for (U32 index = 0; index < 65535; ++index) {
        VirtualPort const vPort(static_cast<U16>(index));
        ASSERT_TRUE(vPort.valid());
        ASSERT_EQ(vPort.vpIndex(), index);
        ASSERT_EQ(vPort.stringValue(), std::to_string(index));
        ASSERT_EQ(*VirtualPort::parse(vPort.stringValue()), vPort);
    }
}

TEST(VirtualPort, EqualityIsThatOfTheIndices) {
    EXPECT_EQ(VirtualPort(12), VirtualPort(12));
    EXPECT_NE(VirtualPort(12), VirtualPort(13));
    EXPECT_EQ(VirtualPort(65535), VirtualPort());
    EXPECT_EQ(VirtualPort(12).hash(), VirtualPort(12).hash());
    EXPECT_NE(VirtualPort(12).hash(), VirtualPort(13).hash());
    EXPECT_EQ(sizeof(VirtualPort), 2u);
}

TEST(VirtualPort, RefusesWhatIsNoIndex) {
    EXPECT_EQ(parseOutcome<VirtualPort>("65535"), "65535");
    EXPECT_EQ(parseOutcome<VirtualPort>("65536"), "at 4: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VirtualPort>("-1"), "at 0: expected a number from 0 to 65535");
    EXPECT_EQ(parseOutcome<VirtualPort>("invalid"), "at 0: expected a number from 0 to 65535");
    EXPECT_EQ(Support::printed(VirtualPort()), "65535");
}

} // namespace
