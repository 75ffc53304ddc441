#include "inspect/Path.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {
namespace {

using Texts = std::vector<std::string>;

Texts stepsOf(std::string_view path) {
    Texts texts;
    for (Step const& step : pathSteps(Word{path, path, 0})) {
        texts.push_back(step.text);
    }
    return texts;
}

/// The part of the line that a refusal of the path is about.
std::string faultIn(std::string const& line) {
    Words words;
    words.read(line);
    try {
        pathSteps(words.all()[1]);
    } catch (Refusal const& refusal) {
        EXPECT_STREQ(refusal.what(), "a percent sign in a path, expected %2F for a slash or %25 "
                                     "for a percent sign");
        return std::to_string(refusal.place()->at) + '+' + std::to_string(refusal.place()->length);
    }
    return "none";
}

TEST(Path, HasAStepBetweenAnyTwoSlashes) {
    EXPECT_EQ(stepsOf("machine"), Texts{"machine"});
    EXPECT_EQ(stepsOf("configs/vpIndexConfig/bgp"), (Texts{"configs", "vpIndexConfig", "bgp"}));
    EXPECT_EQ(stepsOf(""), Texts{""});
    EXPECT_EQ(stepsOf("/"), (Texts{"", ""}));
    EXPECT_EQ(stepsOf("a//b/"), (Texts{"a", "", "b", ""}));
}

TEST(Path, TakesEscapesForSlashAndPercentSign) {
    EXPECT_EQ(stepsOf("a%2Fb/100%25/%2f"), (Texts{"a/b", "100%", "/"}));
    EXPECT_EQ(stepsOf("%252F"), Texts{"%2F"});
}

TEST(Path, RefusesAnyOtherPercentSign) {
    EXPECT_EQ(faultIn("inspect a%2F/b%41"), "14+1");
    EXPECT_EQ(faultIn("inspect %"), "8+1");
    EXPECT_EQ(faultIn("inspect a%2/F"), "9+1");
    EXPECT_EQ(faultIn("inspect a%2"), "9+1");
    EXPECT_EQ(faultIn("inspect \"a \\\"%/b\""), "13+1");
    EXPECT_EQ(faultIn("inspect a%25"), "none");
}

TEST(Path, WritesStepsThatItReads) {
    EXPECT_EQ(asStep("Ethernet1/1:100"), "Ethernet1%2F1:100");
    EXPECT_EQ(asStep("100%2F"), "100%252F");
    EXPECT_EQ(asStep("two words"), "two words");
    for (char const* const text : {"", "/", "%", "%2F", "a/b%25c//", "10.0.0.2@17/1/2"}) {
        EXPECT_EQ(stepsOf(asStep(text)), Texts{text});
    }
}

TEST(Path, KnowsThePlaceOfEachStep) {
    std::string const line = "inspect \"a%2F/two \\\"words\\\"/c/\"";
    Words words;
    words.read(line);
    Word const& word = words.all()[1];
    std::string places;
    for (Step const& step : pathSteps(word)) {
        Place const place = step.place(word);
        places += line.substr(place.at, place.length) + '|';
    }
    EXPECT_EQ(places, "a%2F|two \\\"words\\\"|c|\"|");
}

} // namespace
} // namespace VpAgent
