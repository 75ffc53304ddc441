#include "lumlog/CtfWriter.h"

#include "RingFixture.h"
#include "lumlog/ByteCursor.h"
#include "lumlog/RingFormat.h"
#include "netzo/IpGenAddr.h"

#include <gtest/gtest.h>

#include <bit>
#include <cstring>
#include <limits>
#include <span>

namespace Lumlog {
namespace {

using namespace RingFormat;
using std::string_view_literals::operator""sv;

constexpr std::size_t packetHeaderSize = 52;
constexpr std::size_t uuidAt = 4;

template <class T> void append(std::string& bytes, T const& value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

/// The identifier in a stream, as the metadata has it.
std::string uuidIn(std::string_view stream) {
    std::string text;
    for (std::size_t at = 0; at < 16; ++at) {
        auto const byte = static_cast<unsigned char>(stream[uuidAt + at]);
        text += at == 4 || at == 6 || at == 8 || at == 10 ? "-" : "";
        text += {"0123456789abcdef"[byte / 16], "0123456789abcdef"[byte % 16]};
    }
    return text;
}

/// What is the same in the metadata of all traces but for the identifier.
std::string commonMetadata(std::string const& uuid) {
    std::string const order = std::endian::native == std::endian::little ? "le" : "be";
    return R"TSDL(/* CTF 1.8 */

typealias integer { size = 8; align = 8; signed = false; } := uint8_t;
typealias integer { size = 16; align = 8; signed = false; } := uint16_t;
typealias integer { size = 32; align = 8; signed = false; } := uint32_t;
typealias integer { size = 64; align = 8; signed = false; } := uint64_t;
typealias integer { size = 64; align = 8; signed = true; } := int64_t;

trace {
    major = 1;
    minor = 8;
    uuid = ")TSDL" +
           uuid + R"TSDL(";
    byte_order = )TSDL" +
           order + R"TSDL(;
    packet.header := struct {
        uint32_t magic;
        uint8_t uuid[16];
    };
};

env {
    tracer_name = "lumlog";
};

clock {
    name = "utc";
    description = "nanoseconds since 1970 (UTC)";
    freq = 1000000000;
    offset = 0;
    absolute = true;
};

typealias integer {
    size = 64; align = 8; signed = false; map = clock.utc.value;
} := utc_time_t;

stream {
    packet.context := struct {
        utc_time_t timestamp_begin;
        utc_time_t timestamp_end;
        uint64_t content_size;
        uint64_t packet_size;
    };
    event.header := struct {
        uint16_t id;
        utc_time_t timestamp;
    };
    event.context := struct {
        uint64_t sequence;
        uint64_t time;
        uint32_t msgId;
        uint32_t level;
        string unit;
        uint32_t line;
    };
};
)TSDL";
}

/// What of the metadata is about single messages.
std::string eventsIn(CtfWriter const& trace) {
    std::string const common = commonMetadata(uuidIn(trace.stream()));
    EXPECT_EQ(trace.metadata().substr(0, common.size()), common);
    return trace.metadata().substr(common.size());
}

/// One event, read from a stream by the rules that the metadata gives.
struct Event {
    U16 id = 0;
    U64 timestamp = 0;
    DecodedRecord record;
};

/// Reads a stream; `formats` are those of its messages, by number.
class StreamParser {
public:
    StreamParser(std::string_view stream, Reader const& reader)
        : stream_(stream), cursor_(std::as_bytes(std::span(stream))), messages_(reader.messages()) {
        EXPECT_EQ(cursor_.take<U32>(), 0xC1FC1FC1);
        cursor_.takeText(16);
        begin = cursor_.take<U64>();
        end = cursor_.take<U64>();
        EXPECT_EQ(cursor_.take<U64>(), stream.size() * 8);
        EXPECT_EQ(cursor_.take<U64>(), stream.size() * 8);
        while (cursor_.ok() && cursor_.remaining() != 0) {
            events.push_back(takeEvent());
        }
        EXPECT_TRUE(cursor_.ok());
    }

    U64 begin;
    U64 end;
    std::vector<Event> events;

    std::vector<DecodedRecord> records() const {
        std::vector<DecodedRecord> all;
        for (Event const& event : events) {
            EXPECT_EQ(event.id, event.record.msgId);
            all.push_back(event.record);
        }
        return all;
    }

private:
    Event takeEvent() {
        Event event;
        event.id = cursor_.take<U16>();
        event.timestamp = cursor_.take<U64>();
        DecodedRecord& record = event.record;
        record.sequence = cursor_.take<U64>();
        record.time = cursor_.take<U64>();
        record.msgId = cursor_.take<U32>();
        record.level = cursor_.take<U32>();
        record.unit = takeText();
        record.line = cursor_.take<U32>();
        record.text = takeText();
        auto const message = std::ranges::find(messages_, record.msgId, &DecodedMessage::msgId);
        for (char const code : message == messages_.end() ? "" : message->format) {
            if (code != 'w') {
                record.args.push_back(takeArg(code));
            }
        }
        return event;
    }

    std::string takeText() {
        std::size_t const at = stream_.size() - cursor_.remaining();
        std::size_t const zero = std::min(stream_.find('\0', at), stream_.size() - 1);
        std::string const text(cursor_.takeText(zero - at));
        cursor_.take<char>();
        return text;
    }

    DecodedArg takeArg(char code) {
        switch (code) {
        case 'b':
            return cursor_.take<U8>() == 1;
        case '1':
            return U64{cursor_.take<U8>()};
        case '2':
            return U64{cursor_.take<U16>()};
        case '4':
            return U64{cursor_.take<U32>()};
        case '8':
            return cursor_.take<U64>();
        case 'i':
            return cursor_.take<std::int64_t>();
        default:
            return takeText();
        }
    }

    std::string_view stream_;
    ByteCursor cursor_;
    std::vector<DecodedMessage> messages_;
};

class Ctf : public RingTest {
protected:
    CtfWriter traceOf(std::span<std::byte const> bytes) const {
        Reader reader(bytes);
        return CtfWriter(reader);
    }
    CtfWriter trace() const { return traceOf(ring_.bytes()); }

    std::string number(std::size_t record) const {
        return std::to_string(Reader(ring_.bytes()).rest()[record].msgId);
    }

    /// Where the header of the record is in a copy of the ring.
    static std::span<std::byte> recordAt(std::span<std::byte> bytes, std::size_t index) {
        RingHeader header;
        std::memcpy(&header, bytes.data(), sizeof header);
        std::size_t at = header.recordOffset;
        for (; index != 0; --index) {
            RecordHeader record;
            std::memcpy(&record, bytes.data() + at, sizeof record);
            at += record.units * unit;
        }
        return bytes.subspan(at);
    }

    static void setTime(std::span<std::byte> bytes, std::size_t index, U64 time) {
        std::memcpy(recordAt(bytes, index).data() + offsetof(RecordHeader, time), &time,
                    sizeof time);
    }
};

TEST_F(Ctf, DescribesEachMessageWithItsCallSiteLevelWordingAndArguments) {
    static constinit MsgDescriptor plain("folder/plain", 7, 1);
    static constinit MsgDescriptor all("all", 8, 63);
    record(ring_, plain, "nothing varies");
    record(ring_, all, "is ", true, U8{1}, " ", U16{2}, " ", U32{3}, " ", U64{4}, " ", -5, " ",
           "six"sv, " ", Netzo::IpGenAddr(std::array<U8, 4>{10, 0, 0, 2}));
    EXPECT_EQ(eventsIn(trace()), R"TSDL(
/* level 1 */
event {
    name = "folder/plain:7 nothing varies";
    id = )TSDL" + number(0) + R"TSDL(;
    fields := struct {
        string text;
    };
};

/* level 63 */
event {
    name = "all:8 is {bool}{u8} {u16} {u32} {u64} {s64} {text} {address}";
    id = )TSDL" + number(1) + R"TSDL(;
    fields := struct {
        string text;
        uint8_t arg0;
        uint8_t arg1;
        uint16_t arg2;
        uint32_t arg3;
        uint64_t arg4;
        int64_t arg5;
        string arg6;
        string arg7;
    };
};
)TSDL");
}

TEST_F(Ctf, StreamIsOnePacketOfOneEventForEachRecord) {
    write("n", 9);
    write("", 10);
    std::vector<DecodedRecord> const records = Reader(ring_.bytes()).rest();
    CtfWriter const written = trace();
    std::string expected;
    append(expected, U32{0xC1FC1FC1});
    expected += written.stream().substr(uuidAt, 16);
    append(expected, records[0].time);
    append(expected, records[1].time);
    append(expected, U64{written.stream().size() * 8});
    append(expected, U64{written.stream().size() * 8});
    for (DecodedRecord const& each : records) {
        append(expected, static_cast<U16>(each.msgId));
        append(expected, each.time);
        append(expected, each.sequence);
        append(expected, each.time);
        append(expected, each.msgId);
        append(expected, U32{3});
        expected += "unit\0"sv;
        append(expected, U32{12});
        expected += each.sequence == 0 ? "name n number 9\0n\0"sv : "name  number 10\0\0"sv;
        append(expected, U32{each.sequence == 0 ? 9u : 10u});
    }
    EXPECT_EQ(written.stream(), expected);
    EXPECT_EQ(written.recordCount(), 2u);
}

TEST_F(Ctf, GivesBackEveryRecordWithItsArguments) {
    static constinit MsgDescriptor site("all", 8, 5);
    constexpr auto most = std::numeric_limits<U64>::max();
    for (U32 count = 0; count < 40; ++count) {
        write(std::string(count, 'n'), count);
        record(ring_, site, count % 2 == 0, " ", U8{255}, " ", U16{65535}, " ", ~count, " ",
               most - count, " ", std::numeric_limits<std::int64_t>::min(), " ",
               Netzo::IpGenAddr(std::array<U8, 4>{10, 0, 0, 2}));
    }
    Reader const reader(ring_.bytes());
    CtfWriter const written = trace();
    EXPECT_EQ(StreamParser(written.stream(), reader).records(), Reader(reader).rest());
    EXPECT_EQ(written.recordCount(), Reader(reader).rest().size());
}

TEST_F(Ctf, TakesOnlyTheFurtherRecordsOfTheReader) {
    for (U32 count = 0; count < 5; ++count) {
        write("n", count);
    }
    Reader reader(ring_.bytes());
    reader.next();
    reader.next();
    CtfWriter const written(reader);
    std::vector<DecodedRecord> const records = Reader(ring_.bytes()).rest();
    EXPECT_EQ(StreamParser(written.stream(), reader).records(),
              std::vector(records.begin() + 2, records.end()));
    EXPECT_FALSE(reader.next());
}

TEST_F(Ctf, TimeOfEventsNeverGoesBackAndThatOfRecordsIsKept) {
    for (U32 count = 0; count < 5; ++count) {
        write("n", count);
    }
    Dump dump(ring_.bytes());
    constexpr U64 latest = std::numeric_limits<std::int64_t>::max() - 1;
    std::vector<U64> const times{1000, 999, 1001, ~U64{0}, 5};
    for (std::size_t at = 0; at < times.size(); ++at) {
        setTime(dump.bytes(), at, times[at]);
    }
    CtfWriter const written = traceOf(dump.bytes());
    StreamParser const parsed(written.stream(), Reader(dump.bytes()));
    std::vector<U64> stamps;
    std::vector<U64> kept;
    for (Event const& event : parsed.events) {
        stamps.push_back(event.timestamp);
        kept.push_back(event.record.time);
    }
    EXPECT_EQ(stamps, (std::vector<U64>{1000, 1000, 1001, latest, latest}));
    EXPECT_EQ(kept, times);
    EXPECT_EQ(parsed.begin, 1000u);
    EXPECT_EQ(parsed.end, latest);
}

TEST_F(Ctf, TextsHoldNoCharacterThatATerminalActsUpon) {
    static constinit MsgDescriptor site("unit\x1b", 8, 5);
    record(ring_, site, "a\x1b[2J\"\\ ", "b\0c\xff\xc2\x9b Z\xC3\xBCrich"sv);
    std::string const arg = "b\\x00c\\xFF\\xC2\\x9B Z\xC3\xBCrich";
    CtfWriter const written = trace();
    std::vector<DecodedRecord> const records =
        StreamParser(written.stream(), Reader(ring_.bytes())).records();
    ASSERT_EQ(records.size(), 1u);
    EXPECT_EQ(records[0].unit, "unit\\x1B");
    EXPECT_EQ(records[0].text, "a\\x1B[2J\"\\ " + arg);
    EXPECT_EQ(records[0].args, std::vector<DecodedArg>{arg});
    EXPECT_NE(written.metadata().find(R"(name = "unit\\x1B:8 a\\x1B[2J\"\\ {text}";)"),
              std::string::npos)
        << written.metadata();
}

TEST_F(Ctf, RecordsOfAMessageWithoutDescriptionHaveAnEventClassToo) {
    RingBuffer other(RingBuffer::minSize);
    static constinit MsgDescriptor first("unit", 1, 1);
    static constinit MsgDescriptor lost("unit", 2, 1);
    record(other, first, "so that the other one's number is not 0");
    record(ring_, lost, "number ", U32{7});
    Dump dump(ring_.bytes());
    RingHeader header;
    std::memcpy(&header, dump.bytes().data(), sizeof header);
    dump.bytes()[header.descriptorOffset + sizeof(DescriptorHeader)] ^= std::byte{1};
    CtfWriter const written = traceOf(dump.bytes());
    EXPECT_EQ(eventsIn(written), R"TSDL(
/* level 0 */
event {
    name = "(the description of this message is lost)";
    id = )TSDL" + number(0) + R"TSDL(;
    fields := struct {
        string text;
    };
};
)TSDL");
    Reader const reader(dump.bytes());
    EXPECT_EQ(StreamParser(written.stream(), reader).records(), Reader(reader).rest());
    EXPECT_EQ(written.recordCount(), 1u);
}

TEST_F(Ctf, PieceOfAnUnknownKindIsNoFieldOfItsMessage) {
    write("n", 1);
    Dump dump(ring_.bytes());
    forgeDescription(dump.bytes(), [](DescriptorHeader const& header, std::span<std::byte> texts) {
        texts[header.unitLength] = std::byte{'?'}; // the first letter of the format
    });
    EXPECT_EQ(eventsIn(traceOf(dump.bytes())), R"TSDL(
/* level 3 */
event {
    name = "unit:12 {?}{text}name {u32}";
    id = )TSDL" + number(0) + R"TSDL(;
    fields := struct {
        string text;
        string arg0;
        uint32_t arg1;
    };
};
)TSDL");
}

TEST_F(Ctf, TraceOfAnEmptyRingHasNoEvents) {
    CtfWriter const written = trace();
    EXPECT_EQ(eventsIn(written), "");
    EXPECT_EQ(written.stream().size(), packetHeaderSize);
    EXPECT_EQ(StreamParser(written.stream(), Reader(ring_.bytes())).end, 0u);
    EXPECT_EQ(written.recordCount(), 0u);
}

TEST_F(Ctf, IdentifierIsMadeOfTheRecords) {
    write("n", 1);
    CtfWriter const first = trace();
    CtfWriter const second = trace();
    EXPECT_EQ(first.metadata(), second.metadata());
    EXPECT_EQ(first.stream(), second.stream());
    write("n", 1);
    std::string const uuid = uuidIn(first.stream());
    EXPECT_NE(uuidIn(trace().stream()), uuid);
    EXPECT_EQ(uuid[14], '8') << "the version";
    EXPECT_NE(std::string_view("89ab").find(uuid[19]), std::string_view::npos) << "the variant";
}

} // namespace
} // namespace Lumlog
