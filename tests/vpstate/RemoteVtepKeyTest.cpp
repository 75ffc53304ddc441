#include "vpstate/RemoteVtepKey.h"

#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Netzo::Ip6Addr;
using Netzo::IpGenAddr;
using VornicCentral::RemoteVtepKey;
using Vxlan::SwTunnelGroupId;

std::string outcome(std::string_view text) { return Support::parseOutcome<RemoteVtepKey>(text); }

RemoteVtepKey key(U32 group, char const* address, U8 byte0 = 0, U8 byte1 = 0) {
    return {SwTunnelGroupId(group), *IpGenAddr::parse(address), byte0, byte1};
}

TEST(RemoteVtepKey, HoldsItsFields) {
    RemoteVtepKey const vtep = key(17, "10.0.0.2", 1, 2);
    EXPECT_EQ(vtep.tunnelGroup(), SwTunnelGroupId(17));
    EXPECT_EQ(vtep.address(), IpGenAddr({10, 0, 0, 2}));
    EXPECT_EQ(vtep.byte0(), 1);
    EXPECT_EQ(vtep.byte1(), 2);
    EXPECT_EQ(RemoteVtepKey(), key(0, "0.0.0.0"));
}

TEST(RemoteVtepKey, SameAddressInDifferentTunnelGroupsAreDifferentKeys) {
    EXPECT_NE(key(17, "10.0.0.2"), key(18, "10.0.0.2"));
    EXPECT_NE(key(17, "10.0.0.2").hash(), key(18, "10.0.0.2").hash());
}

TEST(RemoteVtepKey, EveryFieldCountsInEquality) {
    RemoteVtepKey const vtep = key(17, "10.0.0.2", 1, 2);
    EXPECT_EQ(vtep, key(17, "10.0.0.2", 1, 2));
    EXPECT_NE(vtep, key(17, "10.0.0.3", 1, 2));
    EXPECT_NE(vtep, key(17, "::ffff:10.0.0.2", 1, 2));
    EXPECT_NE(vtep, key(17, "10.0.0.2", 0, 2));
    EXPECT_NE(vtep, key(17, "10.0.0.2", 1, 0));
    EXPECT_NE(vtep, key(17, "10.0.0.2", 2, 1));
}

TEST(RemoteVtepKey, HashMixesFamilyAddressAndGroup) {
    RemoteVtepKey const vtep = key(17, "10.0.0.2", 1, 2);
    EXPECT_EQ(vtep.hash(), key(17, "10.0.0.2", 1, 2).hash());
    EXPECT_NE(vtep.hash(), key(17, "10.0.0.3").hash());
    EXPECT_NE(key(17, "0.0.0.0").hash(), key(17, "::").hash());
    EXPECT_EQ(vtep.hash(), key(17, "10.0.0.2").hash()); // the two bytes take no part
}

TEST(RemoteVtepKey, ACopyIsAUserOfTheGroup) {
    U32 const others = SwTunnelGroupId::refcountTable().count(17); // keys of other tests
    auto const users = [&] { return SwTunnelGroupId::refcountTable().count(17) - others; };
    {
        RemoteVtepKey vtep = key(17, "10.0.0.2");
        EXPECT_EQ(users(), 1u);
        RemoteVtepKey copy(vtep);
        EXPECT_EQ(users(), 2u);
        RemoteVtepKey const moved(std::move(copy));
        EXPECT_EQ(users(), 2u);
        EXPECT_EQ(moved, vtep);
        vtep = key(18, "10.0.0.2");
        EXPECT_EQ(users(), 1u);
    }
    EXPECT_EQ(users(), 0u);
    EXPECT_LE(sizeof(RemoteVtepKey), 32u);
}

TEST(RemoteVtepKey, PrintsTheTwoBytesOnlyWhenOneIsNotZero) {
    EXPECT_EQ(key(17, "10.0.0.2").stringValue(), "10.0.0.2@17");
    EXPECT_EQ(key(4294967295, "2001:db8::2").stringValue(), "2001:db8::2@4294967295");
    EXPECT_EQ(key(17, "10.0.0.2", 1, 2).stringValue(), "10.0.0.2@17/1/2");
    EXPECT_EQ(key(17, "10.0.0.2", 0, 255).stringValue(), "10.0.0.2@17/0/255");
    EXPECT_EQ(key(17, "10.0.0.2", 1, 0).stringValue(), "10.0.0.2@17/1/0");
    EXPECT_EQ(Support::printed(key(17, "10.0.0.2", 1, 2)), "10.0.0.2@17/1/2");
}

TEST(RemoteVtepKey, RefusesWhatIsNoKeyAtTheByteThatDoesNotFit) {
    std::string const group = "a number from 0 to 4294967295";
    std::string const byte = "a number from 0 to 255";
    std::vector<std::pair<std::string, std::string>> const cases{
        {"", "at 0: expected an IPv4 or IPv6 address"},
        {"10.0.0.2", "at 8: expected '@' and a tunnel group"},
        {"2001:db8::2", "at 11: expected '@' and a tunnel group"},
        {"10.0.0.256", "at 9: expected a number from 0 to 255"},
        {"@17", "at 0: expected an IPv4 or IPv6 address"},
        {"10.0.0@17", "at 6: expected '.'"},
        {"10.0.0.2 @17", "at 8: expected the end of the address"},
        {"10.0.0.2@", "at 9: expected " + group},
        {"10.0.0.2@ 17", "at 9: expected " + group},
        {"10.0.0.2@-1", "at 9: expected " + group},
        {"10.0.0.2@x", "at 9: expected " + group},
        {"10.0.0.2@17x", "at 11: expected " + group},
        {"10.0.0.2@017", "at 10: expected " + group},
        {"10.0.0.2@4294967296", "at 18: expected " + group},
        {"10.0.0.2@17@18", "at 11: expected " + group},
        {"10.0.0.2@17/", "at 12: expected " + byte},
        {"10.0.0.2@17//", "at 12: expected " + byte},
        {"10.0.0.2@17/1", "at 13: expected '/' and a number from 0 to 255"},
        {"10.0.0.2@17/1/", "at 14: expected " + byte},
        {"10.0.0.2@17/256/0", "at 14: expected " + byte},
        {"10.0.0.2@17/1/256", "at 16: expected " + byte},
        {"10.0.0.2@17/01/2", "at 13: expected " + byte},
        {"10.0.0.2@17/1/2/3", "at 15: expected the end of the key"},
        {"10.0.0.2@17/1/2 ", "at 15: expected " + byte},
        {"10.0.0.2@/1/2", "at 9: expected " + group},
    };
    for (auto const& [text, expected] : cases) {
        EXPECT_EQ(outcome(text), expected) << text;
    }
    EXPECT_EQ(outcome(std::string_view("10.0.0.2@17\0", 12)), "at 11: expected " + group);
}

TEST(RemoteVtepKey, RefusedTextLeavesNoUser) {
    std::size_t const before = SwTunnelGroupId::refcountTable().size();
    EXPECT_FALSE(RemoteVtepKey::parse("10.0.0.2@17/1"));
    EXPECT_EQ(SwTunnelGroupId::refcountTable().size(), before);
}

TEST(RemoteVtepKey, ReadsWhatItPrints) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 20000; ++round) {
        Ip6Addr::Bytes bytes{};
        for (U8& byte : bytes) {
            byte = random.oneIn(2) ? U8{0} : random.byte();
        }
        IpGenAddr const address = random.oneIn(2)
                                      ? IpGenAddr(Ip6Addr(bytes))
                                      : IpGenAddr({bytes[0], bytes[1], bytes[2], bytes[3]});
        U8 const byte0 = random.oneIn(2) ? U8{0} : random.byte();
        U8 const byte1 = random.oneIn(2) ? U8{0} : random.byte();
        RemoteVtepKey const vtep(SwTunnelGroupId(random.below(0xFFFFFFFF)), address, byte0, byte1);
        auto const parsed = RemoteVtepKey::parse(vtep.stringValue());
        ASSERT_TRUE(parsed) << vtep;
        ASSERT_EQ(*parsed, vtep);
    }
}

} // namespace
