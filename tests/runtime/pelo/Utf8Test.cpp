#include "pelo/Utf8.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Pelo {
namespace {

using Found = std::pair<char32_t, std::size_t>;

Found at(std::string_view text, std::size_t offset = 0) {
    Utf8Character const character = utf8At(text, offset);
    return {character.codePoint, character.length};
}

TEST(Utf8, ReadsCharactersOfEveryLength) {
    EXPECT_EQ(at("a"), Found(U'a', 1));
    EXPECT_EQ(at("\xC2\x80"), Found(0x80, 2));
    EXPECT_EQ(at("\xE2\x82\xAC!"), Found(0x20AC, 3));
    EXPECT_EQ(at("\xF4\x8F\xBF\xBF"), Found(0x10FFFF, 4));
    EXPECT_EQ(at("\xED\x9F\xBF"), Found(0xD7FF, 3)); // around the surrogates
    EXPECT_EQ(at("\xEE\x80\x80"), Found(0xE000, 3));
    EXPECT_EQ(at("a\xC3\xBC", 1), Found(0xFC, 2));
}

TEST(Utf8, RefusesWhatIsNoCharacter) {
    std::vector<std::string> const wrong{
        "\x80",             // no first byte
        "\xC3",             // cut off
        "\xC3(",            // no further byte
        "\xC3\xC3",         // a first byte instead
        "\xE2\x82\xE2",     // the same
        "\xC1\xBF",         // overlong
        "\xE0\x9F\xBF",     // overlong
        "\xF0\x8F\xBF\xBF", // overlong
        "\xED\xA0\x80",     // the first surrogate
        "\xED\xBF\xBF",     // the last
        "\xF4\x90\x80\x80", // beyond the last
        "\xFF",
    };
    for (std::string const& text : wrong) {
        EXPECT_EQ(at(text).second, 0u) << printable(text);
    }
}

TEST(Utf8, CountsCharactersAndBytesThatAreNone) {
    EXPECT_EQ(utf8Length(""), 0u);
    EXPECT_EQ(utf8Length("Z\xC3\xBCrich"), 6u);
    EXPECT_EQ(utf8Length("\xFF\xC3"), 2u);
}

TEST(Utf8, ShowsWhatCannotBeSeenAsItsBytes) {
    for (char const* const text :
         {"\x1B", "\x7F", "\xC2\x9B", "\xC2\xAD", "\xD8\x9C", "\xE1\xA0\x8E", "\xE2\x80\x8B",
          "\xE2\x80\x8F", "\xE2\x80\xA8", "\xE2\x80\xAE", "\xE2\x81\xA6", "\xEF\xBB\xBF",
          "\xEF\xBF\xB9", "\xF3\xA0\x81\x81"}) {
        std::string bytes;
        for (char const* byte = text; *byte != '\0'; ++byte) {
            bytes += "\\x" + hexByte(static_cast<unsigned char>(*byte)).substr(2);
        }
        EXPECT_EQ(printable(text), bytes);
    }
    for (char const* const text : {"a b~", "Z\xC3\xBCrich", "\xC2\xA0", "\xE2\x80\x90",
                                   "\xE2\x81\xB0", "\xEF\xBF\xBD", "\xF0\x9F\x99\x82"}) {
        EXPECT_EQ(printable(text), text);
    }
}

TEST(Utf8, HexByteHasTwoDigits) {
    EXPECT_EQ(hexByte(0x0A), "0x0A");
    EXPECT_EQ(hexByte(0xF0), "0xF0");
}

} // namespace
} // namespace Pelo
