#include "netzo/IpGenAddr.h"

#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Netzo::Ip6Addr;
using Netzo::IpGenAddr;

std::string genOutcome(std::string_view text) { return Support::parseOutcome<IpGenAddr>(text); }

TEST(IpGenAddr, DefaultIsTheIp4AddressOfZeros) {
    EXPECT_EQ(IpGenAddr().family(), IpGenAddr::Family::ip4);
    EXPECT_EQ(IpGenAddr().stringValue(), "0.0.0.0");
    EXPECT_EQ(IpGenAddr(), IpGenAddr({0, 0, 0, 0}));
}

TEST(IpGenAddr, TellsTheFamilyByTheText) {
    EXPECT_EQ(IpGenAddr::parse("10.0.0.2")->family(), IpGenAddr::Family::ip4);
    EXPECT_EQ(IpGenAddr::parse("2001:db8::2")->family(), IpGenAddr::Family::ip6);
    EXPECT_EQ(*IpGenAddr::parse("10.0.0.2"), IpGenAddr({10, 0, 0, 2}));
    EXPECT_EQ(*IpGenAddr::parse("::1"), IpGenAddr(*Ip6Addr::parse("::1")));
}

TEST(IpGenAddr, AddressesOfDifferentFamiliesDiffer) {
    IpGenAddr const ip4({0, 0, 0, 0});
    IpGenAddr const ip6{Ip6Addr()};
    EXPECT_EQ(ip4.bits(), ip6.bits());
    EXPECT_NE(ip4, ip6);
    EXPECT_NE(ip4.hash(), ip6.hash());
    EXPECT_NE(*IpGenAddr::parse("10.0.0.1"), *IpGenAddr::parse("::ffff:10.0.0.1"));
}

TEST(IpGenAddr, IsSmallAndLeavesUnusedBytesZero) {
    EXPECT_EQ(sizeof(IpGenAddr), 17u);
    EXPECT_EQ(IpGenAddr({1, 2, 3, 4}).bits(), Ip6Addr(Ip6Addr::Bytes{1, 2, 3, 4}));
}

TEST(IpGenAddr, RefusesWhatIsNoAddressAtTheByteThatDoesNotFit) {
    std::vector<std::pair<char const*, char const*>> const cases{
        {"", "at 0: expected an IPv4 or IPv6 address"},
        {"x", "at 0: expected an IPv4 or IPv6 address"},
        {" 10.0.0.2", "at 0: expected an IPv4 or IPv6 address"},
        {"-1.0.0.2", "at 0: expected an IPv4 or IPv6 address"},
        {"1", "at 1: expected an IPv4 or IPv6 address"},
        {"10", "at 2: expected an IPv4 or IPv6 address"},
        {"256.0.0.2", "at 3: expected ':'"}, // so far the beginning of 256::
        {"10.", "at 3: expected a number from 0 to 255"},
        {"10..0.2", "at 3: expected a number from 0 to 255"},
        {"10.0.0", "at 6: expected '.'"},
        {"10.0.0.", "at 7: expected a number from 0 to 255"},
        {"10.0.0.256", "at 9: expected a number from 0 to 255"},
        {"10.0.0.1000", "at 10: expected a number from 0 to 255"},
        {"10.0.0.02", "at 8: expected a number from 0 to 255"},
        {"10.0.0.00", "at 8: expected a number from 0 to 255"},
        {"10.0.0.0x1", "at 8: expected the end of the address"},
        {"10.0.0.2.3", "at 8: expected the end of the address"},
        {"10.0.0.2 ", "at 8: expected the end of the address"},
        {"10.0.0.2\n", "at 8: expected the end of the address"},
        {"10.0.0.2:80", "at 8: expected the end of the address"},
        {"10.0.0.2/24", "at 8: expected the end of the address"},
        {"10.a.0.2", "at 3: expected a number from 0 to 255"},
        {"2001:db8::g", "at 10: expected a group of 1 to 4 hexadecimal digits"},
        {"fe80::1%eth0", "at 7: expected ':'"},
    };
    for (auto const& [text, expected] : cases) {
        EXPECT_EQ(genOutcome(text), expected) << text;
    }
    EXPECT_EQ(genOutcome(std::string_view("10.0.0.2\0", 9)),
              "at 8: expected the end of the address");
}

bool takenByLibrary(std::string const& text) {
    Ip6Addr::Bytes bytes{};
    return inet_pton(AF_INET, text.c_str(), bytes.data()) == 1 ||
           inet_pton(AF_INET6, text.c_str(), bytes.data()) == 1;
}

/// Whether the library takes any text that begins so, found by trying the plausible ways to go on.
bool canGoOn(std::string const& beginning) {
    for (char const* const first : {"", "0", ":", ":0", ":f"}) {
        for (std::string const next : {":0", ".0"}) {
            std::string text = beginning + first;
            for (int groups = 0; groups <= 8; ++groups, text += next) {
                if (takenByLibrary(text)) {
                    return true;
                }
            }
        }
    }
    return false;
}

TEST(IpGenAddr, ErrorIsAtTheFirstByteWithWhichNoAddressGoesOn) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 50000; ++round) {
        std::string text;
        for (U32 length = random.below(24); length > 0; --length) {
            text += random.of("::::....01259af");
        }
        auto const parsed = IpGenAddr::parse(text);
        ASSERT_EQ(static_cast<bool>(parsed), takenByLibrary(text)) << text;
        if (!parsed) {
            std::size_t const at = parsed.error().at;
            ASSERT_TRUE(canGoOn(text.substr(0, at))) << text << " at " << at;
            ASSERT_TRUE(at == text.size() || !canGoOn(text.substr(0, at + 1)))
                << text << " at " << at;
        }
    }
}

TEST(IpGenAddr, ReadsWhatItPrints) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 10000; ++round) {
        IpGenAddr const address({random.byte(), random.byte(), random.byte(), random.byte()});
        char buffer[INET_ADDRSTRLEN];
        inet_ntop(AF_INET, address.bits().bytes().data(), buffer, sizeof buffer);
        ASSERT_EQ(address.stringValue(), buffer);
        ASSERT_EQ(genOutcome(buffer), buffer);
        ASSERT_EQ(*IpGenAddr::parse(buffer), address);
    }
}

} // namespace
