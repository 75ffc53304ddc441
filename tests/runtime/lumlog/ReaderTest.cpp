#include "lumlog/Reader.h"

#include "RingFixture.h"
#include "lumlog/RingFormat.h"
#include "support/FileBytes.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <fstream>
#include <map>

namespace Lumlog {
namespace {

using namespace RingFormat;
using Texts = std::vector<std::string>;

/// A ring that has gone round several times, with records of several messages.
class ReaderTest : public RingTest {
protected:
    ReaderTest() {
        static constinit MsgDescriptor site("other unit", 99, 1);
        for (U32 number = 0; number < 500; ++number) {
            write(std::string(number % 23, 'n'), number);
            record(ring_, site, "flag: ", number % 2 == 0, " of ", number);
        }
        original_ = Reader(ring_.bytes()).rest();
    }

    std::vector<DecodedRecord> original_;
};

template <class T> void put(std::span<std::byte> bytes, std::size_t offset, T value) {
    std::memcpy(bytes.data() + offset, &value, sizeof value);
}

TEST_F(ReaderTest, ReadsOldestFirstWithoutGaps) {
    ASSERT_GT(original_.size(), 50u);
    EXPECT_EQ(original_.back().sequence, 999u);
    EXPECT_EQ(original_.back().text, "flag: false of 499");
    EXPECT_EQ(original_.back().unit, "other unit");
    for (std::size_t at = 1; at < original_.size(); ++at) {
        EXPECT_EQ(original_[at].sequence, original_[at - 1].sequence + 1);
        EXPECT_GE(original_[at].time, original_[at - 1].time);
    }
    Reader reader(ring_.bytes());
    EXPECT_EQ(reader.next(), original_.front());
    EXPECT_EQ(reader.rest().size(), original_.size() - 1);
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.damaged(), 0u);
}

TEST_F(ReaderTest, ReadsAFileOfTheBytes) {
    std::string const path = testing::TempDir() + "lumlog-reader-test.ring";
    {
        auto const bytes = ring_.bytes();
        std::ofstream file(path, std::ios::binary);
        file.write(reinterpret_cast<char const*>(bytes.data()),
                   static_cast<std::streamsize>(bytes.size()));
    }
    std::string const loaded = Support::bytesOf(path);
    std::remove(path.c_str());
    EXPECT_EQ(Reader(std::as_bytes(std::span(loaded))).rest(), original_);
}

TEST_F(ReaderTest, FindsRingsWithinOtherBytes) {
    auto const bytes = ring_.bytes();
    for (std::size_t const before : {1u, 7u, 4096u, 10001u}) {
        std::vector<std::byte> core(before, std::byte{0x4C});
        auto const magicBytes = std::as_bytes(std::span(magic)); // alone it is no ring
        std::ranges::copy(magicBytes.first(std::min(before, magicBytes.size())), core.begin());
        core.insert(core.end(), bytes.begin(), bytes.end());
        core.insert(core.end(), bytes.begin(), bytes.end());
        Dump dump(core);
        Reader first(dump.bytes());
        EXPECT_TRUE(first.found());
        EXPECT_EQ(first.offset(), before);
        EXPECT_EQ(first.rest(), original_);
        Reader second(dump.bytes().subspan(before + 1));
        EXPECT_EQ(second.offset(), bytes.size() - 1);
        EXPECT_EQ(second.rest(), original_);
    }
}

TEST_F(ReaderTest, FindsARingCloseBehindTheBeginningOfNone) {
    auto const magicBytes = std::as_bytes(std::span(magic));
    std::vector<std::byte> core(magicBytes.begin(), magicBytes.end());
    core.insert(core.end(), ring_.bytes().begin(), ring_.bytes().end());
    Dump dump(core);
    EXPECT_EQ(Reader(dump.bytes()).offset(), magic.size());
    EXPECT_EQ(Reader(dump.bytes()).rest(), original_);
}

TEST(Reader, FindsNothingWhereThereIsNoRing) {
    for (std::size_t const size : {0u, 1u, 16u, 191u, 192u, 5000u}) {
        Dump dump(std::vector<std::byte>(size, std::byte{0}));
        std::ranges::copy(std::as_bytes(std::span(magic)).first(std::min(size, magic.size())),
                          dump.bytes().begin());
        Reader reader(dump.bytes());
        EXPECT_FALSE(reader.found()) << size;
        EXPECT_FALSE(reader.next()) << size;
    }
}

TEST_F(ReaderTest, ReadsWhatIsThereOfABlockThatIsCutOff) {
    std::map<U64, DecodedRecord> bySequence;
    for (DecodedRecord const& record : original_) {
        bySequence[record.sequence] = record;
    }
    auto const bytes = ring_.bytes();
    std::size_t readable = 0;
    for (std::size_t size = 0; size < bytes.size(); size += size < 400 ? 1 : 61) {
        Dump dump(bytes.first(size));
        std::vector<DecodedRecord> const records = Reader(dump.bytes()).rest();
        for (DecodedRecord const& record : records) {
            ASSERT_EQ(record, bySequence[record.sequence]) << size;
        }
        ASSERT_GE(records.size() + 1, readable);
        readable = records.size();
    }
    EXPECT_GT(readable, original_.size() / 2);
}

/// Where a block's parts are.
struct Layout {
    explicit Layout(std::span<std::byte const> bytes) {
        std::memcpy(&header, bytes.data(), sizeof header);
    }
    RingHeader header;
};

TEST_F(ReaderTest, DamagedByteInARecordSpoilsNoOtherRecord) {
    Layout const layout(ring_.bytes());
    Dump dump(ring_.bytes());
    auto const records = dump.bytes().subspan(layout.header.recordOffset);
    for (std::size_t at = 0; at < records.size(); ++at) {
        std::byte const before = records[at];
        records[at] ^= std::byte{0x55};
        std::vector<DecodedRecord> const read = Reader(dump.bytes()).rest();
        records[at] = before;
        std::size_t same = 0;
        for (DecodedRecord const& record : read) {
            same += static_cast<std::size_t>(std::ranges::count(original_, record));
        }
        ASSERT_GE(same + 1, original_.size()) << "byte " << at;
        ASSERT_LE(read.size(), original_.size()) << "byte " << at;
    }
}

TEST_F(ReaderTest, DamagedDescriptionSpoilsNoOtherMessage) {
    Layout const layout(ring_.bytes());
    Dump dump(ring_.bytes());
    auto const descriptors =
        dump.bytes().subspan(layout.header.descriptorOffset, layout.header.descriptorUsed);
    for (std::size_t at = 0; at < descriptors.size(); ++at) {
        std::byte const before = descriptors[at];
        descriptors[at] ^= std::byte{0x20};
        std::vector<DecodedRecord> const read = Reader(dump.bytes()).rest();
        descriptors[at] = before;
        ASSERT_EQ(read.size(), original_.size());
        std::size_t lost = 0;
        for (std::size_t record = 0; record < read.size(); ++record) {
            lost += std::size_t{read[record].text != original_[record].text};
        }
        EXPECT_EQ(lost, original_.size() / 2) << "byte " << at;
    }
}

TEST_F(ReaderTest, FindsTheRecordsWhenTheHeadIsDamaged) {
    for (U64 const head : {U64{0}, U64{8}, U64{1} << 40, ~U64{0}}) {
        Dump dump(ring_.bytes());
        put(dump.bytes(), offsetof(RingHeader, head), head);
        if (head != 0) {
            put(dump.bytes(), offsetof(RingHeader, reserved), head);
        }
        EXPECT_EQ(Reader(dump.bytes()).rest(), original_) << head;
    }
}

TEST_F(ReaderTest, DamagedFixedPartIsNoRing) {
    Dump dump(ring_.bytes());
    for (std::size_t at = 0; at < fixedPartSize + sizeof(U64); ++at) {
        dump.bytes()[at] ^= std::byte{1};
        EXPECT_FALSE(Reader(dump.bytes()).found()) << at;
        dump.bytes()[at] ^= std::byte{1};
    }
    EXPECT_TRUE(Reader(dump.bytes()).found());
}

/// Nothing is promised but that reading ends and stays within the bytes.
TEST_F(ReaderTest, SurvivesAnyDamage) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (int round = 0; round < 300; ++round) {
        Dump dump(ring_.bytes());
        auto const bytes = dump.bytes();
        for (U32 count = random.below(200); count > 0; --count) {
            std::size_t const at =
                random.below(static_cast<U32>(bytes.size() - sizeof(RingHeader)));
            bytes[sizeof(RingHeader) + at] = static_cast<std::byte>(random.byte());
        }
        for (std::size_t at = offsetof(RingHeader, descriptorUsed); at < sizeof(RingHeader); ++at) {
            if (random.oneIn(4)) {
                bytes[at] = static_cast<std::byte>(random.byte());
            }
        }
        EXPECT_LE(Reader(bytes).rest().size(), RingBuffer::minSize / sizeof(RecordHeader));
    }
}

TEST_F(RingTest, DescriptionForgedToHaveMoreLiteralsThanItHoldsIsLost) {
    write("n", 1);
    Dump dump(ring_.bytes());
    forgeDescription(dump.bytes(), [](DescriptorHeader& header, auto) { header.wordCount = 999; });
    EXPECT_EQ(textsIn(dump.bytes()), Texts{std::string(DecodedMessage::lost)});
    EXPECT_TRUE(Reader(dump.bytes()).messages().empty());
}

TEST_F(RingTest, RecordOfADescriptionForgedToHaveFewerLiteralsThanItUsesIsLeftOut) {
    write("n", 1);
    Dump dump(ring_.bytes());
    forgeDescription(dump.bytes(), [](DescriptorHeader& header, auto) { header.wordCount = 1; });
    Reader reader(dump.bytes());
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.damaged(), 1u);
}

/// Headers that pass their check, as only somebody who means harm would make them.
TEST_F(ReaderTest, ForgedSizesDoNotLeadOutsideTheBytes) {
    for (std::size_t const field :
         {offsetof(RingHeader, blockSize), offsetof(RingHeader, descriptorOffset),
          offsetof(RingHeader, descriptorSize), offsetof(RingHeader, recordOffset),
          offsetof(RingHeader, recordSize), offsetof(RingHeader, maxRecordSize)}) {
        for (U64 const value : {U64{0}, U64{1}, U64{8192}, U64{1} << 31, U64{1} << 63, ~U64{0}}) {
            Dump dump(ring_.bytes());
            put(dump.bytes(), field, value);
            put(dump.bytes(), offsetof(RingHeader, check),
                Pelo::hashBytes(dump.bytes().data(), fixedPartSize));
            EXPECT_FALSE(Reader(dump.bytes()).found()) << field << " is " << value;
        }
    }
}

/// Sizes and offsets that no ring has, in a header that agrees with itself and has the right check.
TEST_F(ReaderTest, ForgedSizesThatFitTogetherAreNoRing) {
    auto const found = [this](U64 RingHeader::*field, U64 value) {
        Dump dump(ring_.bytes());
        RingHeader header = Layout(dump.bytes()).header;
        header.*field = value;
        header.recordOffset = header.descriptorOffset + header.descriptorSize;
        header.blockSize = header.recordOffset + header.recordSize + header.maxRecordSize;
        header.check = Pelo::hashBytes(&header, fixedPartSize);
        put(dump.bytes(), 0, header);
        return Reader(dump.bytes()).found();
    };
    EXPECT_TRUE(found(&RingHeader::maxRecordSize, 512));
    EXPECT_FALSE(found(&RingHeader::maxRecordSize, RingBuffer::minSize + 8));
    EXPECT_FALSE(found(&RingHeader::recordSize, RingBuffer::minSize + 8));
    EXPECT_FALSE(found(&RingHeader::recordSize, RingBuffer::minSize / 2));
    EXPECT_FALSE(found(&RingHeader::recordSize, RingBuffer::maxSize * 2));
    EXPECT_FALSE(found(&RingHeader::descriptorOffset, sizeof(RingHeader) + 8));
    EXPECT_FALSE(found(&RingHeader::descriptorSize, RingBuffer::maxSize + 8));
}

TEST_F(ReaderTest, RingOfAnotherVersionIsNone) {
    for (std::size_t const field :
         {offsetof(RingHeader, version), offsetof(RingHeader, byteOrder)}) {
        Dump dump(ring_.bytes());
        put(dump.bytes(), field, U32{2});
        put(dump.bytes(), offsetof(RingHeader, check),
            Pelo::hashBytes(dump.bytes().data(), fixedPartSize));
        EXPECT_FALSE(Reader(dump.bytes()).found()) << field;
    }
}

TEST_F(ReaderTest, LeavesOutWhatIsOverwrittenWhileItReads) {
    Reader reader(ring_.bytes());
    EXPECT_EQ(reader.next(), original_[0]);
    for (U32 number = 0; number < 20; ++number) {
        write("new", number);
    }
    std::vector<DecodedRecord> const rest = reader.rest();
    EXPECT_LT(rest.size(), original_.size() - 1);
    EXPECT_EQ(rest, std::vector(original_.end() - static_cast<std::ptrdiff_t>(rest.size()),
                                original_.end()));
    EXPECT_EQ(reader.damaged() + rest.size() + 1, original_.size());
}

TEST_F(ReaderTest, LeavesOutRecordsWhoseBytesGoWhileItReads) {
    Layout const layout(ring_.bytes());
    Dump dump(ring_.bytes());
    Reader reader(dump.bytes());
    std::ranges::fill(dump.bytes().subspan(layout.header.recordOffset), std::byte{0});
    EXPECT_FALSE(reader.next());
    EXPECT_EQ(reader.damaged(), original_.size());
}

/// The bytes of a record may be whole still, or look so, when the writer has already begun to write
/// over it.
TEST_F(ReaderTest, LeavesOutWhatTheWriterHasReservedWhileItReads) {
    std::size_t const smallest = 32; // bytes of a record here
    std::size_t const largest = 56;
    Layout const layout(ring_.bytes());
    for (U64 const further : {U64{8}, U64{400}, U64{2048}, layout.header.recordSize}) {
        Dump dump(ring_.bytes());
        Reader reader(dump.bytes());
        put(dump.bytes(), offsetof(RingHeader, reserved), layout.header.reserved + further);
        std::vector<DecodedRecord> const rest = reader.rest();
        EXPECT_EQ(rest, std::vector(original_.end() - static_cast<std::ptrdiff_t>(rest.size()),
                                    original_.end()));
        EXPECT_EQ(reader.damaged() + rest.size(), original_.size());
        EXPECT_LE(reader.damaged(), further / smallest + 1) << further;
        EXPECT_GE(reader.damaged() + 1, further / largest) << further;
    }
}

} // namespace
} // namespace Lumlog
