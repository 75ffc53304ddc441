#include "netzo/Ip6Addr.h"

#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Netzo::Ip6Addr;
using Support::parseOutcome;

std::string outcome(std::string_view text) { return parseOutcome<Ip6Addr>(text); }

/// The address as the C library reads it.
std::optional<Ip6Addr> readByLibrary(std::string const& text) {
    Ip6Addr::Bytes bytes{};
    if (inet_pton(AF_INET6, text.c_str(), bytes.data()) != 1) {
        return std::nullopt;
    }
    return Ip6Addr(bytes);
}

TEST(Ip6Addr, DefaultIsTheUnspecifiedAddress) {
    EXPECT_EQ(Ip6Addr().stringValue(), "::");
    EXPECT_EQ(Ip6Addr(), Ip6Addr(Ip6Addr::Bytes{}));
}

TEST(Ip6Addr, PrintsTheShortestForm) {
    std::vector<std::pair<char const*, char const*>> const cases{
        {"0:0:0:0:0:0:0:0", "::"},
        {"0:0:0:0:0:0:0:1", "::1"},
        {"1:0:0:0:0:0:0:0", "1::"},
        {"2001:0DB8:0000:0000:0008:0800:200C:417A", "2001:db8::8:800:200c:417a"},
        {"2001:db8:0:0:1:0:0:1", "2001:db8::1:0:0:1"},    // the first of two equal runs
        {"2001:0:0:1:0:0:0:1", "2001:0:0:1::1"},          // the longest run
        {"2001:db8:0:1:1:1:1:1", "2001:db8:0:1:1:1:1:1"}, // one zero group is no run
        {"0:0:1:1:1:1:0:0", "::1:1:1:1:0:0"},
        {"1:1:1:1:1:1:0:0", "1:1:1:1:1:1::"},
        {"0:1:0:1:0:1:0:1", "0:1:0:1:0:1:0:1"},
        {"1:0:0:2:0:0:0:0", "1:0:0:2::"},
        {"ABCD:EF01:2345:6789:ABCD:EF01:2345:6789", "abcd:ef01:2345:6789:abcd:ef01:2345:6789"},
        {"ff02::1", "ff02::1"},
        {"1:2:3:4:5:6:7::", "1:2:3:4:5:6:7:0"},
        {"::2:3:4:5:6:7:8", "0:2:3:4:5:6:7:8"},
    };
    for (auto const& [text, shortest] : cases) {
        EXPECT_EQ(outcome(text), shortest) << text;
    }
}

TEST(Ip6Addr, PrintsMappedAddressesWithDots) {
    EXPECT_EQ(outcome("::ffff:c000:0280"), "::ffff:192.0.2.128");
    EXPECT_EQ(outcome("::FFFF:0.0.0.0"), "::ffff:0.0.0.0");
    EXPECT_EQ(outcome("0:0:0:0:0:ffff:255.255.255.255"), "::ffff:255.255.255.255");
    EXPECT_EQ(outcome("::1.2.3.4"), "::102:304");
    EXPECT_EQ(outcome("64:ff9b::192.0.2.33"), "64:ff9b::c000:221");
    EXPECT_EQ(outcome("::ffff:0:1.2.3.4"), "::ffff:0:102:304");
    EXPECT_EQ(outcome("1::ffff:1.2.3.4"), "1::ffff:102:304");
    EXPECT_EQ(outcome("::1:ffff:1.2.3.4"), "::1:ffff:102:304");
    EXPECT_EQ(outcome("::fffe:1.2.3.4"), "::fffe:102:304");
}

TEST(Ip6Addr, ReadsAnEmbeddedIp4AddressAtTheEnd) {
    EXPECT_EQ(outcome("1:2:3:4:5:6:1.2.3.4"), "1:2:3:4:5:6:102:304");
    EXPECT_EQ(outcome("1:2:3:4:5::1.2.3.4"), "1:2:3:4:5:0:102:304");
    EXPECT_EQ(outcome("1::1.2.3.4"), "1::102:304");
}

TEST(Ip6Addr, RefusesWhatIsNoAddressAtTheByteThatDoesNotFit) {
    std::string const group = "a group of 1 to 4 hexadecimal digits";
    std::vector<std::pair<std::string, std::string>> const cases{
        {"", "at 0: expected " + group},
        {":", "at 1: expected ':'"},
        {":1", "at 1: expected ':'"},
        {":::", "at 2: expected " + group},
        {"g::", "at 0: expected " + group},
        {"G::", "at 0: expected " + group}, // and the other neighbours of the digits
        {"@::", "at 0: expected " + group},
        {"`::", "at 0: expected " + group},
        {"/::", "at 0: expected " + group},
        {"1", "at 1: expected ':'"},
        {"1:", "at 2: expected " + group},
        {"1::2::3", "at 5: expected " + group},
        {"12345::", "at 4: expected ':'"},
        {"::12345", "at 6: expected ':'"},
        {"::00001", "at 6: expected ':'"},
        {"1:2:3:4:5:6:7", "at 13: expected ':'"},
        {"1:2:3:4:5:6:7:", "at 14: expected " + group},
        {"1:2:3:4:5:6:7:8:", "at 15: expected the end of the address"},
        {"1:2:3:4:5:6:7:8:9", "at 15: expected the end of the address"},
        {"1:2:3:4:5:6:7:8::", "at 15: expected the end of the address"},
        {"1::2:3:4:5:6:7:8", "at 14: expected the end of the address"},
        {"::2:3:4:5:6:7:8:9", "at 15: expected the end of the address"},
        {"1:2:3:4:5:6:7::8", "at 15: expected the end of the address"},
        {"fe80::1%eth0", "at 7: expected ':'"},
        {"::1/64", "at 3: expected ':'"},
        {" ::1", "at 0: expected " + group},
        {"::1 ", "at 3: expected ':'"},
        {"[::1]", "at 0: expected " + group},
        {"::-1", "at 2: expected " + group},
        {"::1.2.3", "at 7: expected '.'"},
        {"::1.2.3.", "at 8: expected a number from 0 to 255"},
        {"::1.2.3.256", "at 10: expected a number from 0 to 255"},
        {"::1.2.3.04", "at 9: expected a number from 0 to 255"},
        {"::1.2.3.4.5", "at 9: expected the end of the address"},
        {"::1.2.3.4:5", "at 9: expected the end of the address"},
        {"::256.1.1.1", "at 5: expected a number from 0 to 255"},
        {"::01.1.1.1", "at 4: expected a number from 0 to 255"},
        {"::1a.1.1.1", "at 4: expected '.'"},
        {"1:2:3:4:5:1.2.3.4", "at 11: expected ':'"},
        {"1:2:3:4:5:6:7:1.2.3.4", "at 15: expected the end of the address"},
        {"1::3:4:5:6:7:1.2.3.4", "at 14: expected the end of the address"},
        {"1.2.3.4", "at 1: expected ':'"},
    };
    for (auto const& [text, expected] : cases) {
        EXPECT_EQ(outcome(text), expected) << text;
    }
    EXPECT_EQ(outcome(std::string_view("::1\0", 4)), "at 3: expected ':'");
    EXPECT_EQ(outcome(std::string(100000, ':')), "at 2: expected " + group);
}

Ip6Addr randomAddress(Support::Random& random) {
    Ip6Addr::Bytes bytes{};
    for (std::size_t at = 0; at < bytes.size(); at += 2) {
        if (random.oneIn(2)) {
            bytes[at] = random.oneIn(2) ? U8{0} : random.byte();
            bytes[at + 1] = random.oneIn(4) ? U8{0xFF} : random.byte();
        }
    }
    return Ip6Addr(bytes);
}

TEST(Ip6Addr, PrintsAsTheLibraryDoesAndReadsWhatItPrints) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 20000; ++round) {
        Ip6Addr const address = randomAddress(random);
        std::string const text = address.stringValue();
        auto const parsed = Ip6Addr::parse(text);
        ASSERT_TRUE(parsed) << text;
        ASSERT_EQ(*parsed, address) << text;
        ASSERT_EQ(readByLibrary(text), address) << text;
        char buffer[INET6_ADDRSTRLEN];
        inet_ntop(AF_INET6, address.bytes().data(), buffer, sizeof buffer);
        // The library also prints the deprecated IPv4-compatible addresses with dots, and only it
        // does.
        if (std::string_view(buffer).find('.') == std::string_view::npos ||
            text.find('.') != std::string::npos) {
            ASSERT_EQ(text, buffer);
        }
    }
}

/// Random and slightly damaged texts: both readers take the same ones, and read the same address.
TEST(Ip6Addr, TakesTheTextsThatTheLibraryTakes) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    int taken = 0;
    for (int round = 0; round < 100000; ++round) {
        std::string text = randomAddress(random).stringValue();
        for (U32 damages = random.below(4); damages > 0; --damages) {
            auto const at = random.below(static_cast<U32>(text.size()) + 1);
            std::string piece(random.below(2), random.of("::..01fF9g "));
            text.replace(at, random.below(3), piece);
        }
        auto const parsed = Ip6Addr::parse(text);
        auto const expected = readByLibrary(text);
        ASSERT_EQ(static_cast<bool>(parsed), expected.has_value()) << '"' << text << '"';
        if (parsed) {
            ASSERT_EQ(*parsed, *expected) << text;
            ++taken;
        }
    }
    EXPECT_GT(taken, 10000);
}

TEST(Ip6Addr, EveryBitCountsInEqualityAndHash) {
    Ip6Addr const zero;
    for (std::size_t bit = 0; bit < 128; ++bit) {
        Ip6Addr::Bytes bytes{};
        bytes[bit / 8] = static_cast<U8>(1u << bit % 8);
        Ip6Addr const other(bytes);
        EXPECT_NE(other, zero);
        EXPECT_NE(other.hash(), zero.hash());
        EXPECT_EQ(other.hash(), Ip6Addr(bytes).hash());
    }
}

} // namespace
