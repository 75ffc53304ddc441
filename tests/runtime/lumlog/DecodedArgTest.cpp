#include "lumlog/DecodedArg.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace Lumlog {
namespace {

using std::string_view_literals::operator""sv;

/// The argument of that code letter at the front of these bytes.
std::optional<DecodedArg> taken(char code, std::string_view bytes) {
    ByteCursor payload(std::as_bytes(std::span(bytes)));
    return takeArg(code, payload);
}

TEST(DecodedArg, IsTakenByItsLetter) {
    EXPECT_EQ(taken('b', "\0"sv), DecodedArg(false));
    EXPECT_EQ(taken('b', "\x01"), DecodedArg(true));
    EXPECT_EQ(taken('1', "\xFF"), DecodedArg(U64{255}));
    EXPECT_EQ(taken('2', "\xFF\xFF"), DecodedArg(U64{65535}));
    EXPECT_EQ(taken('4', "\xFF\xFF\xFF\xFF"), DecodedArg(U64{4294967295}));
    EXPECT_EQ(taken('8', "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), DecodedArg(~U64{0}));
    EXPECT_EQ(taken('i', "\xFF\xFF\xFF\xFF\xFF\xFF\xFF\xFF"), DecodedArg(std::int64_t{-1}));
    EXPECT_EQ(taken('s', "\0\0"sv), DecodedArg(std::string()));
}

TEST(DecodedArg, IsNothingWhenItIsNotThereOrMakesNoSense) {
    for (char const code : {'b', '1', '2', '4', '8', 'i', 's', 'a'}) {
        EXPECT_EQ(taken(code, ""), std::nullopt) << code;
    }
    EXPECT_EQ(taken('4', "\0\0\0"sv), std::nullopt);
    EXPECT_EQ(taken('s', "\xFF\xFFtext"), std::nullopt);
    EXPECT_EQ(taken('b', "\x02"), std::nullopt);
    EXPECT_EQ(taken('a', std::string(17, '\x7F')), std::nullopt);
    EXPECT_EQ(taken('w', "words"), std::nullopt);
    EXPECT_EQ(taken('?', "12345678"), std::nullopt);
}

TEST(DecodedArg, HasTheTextOfATraceLine) {
    EXPECT_EQ(argText(true), "true");
    EXPECT_EQ(argText(false), "false");
    EXPECT_EQ(argText(~U64{0}), "18446744073709551615");
    EXPECT_EQ(argText(std::int64_t{-5}), "-5");
    EXPECT_EQ(argText(std::string("a\x1b")), "a\x1b");
}

} // namespace
} // namespace Lumlog
