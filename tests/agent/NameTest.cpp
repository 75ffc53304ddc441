#include "language/Parse.h"

#include <gtest/gtest.h>

#include <string>

namespace VpAgent {
namespace {

std::string outcomeOf(std::string const& name) {
    auto const fault = nameFault(name);
    return fault ? fault->expected + " at " + std::to_string(fault->at) : "a name";
}

TEST(Name, IsAnyTextOfOneTo255Bytes) {
    std::string const length = "a name of 1 to 255 bytes at 0";
    EXPECT_EQ(outcomeOf(""), length);
    EXPECT_EQ(outcomeOf("b"), "a name");
    EXPECT_EQ(outcomeOf("a \"b\" # ~"), "a name");
    EXPECT_EQ(outcomeOf("Z\xC3\xBCrich"), "a name");
    EXPECT_EQ(outcomeOf("\xE2\x82\xAC"), "a name");
    EXPECT_EQ(outcomeOf(std::string(255, 'a')), "a name");
    EXPECT_EQ(outcomeOf(std::string(256, 'a')), length);
}

TEST(Name, HasNoControlCharacterAndNothingButUtf8) {
    auto const at = [](std::size_t place) {
        return "a name without control characters at " + std::to_string(place);
    };
    EXPECT_EQ(outcomeOf(std::string("ab\0", 3)), at(2));
    EXPECT_EQ(outcomeOf("\x1B"), at(0));
    EXPECT_EQ(outcomeOf("a\x7F"), at(1));
    EXPECT_EQ(outcomeOf("Z\xC3\xBCrich\tand"), at(7));
    EXPECT_EQ(outcomeOf("a\xC2\x9B"), at(1));
    EXPECT_EQ(outcomeOf("Z\xC3\xBC\xC3"), at(3));
    EXPECT_EQ(outcomeOf("\xFFz"), at(0));
}

} // namespace
} // namespace VpAgent
