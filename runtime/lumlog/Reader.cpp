#include "lumlog/Reader.h"

#include "lumlog/Args.h"
#include "lumlog/ByteCursor.h"
#include "lumlog/RingBuffer.h"
#include "pelo/Hash.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>

namespace Lumlog {
namespace {

using namespace RingFormat;
using Bytes = std::span<std::byte const>;

template <class T> T valueAt(Bytes bytes, std::size_t offset) {
    return ByteCursor(bytes.subspan(std::min(offset, bytes.size()))).take<T>();
}

/// Whether the fixed part is that of a ring that a `RingBuffer` has built. The check finds damage;
/// the other tests keep bytes that were made to look like a ring from leading the reader astray.
bool makesSense(RingHeader const& header) {
    return header.magic == magic && header.version == version &&
           header.byteOrder == byteOrderMark &&
           header.check == Pelo::hashBytes(&header, fixedPartSize) &&
           std::has_single_bit(header.recordSize) && header.recordSize >= RingBuffer::minSize &&
           header.recordSize <= RingBuffer::maxSize && header.maxRecordSize <= header.recordSize &&
           header.descriptorSize <= RingBuffer::maxSize &&
           header.descriptorOffset == sizeof header &&
           header.recordOffset == header.descriptorOffset + header.descriptorSize &&
           header.blockSize == header.recordOffset + header.recordSize + header.maxRecordSize;
}

/// The part of `bytes` from `from` on, at most `size` bytes of it, as far as it is there.
Bytes part(Bytes bytes, U64 from, U64 size) {
    Bytes const rest = bytes.subspan(std::min<U64>(from, bytes.size()));
    return rest.first(std::min<U64>(size, rest.size()));
}

} // namespace

Reader::Reader(std::span<std::byte const> bytes) {
    std::string_view const text(reinterpret_cast<char const*>(bytes.data()), bytes.size());
    std::string_view const magicText(magic.data(), magic.size());
    for (std::size_t from = 0; !found_; from = offset_ + 1) {
        std::size_t const at = text.find(magicText, from);
        if (at == std::string_view::npos) {
            return;
        }
        offset_ = at;
        header_ = valueAt<RingHeader>(bytes, offset_);
        found_ = makesSense(header_);
    }
    block_ = part(bytes, offset_, header_.blockSize);
    records_ = part(block_, header_.recordOffset, header_.recordSize + header_.maxRecordSize);
    readDescriptors();
    findRecords();
}

/// Behind a damaged descriptor the next one is found by its check.
void Reader::readDescriptors() {
    Bytes rest = part(block_, header_.descriptorOffset,
                      std::min(header_.descriptorUsed, header_.descriptorSize));
    while (rest.size() >= sizeof(DescriptorHeader)) {
        rest = rest.subspan(readDescriptor(rest));
    }
}

/// Reads the descriptor at the front and returns how many bytes further the next one may begin.
std::size_t Reader::readDescriptor(std::span<std::byte const> bytes) {
    auto const size = valueAt<DescriptorHeader>(bytes, 0).size;
    if (size < sizeof(DescriptorHeader) || size % unit != 0 || size > bytes.size() ||
        valueAt<DescriptorHeader>(bytes, 0).check != descriptorCheck(bytes.first(size))) {
        return unit;
    }
    ByteCursor cursor(bytes.first(size));
    auto const header = cursor.take<DescriptorHeader>();
    DecodedMessage message;
    message.msgId = header.msgId;
    message.level = header.level;
    message.line = header.line;
    message.unit = cursor.takeText(header.unitLength);
    message.format = cursor.takeText(header.formatLength);
    for (U16 word = 0; word < header.wordCount && cursor.ok(); ++word) {
        message.words.emplace_back(cursor.takeText(cursor.take<U16>()));
    }
    if (cursor.ok()) {
        messages_.resize(std::max<std::size_t>(messages_.size(), header.msgId + std::size_t{1}));
        messages_[header.msgId] = std::move(message);
    }
    return size;
}

/// The position of the record whose header is at `offset` of the record area, if there is one by
/// all appearances.
std::optional<U64> Reader::positionAt(std::size_t offset) const {
    auto const header = valueAt<RecordHeader>(records_, offset);
    std::size_t const size = header.units * unit;
    U64 const position = header.position ^ header_.cookie;
    if (size < sizeof header || size > header_.maxRecordSize ||
        (position & (header_.recordSize - 1)) != offset) {
        return {};
    }
    return position;
}

/// Of the positions found, those of one round of the ring: the span that holds most, and the latest
/// of such spans.
Reader::Round Reader::likelyRound() const {
    Round best{0, 0};
    std::size_t oldest = 0;
    for (std::size_t newest = 0; newest < positions_.size(); ++newest) {
        while (positions_[newest] - positions_[oldest] >= header_.recordSize) {
            ++oldest;
        }
        if (newest - oldest >= best.newest - best.oldest) {
            best = {oldest, newest};
        }
    }
    return best;
}

/// Whether the head agrees with the positions found: it stands closely behind a record or at the
/// one that was being written, and no other record of that round is beyond it.
bool Reader::headIsLikely() const {
    U64 const head = header_.head;
    auto const at = std::ranges::lower_bound(positions_, head);
    auto const beyond = std::ranges::upper_bound(positions_, head);
    bool const closeBehind =
        at != positions_.begin() && head - *std::prev(at) <= 2 * header_.maxRecordSize;
    bool const beingWritten = at != beyond;
    return (closeBehind || beingWritten) &&
           (beyond == positions_.end() || *beyond - head >= header_.recordSize);
}

/// Collects the records of the last round, the oldest first. Those of the round before that still
/// lie about, and the one that was being written, are left out.
void Reader::findRecords() {
    std::size_t const area = std::min<std::size_t>(records_.size(), header_.recordSize);
    for (std::size_t offset = 0; offset < area; offset += unit) {
        if (auto const position = positionAt(offset)) {
            positions_.push_back(*position);
        }
    }
    if (positions_.empty()) {
        return;
    }
    std::ranges::sort(positions_);
    U64 const head = header_.head;
    if (headIsLikely()) {
        bool const writing =
            header_.reserved > head && header_.reserved - head <= header_.maxRecordSize;
        U64 const end = writing ? header_.reserved : head;
        keepPositions(end > header_.recordSize ? end - header_.recordSize : 0, head);
    } else {
        Round const round = likelyRound();
        keepPositions(positions_[round.oldest], positions_[round.newest] + 1);
    }
}

void Reader::keepPositions(U64 begin, U64 end) {
    std::erase_if(positions_, [&](U64 position) { return position < begin || position >= end; });
}

/// Whether the writer of a living ring has come round to the record since the reader was built. The
/// record's own bytes do not always tell: a new record that ends within its header may leave the
/// position as it was.
bool Reader::overwritten(U64 position) const {
    auto const reserved = valueAt<U64>(block_, offsetof(RingHeader, reserved));
    return reserved != header_.reserved && reserved - position > header_.recordSize;
}

std::optional<DecodedRecord> Reader::decode(U64 position) const {
    std::size_t const offset = position & (header_.recordSize - 1);
    if (overwritten(position) || positionAt(offset) != position) {
        return {};
    }
    auto const header = valueAt<RecordHeader>(records_, offset);
    U32 const newest = static_cast<U32>(header_.sequence) - 1;
    DecodedRecord record;
    record.sequence = header_.sequence - 1 - (newest - header.sequence);
    record.time = header.time;
    record.msgId = header.msgId;
    if (header.msgId >= messages_.size() || !messages_[header.msgId]) {
        record.text = DecodedMessage::lost;
        return record;
    }
    DecodedMessage const& message = *messages_[header.msgId];
    record.level = message.level;
    record.line = message.line;
    record.unit = message.unit;
    if (!readPieces(record, message, part(records_, offset, header.units * unit))) {
        return {};
    }
    return record;
}

/// Puts literals and arguments together. All of the record but the filling of its last 8 bytes must
/// be used up.
bool Reader::readPieces(DecodedRecord& record, DecodedMessage const& message,
                        std::span<std::byte const> bytes) {
    ByteCursor cursor(bytes);
    cursor.take<RecordHeader>();
    auto words = message.words.begin();
    for (char const code : message.format) {
        if (code != static_cast<char>(ArgCode::words)) {
            auto arg = takeArg(code, cursor);
            if (!arg) {
                return false;
            }
            record.text += argText(*arg);
            record.args.push_back(*std::move(arg));
        } else if (words == message.words.end()) {
            return false;
        } else {
            record.text += *words++;
        }
    }
    return cursor.ok() && cursor.remaining() < unit;
}

std::vector<DecodedMessage> Reader::messages() const {
    std::vector<DecodedMessage> known;
    for (auto const& message : messages_) {
        if (message) {
            known.push_back(*message);
        }
    }
    return known;
}

std::optional<DecodedRecord> Reader::next() {
    while (at_ < positions_.size()) {
        if (auto record = decode(positions_[at_++])) {
            return record;
        }
        ++damaged_;
    }
    return {};
}

std::vector<DecodedRecord> Reader::rest() {
    std::vector<DecodedRecord> records;
    while (auto record = next()) {
        records.push_back(*std::move(record));
    }
    return records;
}

} // namespace Lumlog
