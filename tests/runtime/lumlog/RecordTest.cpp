#include "lumlog/Record.h"

#include "RingFixture.h"
#include "netzo/IntfId.h"
#include "netzo/IpGenAddr.h"
#include "pelo/String.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <limits>
#include <ostream>
#include <string>
#include <string_view>
#include <tuple>

namespace {

/// A key that goes into a record as its parts.
struct PortVlan {
    Netzo::IntfId port;
    U16 vlan;
};

/// A value of a value: traits within traits.
struct Request {
    PortVlan key;
    Netzo::IpGenAddr vtep;
    bool mlag;
};

/// A value that can only be printed.
struct Printable {
    int value;
};

std::ostream& operator<<(std::ostream& out, Printable const& printable) {
    return out << "printable " << printable.value;
}

} // namespace

template <> struct Lumlog::ArgTraits<PortVlan> {
    static auto pieces(PortVlan const& key) {
        return Lumlog::pieces(key.port, Qor::Words(","), key.vlan);
    }
};

template <> struct Lumlog::ArgTraits<Request> {
    static auto pieces(Request const& request) {
        return Lumlog::pieces(request.key, Qor::Words(" at "), request.vtep,
                              std::string(request.mlag ? " mlag" : ""));
    }
};

namespace Lumlog {
namespace {

using Texts = std::vector<std::string>;

class Record : public RingTest {
protected:
    /// The text of one record of these pieces.
    template <class... Pieces> std::string textOf(Pieces&&... pieces) {
        static constinit MsgDescriptor site("unit", 1, 0);
        record(ring_, site, pieces...);
        return texts().back();
    }
};

TEST_F(Record, NumbersAreDecimal) {
    EXPECT_EQ(textOf(U8{0}, " ", std::numeric_limits<U8>::max()), "0 255");
    EXPECT_EQ(textOf(U16{0}, " ", std::numeric_limits<U16>::max()), "0 65535");
    EXPECT_EQ(textOf(U32{0}, " ", std::numeric_limits<U32>::max()), "0 4294967295");
    EXPECT_EQ(textOf(U64{0}, " ", std::numeric_limits<U64>::max()), "0 18446744073709551615");
    EXPECT_EQ(textOf(0, " ", -1, " ", std::numeric_limits<std::int64_t>::min()),
              "0 -1 -9223372036854775808");
}

TEST_F(Record, BooleansAreWords) { EXPECT_EQ(textOf(true, ",", false), "true,false"); }

TEST_F(Record, TextsOfEveryKindAndLengthAreCopied) {
    for (std::size_t length = 0; length <= 40; ++length) {
        std::string const text =
            std::string("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ", length);
        EXPECT_EQ(textOf("<", std::string_view(text), ">"), "<" + text + ">");
        EXPECT_EQ(textOf("<", text, ">"), "<" + text + ">");
        EXPECT_EQ(textOf("<", Pelo::String(text), ">"), "<" + text + ">");
    }
    EXPECT_EQ(textOf('x'), "x");
    EXPECT_EQ(textOf(std::string_view("\0\n\xff", 3)), std::string("\0\n\xff", 3));
}

TEST_F(Record, TextMayChangeAfterwards) {
    std::string text = "before";
    write(text);
    text = "after!";
    EXPECT_EQ(texts(), Texts{"name before number 0"});
}

TEST_F(Record, AddressesHaveTheirPrintedForm) {
    for (char const* const text :
         {"0.0.0.0", "255.1.20.3", "::", "2001:db8::1", "::ffff:10.0.0.1", "fe80::1:0:0:1"}) {
        EXPECT_EQ(textOf(*Netzo::IpGenAddr::parse(text)), text);
    }
}

TEST_F(Record, InterfacesAreTheirNames) {
    EXPECT_EQ(textOf(Netzo::IntfId("Ethernet3/1")), "Ethernet3/1");
    EXPECT_EQ(textOf(Netzo::IntfId()), "");
}

TEST_F(Record, ValuesAreTakenApartByTheirTraits) {
    PortVlan const key{Netzo::IntfId("Ethernet1"), 100};
    EXPECT_EQ(textOf(" pvKey: ", key), " pvKey: Ethernet1,100");
    Request const request{key, *Netzo::IpGenAddr::parse("10.0.0.1"), true};
    EXPECT_EQ(textOf(request), "Ethernet1,100 at 10.0.0.1 mlag");
    EXPECT_EQ(textOf(Request{{Netzo::IntfId("Vlan7"), 7}, *Netzo::IpGenAddr::parse("::1"), false}),
              "Vlan7,7 at ::1");
}

TEST_F(Record, OtherValuesAreStoredInTheirPrintedForm) {
    EXPECT_EQ(textOf("is ", Printable{5}, "!"), "is printable 5!");
    EXPECT_EQ(textOf(2.5), "2.5");
}

TEST_F(Record, WithoutPiecesIsEmpty) { EXPECT_EQ(textOf(), ""); }

TEST_F(Record, LiteralPiecesAreNotCopied) {
    static constinit MsgDescriptor site("unit", 1, 0);
    for (int round = 0; round < 100; ++round) {
        record(ring_, site,
               "a literal of more than a hundred bytes, of which each of the one hundred records, "
               "that "
               "would need two and a half times the ring if they were copied, keeps none");
    }
    EXPECT_EQ(texts().size(), 100u);
}

TEST_F(Record, BearsUnitLineLevelNumberAndSequence) {
    static constinit MsgDescriptor first("/src/unit", 123, 7);
    static constinit MsgDescriptor second("other", 9, 1);
    record(ring_, first, "one");
    record(ring_, second, "two");
    record(ring_, first, "one");
    std::vector<DecodedRecord> records = Reader(ring_.bytes()).rest();
    ASSERT_EQ(records.size(), 3u);
    for (DecodedRecord& decoded : records) {
        decoded.time = 0;
    }
    EXPECT_EQ(records,
              (std::vector<DecodedRecord>{{0, 0, 7, "/src/unit", 123, first.msgId(), "one"},
                                          {1, 0, 1, "other", 9, second.msgId(), "two"},
                                          {2, 0, 7, "/src/unit", 123, first.msgId(), "one"}}));
    EXPECT_NE(first.msgId(), second.msgId());
    EXPECT_EQ(ring_.recordCount(), 3u);
}

TEST_F(Record, IsCutWhenItIsTooLarge) {
    std::string const large(2000, 'x');
    std::size_t const room = ring_.maxPayload() - 2 * sizeof(U16) - sizeof(U32);
    EXPECT_EQ(textOf(large, " ", 7u, " ", "", std::string_view("last")),
              large.substr(0, room) + " 7 ");
    EXPECT_EQ(textOf(std::string_view("first"), " ", 8u, " ", large),
              "first 8 " + large.substr(0, room - 5));
    std::string const justFits(room, 'y');
    EXPECT_EQ(textOf(justFits, " ", 7u, " ", "", std::string_view()), justFits + " 7 ");
}

TEST_F(Record, WordsThatChangeAtOneCallSiteGetAMessageEach) {
    static constinit MsgDescriptor site("unit", 77, 5);
    auto const say = [&](Qor::Words which) { record(ring_, site, "the ", which, " of ", 1u); };
    for (int round = 0; round < 2; ++round) {
        say("first");
        say("second");
        say("third");
    }
    std::vector<DecodedRecord> const records = Reader(ring_.bytes()).rest();
    ASSERT_EQ(records.size(), 6u);
    EXPECT_EQ(texts(), (Texts{"the first of 1", "the second of 1", "the third of 1",
                              "the first of 1", "the second of 1", "the third of 1"}));
    for (std::size_t at = 0; at < 3; ++at) {
        EXPECT_EQ(records[at].msgId, records[at + 3].msgId);
        EXPECT_EQ(records[at].line, 77u);
        EXPECT_EQ(records[at].level, 5u);
    }
    EXPECT_NE(records[0].msgId, records[1].msgId);
    EXPECT_NE(records[1].msgId, records[2].msgId);
}

TEST_F(Record, EqualWordsAtAnotherAddressAreTheSameMessage) {
    static constexpr char one[] = "words";
    static constexpr char two[] = "words";
    static constinit MsgDescriptor site("unit", 78, 5);
    record(ring_, site, Qor::Words(one));
    record(ring_, site, Qor::Words(two));
    std::vector<DecodedRecord> const records = Reader(ring_.bytes()).rest();
    ASSERT_EQ(records.size(), 2u);
    EXPECT_EQ(records[0].msgId, records[1].msgId);
}

template <class T>
concept CanRecord = requires(RingBuffer& ring, MsgDescriptor& site, T piece) {
    record(ring, site, static_cast<T>(piece));
};

TEST(Piece, IsNoPlainPointerAndNoBuffer) {
    EXPECT_TRUE(CanRecord<char const(&)[4]>);
    EXPECT_TRUE(CanRecord<std::string_view>);
    EXPECT_TRUE(CanRecord<Qor::Words const&>);
    EXPECT_TRUE(CanRecord<Pelo::String const&>);
    EXPECT_FALSE(CanRecord<char const*>);
    EXPECT_FALSE(CanRecord<char const* const&>);
    EXPECT_FALSE(CanRecord<char*&>);
    EXPECT_FALSE(CanRecord<char(&)[128]>);
    EXPECT_FALSE(CanRecord<void const*>);
}

} // namespace
} // namespace Lumlog
