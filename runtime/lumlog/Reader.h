#pragma once

#include "lumlog/DecodedMessage.h"
#include "lumlog/DecodedRecord.h"
#include "lumlog/RingFormat.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace Lumlog {

/// Turns the memory of a ring buffer into text: the records that it still holds, the oldest first.
///
///     Lumlog::Reader reader(bytes);
///     while (auto record = reader.next()) { ... }
///
/// `bytes` is the block of a living ring (`RingBuffer::bytes`), a copy of it, or anything that
/// contains one, as a core file does; the first block found is read. It must stay where it is while
/// the reader is used. Bytes may be missing at its end, damaged or changing: records that cannot be
/// told apart or decoded are left out, and nothing outside of `bytes` is ever read. Damage within a
/// text or a number cannot be seen.
///
/// Cost: building a reader searches `bytes` for the block and walks that once, `next` decodes one
/// record. A reader is for one thread at a time, that of a living ring for the thread that writes
/// the ring.
class VORNIC_RUNTIME_API Reader {
public:
    explicit Reader(std::span<std::byte const> bytes);

    /// Whether a ring was found, and where it begins in `bytes`; others are found in what follows.
    bool found() const noexcept { return found_; }
    std::size_t offset() const noexcept { return offset_; }

    /// Whether the ring holds anything that looks like a record.
    bool hasRecords() const noexcept { return !positions_.empty(); }

    /// The messages that the ring describes, in the order of their numbers.
    std::vector<DecodedMessage> messages() const;

    /// The next record, or nothing behind the newest.
    std::optional<DecodedRecord> next();

    /// All further records.
    std::vector<DecodedRecord> rest();

    /// How many records `next` has left out because their contents made no sense, or were
    /// overwritten since the reader was built.
    std::size_t damaged() const noexcept { return damaged_; }

private:
    /// Places in `positions_`, both included.
    struct Round {
        std::size_t oldest;
        std::size_t newest;
    };

    void readDescriptors();
    std::size_t readDescriptor(std::span<std::byte const> bytes);
    void findRecords();
    void keepPositions(U64 begin, U64 end);
    bool headIsLikely() const;
    Round likelyRound() const;
    std::optional<U64> positionAt(std::size_t offset) const;
    bool overwritten(U64 position) const;
    static bool readPieces(DecodedRecord& record, DecodedMessage const& message,
                           std::span<std::byte const> bytes);
    std::optional<DecodedRecord> decode(U64 position) const;

    std::span<std::byte const> block_;
    std::span<std::byte const> records_; ///< record area and overhang, as far as they are there
    RingFormat::RingHeader header_{};
    std::size_t offset_ = 0;
    bool found_ = false;
    std::vector<std::optional<DecodedMessage>> messages_; ///< by number
    std::vector<U64> positions_;                          ///< of the records, the oldest first
    std::size_t at_ = 0;                                  ///< in `positions_`
    std::size_t damaged_ = 0;
};

} // namespace Lumlog
