#include "language/Words.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>
#include <vector>

namespace VpAgent {
namespace {

std::vector<std::string> wordsOf(std::string_view line) {
    Words words;
    words.read(line);
    std::vector<std::string> texts;
    for (Word const& word : words.all()) {
        texts.emplace_back(word.text);
    }
    return texts;
}

/// The message and the place of the refusal of a line.
std::tuple<std::string, std::size_t, std::size_t> placeOfRefusal(std::string_view line) {
    try {
        wordsOf(line);
    } catch (Refusal const& refusal) {
        Place const place = refusal.place().value_or(Place{999, 999});
        return {refusal.what(), place.at, place.length};
    }
    return {"not refused", 0, 0};
}

using Texts = std::vector<std::string>;
using At = std::tuple<std::string, std::size_t, std::size_t>;

TEST(Words, StandApartByBlanksAndTabs) {
    EXPECT_EQ(wordsOf("request bgp\tvlan   100"), (Texts{"request", "bgp", "vlan", "100"}));
    EXPECT_EQ(wordsOf("  \t dump \t "), (Texts{"dump"}));
    EXPECT_EQ(wordsOf(""), Texts{});
    EXPECT_EQ(wordsOf(" \t"), Texts{});
}

TEST(Words, EndWhereACommentBegins) {
    EXPECT_EQ(wordsOf("# client add a"), Texts{});
    EXPECT_EQ(wordsOf("dump # now"), (Texts{"dump"}));
    EXPECT_EQ(wordsOf("dump# now"), (Texts{"dump"}));
    EXPECT_EQ(wordsOf("echo \"a#b\"#c"), (Texts{"echo", "a#b"}));
    EXPECT_EQ(wordsOf("dump # \"open quote, \x01 and \xff"), (Texts{"dump"}));
}

TEST(Words, InQuotesHoldBlanksQuotesAndBackslashes) {
    EXPECT_EQ(wordsOf(R"(echo "a b" "" "\"" "\\" "x\\\"y")"),
              (Texts{"echo", "a b", "", "\"", "\\", "x\\\"y"}));
}

TEST(Words, TheLastBeginsBehindABlankThatStandsInNoQuotes) {
    for (auto const& [line, at] :
         {std::pair("", 0u), std::pair("show", 0u), std::pair("show ", 5u), std::pair("a \tb", 3u),
          std::pair("show \"a b", 5u), std::pair("show \"a b\" c", 11u),
          std::pair(R"(show "a \" b)", 5u), std::pair(R"(show "a \\" b)", 12u),
          std::pair("a\"b c", 4u), std::pair("\"\" x", 3u)}) {
        EXPECT_EQ(lastWordAt(line), at) << line;
    }
}

TEST(Words, KeepABackslashOutsideQuotes) {
    EXPECT_EQ(wordsOf(R"(a\b \)"), (Texts{R"(a\b)", R"(\)"}));
}

TEST(Words, MayBeAnyUtf8) {
    EXPECT_EQ(wordsOf("client add Z\xC3\xBCrich"), (Texts{"client", "add", "Z\xC3\xBCrich"}));
}

TEST(Words, AreRefusedWithTheirPlace) {
    EXPECT_EQ(
        placeOfRefusal("echo \"abc"),
        (At{"the quote is not closed, expected another \" before the end of the line", 5, 4}));
    EXPECT_EQ(placeOfRefusal("echo a\"b"),
              (At{"a quote inside a word, expected a blank before the quote", 6, 1}));
    EXPECT_EQ(placeOfRefusal("echo \"a\"b"),
              (At{"text behind a closing quote, expected a blank", 8, 1}));
    EXPECT_EQ(placeOfRefusal(R"(echo "a\n")"),
              (At{R"(a backslash in quotes, expected \" or \\)", 7, 1}));
    EXPECT_EQ(placeOfRefusal("echo \"a\\"),
              (At{R"(a backslash in quotes, expected \" or \\)", 7, 1}));
}

TEST(Words, HoldNoControlCharacters) {
    EXPECT_EQ(placeOfRefusal("echo a\x1b[2J"),
              (At{"a control character (0x1B), expected printable text", 6, 1}));
    EXPECT_EQ(placeOfRefusal("dump\r"),
              (At{"a control character (0x0D), expected printable text", 4, 1}));
    EXPECT_EQ(placeOfRefusal("echo \"\x7f\""),
              (At{"a control character (0x7F), expected printable text", 6, 1}));
    EXPECT_EQ(placeOfRefusal(std::string_view("echo a\0b", 8)),
              (At{"a control character (0x00), expected printable text", 6, 1}));
    // U+009B acts as an escape on some terminals.
    EXPECT_EQ(placeOfRefusal("echo \xC2\x9B"),
              (At{"a control character (U+009B), expected printable text", 5, 2}));
}

TEST(Words, HoldNoBytesThatAreNotUtf8) {
    std::string const message = "a byte that is not UTF-8 (0xC3), expected printable text";
    EXPECT_EQ(placeOfRefusal("echo \xC3"), (At{message, 5, 1}));
    EXPECT_EQ(placeOfRefusal("echo \xC3 b"), (At{message, 5, 1}));
    EXPECT_EQ(placeOfRefusal("echo \"\xC3\""), (At{message, 6, 1}));
    EXPECT_EQ(std::get<0>(placeOfRefusal("\xC0\xAF")),
              "a byte that is not UTF-8 (0xC0), expected printable text");
    EXPECT_EQ(std::get<0>(placeOfRefusal("\xED\xA0\x80")),
              "a byte that is not UTF-8 (0xED), expected printable text");
    EXPECT_EQ(std::get<0>(placeOfRefusal("\xF4\x90\x80\x80")),
              "a byte that is not UTF-8 (0xF4), expected printable text");
}

/// What comes of a word with this byte in its middle.
std::string outcomeOf(std::string const& before, unsigned char byte) {
    std::string const line = before + static_cast<char>(byte) + "b";
    auto const [message, at, length] = placeOfRefusal(line);
    if (message != "not refused") {
        EXPECT_EQ(at, before.size());
        EXPECT_EQ(length, 1u);
        return message.substr(0, message.find(" (0x"));
    }
    auto const words = wordsOf(line);
    return words == Texts{line} ? "one word" : words == Texts{before} ? "a comment" : "two words";
}

TEST(Words, TakeEachByteInTheSameWayBehindAsciiAndBehindOtherLetters) {
    for (unsigned byte = 0; byte < 256; ++byte) {
        std::string const expected =
            byte == ' ' || byte == '\t' ? "two words"
            : byte == '#'               ? "a comment"
            : byte == '"'               ? "a quote inside a word, expected a blank before the quote"
            : byte < 0x20 || byte == 0x7F ? "a control character"
            : byte > 0x7F                 ? "a byte that is not UTF-8"
                                          : "one word";
        for (char const* const before : {"a", "Z\xC3\xBC", "Z\xC3\xBCrich"}) {
            EXPECT_EQ(outcomeOf(before, static_cast<unsigned char>(byte)), expected)
                << before << " and byte " << byte;
        }
    }
}

TEST(Words, KnowWhereAPartOfThemStands) {
    Words words;
    words.read(R"(put "a\"b:5000" Eth:7)");
    EXPECT_EQ(words.all()[1].place(), (Place{4, 11}));
    EXPECT_EQ(words.all()[1].placeFrom(4), (Place{10, 5})); // 5000"
    EXPECT_EQ(words.all()[2].placeFrom(4), (Place{20, 1}));
    EXPECT_EQ(words.end(), 21u);
}

TEST(Words, AreReadAnewFromEachLine) {
    Words words;
    words.read(R"("a\\b" "c\"d")");
    words.read(R"("e\\f")");
    ASSERT_EQ(words.all().size(), 1u);
    EXPECT_EQ(words.all()[0].text, "e\\f");
}

TEST(Words, AreQuotedWhereTheyHaveToBe) {
    EXPECT_EQ(asWord("Ethernet1/1"), "Ethernet1/1");
    EXPECT_EQ(asWord(""), R"("")");
    EXPECT_EQ(asWord("port 7"), R"("port 7")");
    EXPECT_EQ(asWord("a#b"), R"("a#b")");
    EXPECT_EQ(asWord(R"(a"b\c)"), R"("a\"b\\c")");
    EXPECT_EQ(wordsOf(asWord(R"(a"b\ c#)")), (Texts{R"(a"b\ c#)"}));
}

} // namespace
} // namespace VpAgent
