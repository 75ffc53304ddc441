#include "qor/EnumType.h"

#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string_view>
#include <vector>

namespace {

using ColourType = Qor::EnumType<unsigned int>;

constexpr ColourType::Enumerator colours[] = {{1, "red"}, {5, "redOrange"}, {7, "blue_2"}};

class EnumType : public testing::Test {
protected:
    /// What stands at the beginning of the text, and how long it is; value 0 where there is
    /// nothing.
    struct Read {
        std::size_t length;
        unsigned int value;
        friend bool operator==(Read const&, Read const&) = default;
    };
    Read read(std::string_view text) const {
        unsigned int value = 0;
        std::size_t const length =
            type.sequenceToValue(text.data(), text.data() + text.size(), value);
        return {length, value};
    }

    ColourType const type{"Test::Colour", colours};
};

TEST_F(EnumType, HasItsNameAndItsEnumeratorsInOrder) {
    EXPECT_STREQ(type.name(), "Test::Colour");
    EXPECT_EQ(type.enumerators().data(), colours);
    EXPECT_EQ(type.enumerators().size(), 3u);
}

TEST_F(EnumType, FindsEnumeratorsByValueAndByName) {
    for (auto const& colour : colours) {
        EXPECT_EQ(type.find(colour.value), &colour);
        EXPECT_EQ(type.find(colour.name), &colour);
        EXPECT_EQ(&type.instance(colour.value), &colour);
        EXPECT_EQ(&type.instance(colour.name), &colour);
    }
}

TEST_F(EnumType, RefusesWhatIsNoEnumerator) {
    EXPECT_EQ(type.find(2u), nullptr);
    EXPECT_EQ(type.find("orange"), nullptr);
    EXPECT_THROW(type.instance(2u), Qor::UnknownNameException);
    EXPECT_THROW(type.instance("Red"), Qor::UnknownNameException);
    EXPECT_THROW(type.instance(""), Qor::UnknownNameException);
}

TEST_F(EnumType, PrintsAnUnknownValueWithTheTypesName) {
    std::ostringstream out;
    type.print(out, 5);
    out << ' ';
    type.print(out, 6);
    EXPECT_EQ(out.str(), "redOrange Test::Colour(6)");
    EXPECT_EQ(type.stringValue(7), "blue_2");
    EXPECT_EQ(type.stringValue(0), "Test::Colour(0)");
}

TEST_F(EnumType, ReadsAWholeText) {
    EXPECT_EQ(read("red"), (Read{3, 1}));
    EXPECT_EQ(read("redOrange"), (Read{9, 5}));
    EXPECT_EQ(read("blue_2"), (Read{6, 7}));
}

TEST_F(EnumType, ReadsUpToTheEndOfTheName) {
    EXPECT_EQ(read("red, blue_2"), (Read{3, 1}));
    EXPECT_EQ(read("redOrange-red"), (Read{9, 5}));
    EXPECT_EQ(read("blue_2}"), (Read{6, 7}));
    EXPECT_EQ(read(std::string_view("red\0x", 5)), (Read{3, 1}));
}

TEST_F(EnumType, ReadsNothingWhereNoNameStands) {
    for (std::string_view const text :
         {"", " red", "re", "redO", "red2", "blue_", "Test::Colour(6)"}) {
        EXPECT_EQ(read(text), (Read{0, 0})) << text;
    }
}

TEST_F(EnumType, IsFoundByNameWhileItLives) {
    EXPECT_EQ(ColourType::findType("Test::Colour"), &type);
    {
        ColourType const other("Test::Other", colours);
        EXPECT_EQ(ColourType::findType("Test::Other"), &other);
    }
    EXPECT_EQ(ColourType::findType("Test::Other"), nullptr);
    EXPECT_EQ(ColourType::findType("Test::Colour"), &type);
}

using EnumTypeDeathTest = EnumType;

TEST_F(EnumTypeDeathTest, StopsOnWhatIsThereTwice) {
    EXPECT_DEATH(ColourType("Test::Colour", colours), "findType\\(name\\) == nullptr");
    ColourType::Enumerator const sameValue[] = {{1, "a"}, {1, "b"}};
    EXPECT_DEATH(ColourType("Test::Bad", sameValue), "find\\(enumerator.value\\) == &enumerator");
    ColourType::Enumerator const sameName[] = {{1, "a"}, {2, "a"}};
    EXPECT_DEATH(ColourType("Test::Bad", sameName), "find\\(enumerator.name\\) == &enumerator");
}

} // namespace
