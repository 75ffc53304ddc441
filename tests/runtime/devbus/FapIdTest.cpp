#include "devbus/FapId.h"

#include "pelo/Hash.h"
#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

#include <set>

namespace {

using Devbus::FapId;
using Support::parseOutcome;

TEST(FapId, IsItsNumber) {
    EXPECT_EQ(FapId().value(), 0);
    EXPECT_EQ(FapId(7), FapId(7));
    EXPECT_NE(FapId(7), FapId(8));
    EXPECT_LT(FapId(7), FapId(8));
    EXPECT_LE(FapId(7), FapId(7));
}

TEST(FapId, EveryNumberReadsAsItPrintsAndHasAPlaceAndAHashOfItsOwn) {
    std::set<U64> hashes;
    for (U32 number = 0; number < FapId::directBound; ++number) {
        FapId const fap(static_cast<U8>(number));
        EXPECT_EQ(fap.directIndex(), number);
        EXPECT_EQ(Support::printed(fap), std::to_string(number));
        EXPECT_EQ(parseOutcome<FapId>(fap.stringValue()), std::to_string(number));
        hashes.insert(fap.hash());
    }
    EXPECT_EQ(hashes.size(), FapId::directBound);
}

TEST(FapId, HashIsItsNumberMixedWithTheConstantOfTheType) {
    EXPECT_EQ(FapId(0).hash(), Pelo::hashMix(0, 569662278));
    EXPECT_EQ(FapId(200).hash(), Pelo::hashMix(200, 569662278));
}

TEST(FapId, RefusesWhatIsNoNumberOf8Bits) {
    EXPECT_EQ(parseOutcome<FapId>("256"), "at 2: expected a number from 0 to 255");
    EXPECT_EQ(parseOutcome<FapId>(""), "at 0: expected a number from 0 to 255");
    EXPECT_EQ(parseOutcome<FapId>("+1"), "at 0: expected a number from 0 to 255");
    EXPECT_EQ(parseOutcome<FapId>("01"), "at 1: expected a number from 0 to 255");
    EXPECT_EQ(parseOutcome<FapId>("1 "), "at 1: expected a number from 0 to 255");
}

} // namespace
