#include "pelo/Decimal.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace {

std::string outcome(std::string_view text, U64 max) {
    auto const number = Pelo::parseDecimal(text, max);
    if (number) {
        return std::to_string(*number);
    }
    return "at " + std::to_string(number.error().at) + ": expected " + number.error().expected;
}

TEST(Decimal, ReadsTheNumbersUpToTheLargest) {
    EXPECT_EQ(outcome("0", 0), "0");
    EXPECT_EQ(outcome("7", 255), "7");
    EXPECT_EQ(outcome("10", 10), "10");
    EXPECT_EQ(outcome("255", 255), "255");
    EXPECT_EQ(outcome("4294967295", std::numeric_limits<U32>::max()), "4294967295");
    EXPECT_EQ(outcome("18446744073709551615", std::numeric_limits<U64>::max()),
              "18446744073709551615");
}

TEST(Decimal, RefusesTheFirstDigitThatMakesItTooLarge) {
    EXPECT_EQ(outcome("1", 0), "at 0: expected a number from 0 to 0");
    EXPECT_EQ(outcome("8", 7), "at 0: expected a number from 0 to 7");
    EXPECT_EQ(outcome("256", 255), "at 2: expected a number from 0 to 255");
    EXPECT_EQ(outcome("1000", 255), "at 3: expected a number from 0 to 255");
    EXPECT_EQ(outcome("18446744073709551616", std::numeric_limits<U64>::max()),
              "at 19: expected a number from 0 to 18446744073709551615");
    EXPECT_EQ(outcome(std::string(1000, '9'), 65535), "at 4: expected a number from 0 to 65535");
}

TEST(Decimal, RefusesEverythingButDigits) {
    for (std::string_view const text : {"", "-1", "+1", " 1", "x", "\t", "/", ":"}) {
        EXPECT_EQ(outcome(text, 9999), "at 0: expected a number from 0 to 9999") << text;
    }
    for (std::string_view const text :
         {"1 ", "1x2", "1.0", "1e3", "0x10", "1-", "1,000", "1/", "1:"}) {
        EXPECT_EQ(outcome(text, 9999), "at 1: expected a number from 0 to 9999") << text;
    }
    EXPECT_EQ(outcome(std::string_view("12\0", 3), 9999), "at 2: expected a number from 0 to 9999");
}

TEST(Decimal, RefusesLeadingZeros) {
    for (std::string_view const text : {"00", "01", "007", "0000000"}) {
        EXPECT_EQ(outcome(text, 9999), "at 1: expected a number from 0 to 9999") << text;
    }
}

} // namespace
