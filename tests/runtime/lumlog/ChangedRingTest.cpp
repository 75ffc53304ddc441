// How the reader finds its way in a ring that was damaged, or changed by somebody who means harm.

#include "RingFixture.h"
#include "lumlog/RingFormat.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Lumlog {
namespace {

using namespace RingFormat;
using Texts = std::vector<std::string>;

/// A copy of a ring of ten records, with the place of each.
class ChangedRing : public RingTest {
protected:
    ChangedRing() {
        for (U32 number = 0; number < 10; ++number) {
            write(std::string(number, 'n'), number);
        }
        original_ = Reader(ring_.bytes()).rest();
        dump_.emplace(ring_.bytes());
        header_ = taken<RingHeader>(0);
        for (std::size_t at = header_.recordOffset; places_.size() < original_.size();) {
            places_.push_back(at);
            at += taken<RecordHeader>(at).units * unit;
        }
    }

    std::span<std::byte> bytes() { return dump_->bytes(); }
    template <class T> T taken(std::size_t at) {
        T value;
        std::memcpy(&value, bytes().data() + at, sizeof value);
        return value;
    }
    template <class T> void put(std::size_t at, T const& value) {
        std::memcpy(bytes().data() + at, &value, sizeof value);
    }
    void headIs(U64 head) {
        header_.head = header_.reserved = head;
        put(0, header_);
    }
    std::vector<DecodedRecord> without(std::size_t at) const {
        std::vector<DecodedRecord> records = original_;
        records.erase(records.begin() + static_cast<std::ptrdiff_t>(at));
        return records;
    }

    std::vector<DecodedRecord> original_;
    std::optional<Dump> dump_;
    RingHeader header_;
    std::vector<std::size_t> places_;
};

TEST_F(ChangedRing, RecordsBehindTheHeadShowThatItIsDamaged) {
    for (std::size_t at = 1; at + 1 < places_.size(); ++at) { // the last one may be under way
        headIs(places_[at] - header_.recordOffset);
        EXPECT_EQ(Reader(bytes()).rest(), original_) << at;
    }
}

TEST_F(ChangedRing, OfTwoRoundsWithAsManyRecordsTheLaterOneIsTold) {
    std::size_t const half = original_.size() / 2;
    for (std::size_t at = half; at < original_.size(); ++at) {
        auto record = taken<RecordHeader>(places_[at]);
        record.position =
            ((record.position ^ header_.cookie) + 8 * header_.recordSize) ^ header_.cookie;
        put(places_[at], record);
    }
    headIs(~U64{0});
    EXPECT_EQ(Reader(bytes()).rest(),
              (std::vector<DecodedRecord>(original_.begin() + static_cast<std::ptrdiff_t>(half),
                                          original_.end())));
}

TEST_F(ChangedRing, NumbersOfRecordsGoOnBeyond32Bits) {
    constexpr U64 before = U64{7} << 32;
    header_.sequence += before;
    put(0, header_);
    for (DecodedRecord& record : original_) {
        record.sequence += before;
    }
    EXPECT_EQ(Reader(bytes()).rest(), original_);
}

TEST_F(ChangedRing, RecordOfAnyOtherSizeThanItsMessageHasIsLeftOut) {
    for (std::size_t at = 0; at < original_.size(); ++at) {
        auto const record = taken<RecordHeader>(places_[at]);
        for (int more : {-1, 1, 2}) {
            auto changed = record;
            changed.units = static_cast<U16>(record.units + more);
            put(places_[at], changed);
            Reader reader(bytes());
            EXPECT_EQ(reader.rest(), without(at)) << more;
            EXPECT_EQ(reader.damaged(), 1u);
        }
        put(places_[at], record);
    }
}

/// Eight bytes that pass for a description of their own and the first bytes of the next one.
TEST_F(ChangedRing, DescriptionThatIsSmallerThanItsHeaderHidesNoOther) {
    auto const descriptions = bytes().subspan(header_.descriptorOffset, header_.descriptorSize);
    std::memmove(descriptions.data() + unit, descriptions.data(), header_.descriptorUsed);
    header_.descriptorUsed += unit;
    put(0, header_);
    U32 const size = 2 * unit;
    put(header_.descriptorOffset, size);
    put(header_.descriptorOffset + sizeof size, descriptorCheck(descriptions.first(size)));
    EXPECT_EQ(Reader(bytes()).rest(), original_);
}

} // namespace
} // namespace Lumlog
