#include "lumlog/DecodedMessage.h"

#include "RingFixture.h"
#include "netzo/IpGenAddr.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdint>

namespace Lumlog {
namespace {

using std::string_view_literals::operator""sv;

class DecodedMessageTest : public RingTest {};

TEST_F(DecodedMessageTest, IsWhatTheRingDescribes) {
    static constinit MsgDescriptor site("other", 99, 7);
    EXPECT_EQ(Reader(ring_.bytes()).messages(), std::vector<DecodedMessage>{});
    EXPECT_FALSE(Reader(ring_.bytes()).hasRecords());
    write("n", 1);
    record(ring_, site, "flag: ", true, " of ", U64{4});
    record(ring_, site, "flag: ", false, " of ", U64{5});
    record(ring_, site, "FLAG: ", false, " OF ", U64{5});
    Reader reader(ring_.bytes());
    EXPECT_TRUE(reader.hasRecords());
    std::vector<DecodedRecord> const records = reader.rest();
    DecodedMessage const first{records[0].msgId, 3, "unit", 12, "wsw4", {"name ", " number "}};
    DecodedMessage const second{records[1].msgId, 7, "other", 99, "wbw8", {"flag: ", " of "}};
    DecodedMessage const third{records[3].msgId, 7, "other", 99, "wbw8", {"FLAG: ", " OF "}};
    std::vector<DecodedMessage> expected{first, second, third};
    std::ranges::sort(expected, {}, &DecodedMessage::msgId);
    EXPECT_EQ(reader.messages(), expected);
    EXPECT_EQ(records[2].msgId, records[1].msgId);
}

TEST(DecodedMessage, WordingHasThePlacesOfTheArguments) {
    DecodedMessage message;
    EXPECT_EQ(message.wording(), "");
    message.format = "wb1248isaw";
    message.words = {"first ", " last"};
    EXPECT_EQ(message.wording(), "first {bool}{u8}{u16}{u32}{u64}{s64}{text}{address} last");
    message.format = "wwwx";
    EXPECT_EQ(message.wording(), "first  last{?}{?}");
}

TEST(DecodedMessage, DiffersFromOneWithAnyOtherPart) {
    DecodedMessage const message{1, 3, "unit", 12, "ws", {"name "}};
    std::vector<DecodedMessage> others(6, message);
    others[0].msgId = 2;
    others[1].level = 4;
    others[2].unit = "other";
    others[3].line = 13;
    others[4].format = "w";
    others[5].words = {"Name "};
    EXPECT_EQ(DecodedMessage(message), message);
    for (DecodedMessage const& other : others) {
        EXPECT_NE(other, message);
    }
}

TEST(DecodedRecord, DiffersFromOneWithAnyOtherPart) {
    DecodedRecord const record{1, 1000, 3, "unit", 12, 2, "name n", {std::string("n")}};
    std::vector<DecodedRecord> others(8, record);
    others[0].sequence = 2;
    others[1].time = 1001;
    others[2].level = 4;
    others[3].unit = "other";
    others[4].line = 13;
    others[5].msgId = 3;
    others[6].text = "name m";
    others[7].args = {U64{1}};
    EXPECT_EQ(DecodedRecord(record), record);
    for (DecodedRecord const& other : others) {
        EXPECT_NE(other, record);
    }
}

TEST_F(DecodedMessageTest, ArgumentsOfARecordKeepTheirTypes) {
    static constinit MsgDescriptor site("args", 1, 0);
    record(ring_, site, "a ", true, U8{1}, U16{2}, U32{3}, U64{4}, -5, " b ", "text"sv,
           Netzo::IpGenAddr(std::array<U8, 4>{10, 0, 0, 2}));
    auto const records = Reader(ring_.bytes()).rest();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].args,
              (std::vector<DecodedArg>{true, U64{1}, U64{2}, U64{3}, U64{4}, std::int64_t{-5},
                                       std::string("text"), std::string("10.0.0.2")}));
    EXPECT_EQ(records[0].text, "a true1234-5 b text10.0.0.2");
}

} // namespace
} // namespace Lumlog
