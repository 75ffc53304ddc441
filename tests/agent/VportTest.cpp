#include "language/Vport.h"

#include "language/Parse.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace VpAgent {
namespace {

using namespace VornicCentral;

Vport parsed(std::string_view line) {
    Words words;
    words.read(line);
    return Vport::parse(words.all()[0], words.all()[1]);
}

/// The part of the line that the refusal marks, and the words behind "expected".
std::tuple<std::string, std::string> refusalOf(std::string_view line) {
    try {
        parsed(line);
    } catch (Refusal const& refusal) {
        std::string const message = refusal.what();
        Place const place = refusal.place().value_or(Place{});
        return {std::string(line.substr(place.at, place.length)),
                message.substr(message.find("expected ") + 9)};
    }
    return {"not refused", ""};
}

using Marked = std::tuple<std::string, std::string>;

/// One kind's key by its text, as the vport holds it.
template <class Kind> std::string keyOf(Vport const& vport) {
    std::string text = "another kind";
    vport.visit([&](auto kind, auto const& key) {
        if (std::is_same_v<decltype(kind), Kind>) {
            text = key.stringValue();
        }
    });
    return text;
}

TEST(Vport, HasAFormForEachKind) {
    EXPECT_EQ(keyOf<RemoteVport>(parsed("remote 10.0.0.2@17")), "10.0.0.2@17");
    EXPECT_EQ(keyOf<RemoteVport>(parsed("remote 2001:DB8:0:0::2@17")), "2001:db8::2@17");
    EXPECT_EQ(keyOf<RemoteVport>(parsed("remote 10.0.0.2@17/1/2")), "10.0.0.2@17/1/2");
    EXPECT_EQ(keyOf<MlagRemoteVport>(parsed("mlag 10.0.0.2@4294967295")), "10.0.0.2@4294967295");
    EXPECT_EQ(keyOf<EdgeVport>(parsed("edge Ethernet1/1:100")), "Ethernet1/1:100");
    EXPECT_EQ(keyOf<EdgeVport>(parsed("edge \"a:b c:1\"")), "a:b c:1");
    EXPECT_EQ(keyOf<VlanVport>(parsed("vlan 4094")), "4094");
    EXPECT_EQ(keyOf<EFilterDisableVport>(parsed("efilter Ethernet7")), "Ethernet7");
}

TEST(Vport, IsPrintedAsACommandHasIt) {
    EXPECT_EQ(parsed("mlag 10.0.0.2@17").text(), "mlag 10.0.0.2@17");
    EXPECT_EQ(parsed("vlan 7").text(), "vlan 7");
}

TEST(Vport, TakesVlansFrom1To4094) {
    EXPECT_EQ(keyOf<VlanVport>(parsed("vlan 1")), "1");
    Marked const range{"", "a VLAN from 1 to 4094"};
    EXPECT_EQ(refusalOf("vlan 0"), (Marked{"0", std::get<1>(range)}));
    EXPECT_EQ(refusalOf("vlan 4095"), (Marked{"4095", std::get<1>(range)}));
    EXPECT_EQ(refusalOf("vlan 65535"), (Marked{"65535", std::get<1>(range)}));
    EXPECT_EQ(refusalOf("edge Et1:0"), (Marked{"0", std::get<1>(range)}));
    EXPECT_EQ(refusalOf("edge a:b:4095"), (Marked{"4095", std::get<1>(range)}));
}

TEST(Vport, SaysTheRangeOfCommandsForEveryBadVlan) {
    for (char const* const line :
         {"vlan 70000", "vlan 65536", "vlan 01", "vlan -1", "vlan x", "vlan 1x", "vlan \"\"",
          "edge E:x", "edge a:b", "edge Et1:70000", "edge Et1:", "edge a:b:01"}) {
        EXPECT_EQ(std::get<1>(refusalOf(line)), "a VLAN from 1 to 4094") << line;
    }
    EXPECT_EQ(refusalOf("edge a:b"), (Marked{"b", "a VLAN from 1 to 4094"}));
    EXPECT_EQ(refusalOf("edge Et1"), (Marked{"Et1", "':' and a VLAN"}));
    EXPECT_EQ(std::get<1>(refusalOf("edge :x")), "an interface name");
    EXPECT_EQ(std::get<1>(refusalOf("remote 10.0.0.2@x")), "a number from 0 to 4294967295");
}

TEST(Vport, RefusesWhatIsNoKey) {
    for (char const* const line : {"vlan 65536",
                                   "vlan +1",
                                   "vlan -1",
                                   "vlan 1x",
                                   "vlan 01",
                                   "vlan \"\"",
                                   "vlan \" 1\"",
                                   "vlan 1.0",
                                   "edge Ethernet1",
                                   "edge :1",
                                   "edge Et1:",
                                   "edge Et1:x",
                                   "efilter \"\"",
                                   "remote 10.0.0.2",
                                   "remote @17",
                                   "remote 10.0.0.2@",
                                   "remote 10.0.0.256@1",
                                   "remote 10.0.0.02@1",
                                   "remote 10.0.0@1",
                                   "remote 10.0.0.2@4294967296",
                                   "remote 10.0.0.2@-1",
                                   "remote 10.0.0.2@1/1",
                                   "remote 10.0.0.2@1/0/256",
                                   "remote ::1::@1",
                                   "remote 2001:db8::g@1",
                                   "remote 2001:db8::2%eth0@1",
                                   "mlag 1@1"}) {
        EXPECT_NE(std::get<0>(refusalOf(line)), "not refused") << line;
    }
}

TEST(Vport, MarksThePartOfAKeyThatIsWrong) {
    EXPECT_EQ(std::get<0>(refusalOf("remote 10.0.0.2@17x")), "x");
    EXPECT_EQ(std::get<0>(refusalOf("edge \"Et\\\"1:5000\"")), "5000\"");
}

TEST(Vport, RefusesAnUnknownKind) {
    EXPECT_EQ(refusalOf("Vlan 1"), (Marked{"Vlan", "remote, mlag, edge, vlan or efilter"}));
}

TEST(Index, IsANumberFrom0To65535) {
    Words words;
    words.read("0 65535 65536 -1 +1 1x 007 18446744073709551616");
    EXPECT_EQ(parseIndex(words.all()[0]), 0);
    EXPECT_EQ(parseIndex(words.all()[1]), 65535);
    for (Word const& word : words.all().subspan(2)) {
        EXPECT_THROW(parseIndex(word), Refusal) << word.text;
    }
}

TEST(ClientName, Has1To255BytesWithoutControlCharacters) {
    EXPECT_FALSE(nameFault("a"));
    EXPECT_FALSE(nameFault(std::string(255, 'a')));
    EXPECT_FALSE(nameFault("two words \"and\" quotes"));
    EXPECT_TRUE(nameFault(""));
    EXPECT_TRUE(nameFault(std::string(256, 'a')));
    EXPECT_TRUE(nameFault("a\nb"));
    EXPECT_TRUE(nameFault("a\xC2\x85"));
    EXPECT_TRUE(nameFault("a\xFF"));
}

} // namespace
} // namespace VpAgent
