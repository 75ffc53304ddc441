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
    EXPECT_EQ(at("a\xC3\xBC", 1), Found(0xFC, 2));
}

TEST(Utf8, RefusesWhatIsNoCharacter) {
    std::vector<std::string> const wrong{
        "\x80",             // no first byte
        "\xC3",             // cut off
        "\xC3(",            // no further byte
        "\xC1\xBF",         // overlong
        "\xE0\x9F\xBF",     // overlong
        "\xF0\x8F\xBF\xBF", // overlong
        "\xED\xA0\x80",     // a surrogate
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

TEST(Utf8, HexByteHasTwoDigits) {
    EXPECT_EQ(hexByte(0x0A), "0x0A");
    EXPECT_EQ(hexByte(0xF0), "0xF0");
}

} // namespace
} // namespace Pelo
