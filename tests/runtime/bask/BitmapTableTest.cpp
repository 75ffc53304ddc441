// The bitmap by the names and numbers of its table.

#include "bask/Bitmap.h"
#include "bask/BitmapTraits.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Bask::Bitmap;
using Bask::HBitmap;
using Qor::GenericValue;
using Qor::OpCode;

TEST(BitmapWords, ReadAsTheyPrint) {
    using State = Qor::ValueTraits<HBitmap::BitState>;
    using End = Qor::ValueTraits<Bask::Preference>;
    for (std::string_view const word : {"set", "clear"}) {
        EXPECT_EQ(State::text(*State::parse(word)), word);
    }
    for (std::string_view const word : {"low", "high"}) {
        EXPECT_EQ(End::text(*End::parse(word)), word);
    }
    EXPECT_EQ(State::parse("Set").error().expected, "set or clear");
    EXPECT_EQ(End::parse("").error().expected, "low or high");
}

class BitmapTable : public testing::Test {
protected:
    std::string get(Pelo::FieldId field) const {
        return Qor::inspectOperation(std::as_const(*bits), field, OpCode::get).text();
    }
    std::string call(std::string_view operation, std::vector<std::string_view> const& texts) {
        Qor::CallResult const result = Qor::callByName(*bits, operation, texts);
        return result.refusal ? "expected " + result.refusal->error.expected : result.value.text();
    }

    Pelo::Ptr<Bitmap> const bits =
        Pelo::newNode<Bitmap>(U64{7}, U32{100}, HBitmap::BitState::clear);
};

TEST_F(BitmapTable, ReadsWhatTheBitmapIsAndHolds) {
    bits->setBit(3);
    bits->setBit(64);
    EXPECT_EQ(get(130), "7");
    EXPECT_EQ(get(131), "100");
    EXPECT_EQ(get(132), "clear");
    EXPECT_EQ(get(133), "2");
}

TEST_F(BitmapTable, CallsTheOperations) {
    EXPECT_EQ(call("setBit", {"3"}), "");
    EXPECT_EQ(call("setBit", {"99"}), "");
    EXPECT_TRUE(bits->isBitSet(3));
    EXPECT_EQ(call("isBitSet", {"3"}), "true");
    EXPECT_EQ(call("isBitSet", {"4"}), "false");
    EXPECT_EQ(call("findClearBitInRange", {"3", "99", "low"}), "4");
    EXPECT_EQ(call("findClearBitInRange", {"3", "99", "high"}), "98");
    EXPECT_EQ(call("findClearBitInRange", {"3", "3", "low"}), "4294967295");
    EXPECT_EQ(call("clearBit", {"3"}), "");
    EXPECT_FALSE(bits->isBitSet(3));
    EXPECT_EQ(bits->numBitsInSetState(), 1u);
}

TEST_F(BitmapTable, ReadsThePreferenceFromItsTwoWords) {
    EXPECT_EQ(call("findClearBitInRange", {"0", "9", "lowest"}),
              "expected low or high (argument preference)");
}

TEST_F(BitmapTable, NamesPreferencesAndArguments) {
    EXPECT_EQ(GenericValue::of(Bask::Preference::low).text(), "low");
    EXPECT_EQ(GenericValue::of(Bask::Preference::high).text(), "high");
    EXPECT_EQ(Bitmap::typeTable().fieldByNumber(137)->signature(),
              "findClearBitInRange(lo: U32, hi: U32, preference: Bask::Preference): U32 const");
}

TEST_F(BitmapTable, ChangesNoConstantBitmap) {
    std::vector<std::string_view> const bit{"3"};
    EXPECT_THROW(Qor::callByName(std::as_const(*bits), "setBit", bit), Qor::ConstEntityException);
    EXPECT_EQ(Qor::callByName(std::as_const(*bits), "isBitSet", bit).value.text(), "false");
}

TEST_F(BitmapTable, BuildsABitmapInEitherState) {
    for (auto const& [text, set] : {std::pair("set", 9u), std::pair("clear", 0u)}) {
        auto const built = Qor::genericIfConstructFromCtorArgs(
            Bitmap::typeTable(),
            {GenericValue::of(U64{1}), GenericValue::of(U32{9}),
             GenericValue::of(*Qor::ValueTraits<HBitmap::BitState>::parse(text))});
        auto const* const bitmap = dynamic_cast<Bitmap const*>(built.get());
        ASSERT_NE(bitmap, nullptr);
        EXPECT_EQ(bitmap->numBitsInSetState(), set);
        EXPECT_EQ(built->useCount(), 1u);
    }
}

} // namespace
