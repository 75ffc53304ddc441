#pragma once

#include "lumlog/Clock.h"
#include "lumlog/MsgDescriptor.h"
#include "lumlog/RingFormat.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <atomic>
#include <cstddef>
#include <cstring>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <vector>

namespace Lumlog {

/// A flight recorder: a ring of binary records of fixed size, in which new records overwrite the
/// oldest.
///
/// Its memory is one block that describes itself (see `lumlog/RingFormat.h`): `Lumlog::Reader`
/// needs nothing else to turn the records into text, be the block this process's own, a copy in a
/// file, or part of a core file. The block is allocated and touched when the ring is built;
/// afterwards writing a record neither waits nor allocates, but for the first record of each call
/// site.
///
/// Records are written by `Lumlog::record` and the statements of `qor/Trace.h`. The process has a
/// current ring, which those statements write to.
///
/// Not thread-safe: written on the event thread only. A process that ends at any instruction leaves
/// a readable ring.
class VORNIC_RUNTIME_API RingBuffer {
public:
    static constexpr std::size_t defaultSize = std::size_t{1} << 20;
    static constexpr std::size_t minSize = std::size_t{1} << 12;
    static constexpr std::size_t maxSize = std::size_t{1} << 32;
    static constexpr std::size_t minMaxPayload = minSize / 4 - sizeof(RingFormat::RecordHeader);

    /// `size` is the room for records in bytes: a power of two from `minSize` to `maxSize`,
    /// anything else fails an assertion. The block is about a quarter larger, by 16 KiB at least,
    /// for the descriptions of the messages.
    explicit RingBuffer(std::size_t size);
    ~RingBuffer(); ///< when it is the current ring, the process has none afterwards
    RingBuffer(RingBuffer const&) = delete;
    RingBuffer& operator=(RingBuffer const&) = delete;

    /// The process's current ring, or null when the host wants none. If the host has not set one by
    /// the first call, which the first trace handle makes, the call builds one of `defaultSize`,
    /// which lives as long as the process.
    static RingBuffer* current();

    /// Sets the current ring, which the caller keeps, or with null switches recording off. Returns
    /// the ring before.
    static RingBuffer* currentIs(RingBuffer* ring) noexcept;

    /// The one who is told, after each change, which ring is current: the trace handles, which
    /// take the place when one is built. Not for hosts, who would cut them off.
    using CurrentObserver = void (*)(RingBuffer* ring) noexcept;
    static void currentObserverIs(CurrentObserver observer) noexcept;

    /// The current ring if there is one by now, else null; builds none. Cost: one read.
    static RingBuffer* currentIfAny() noexcept { return current_; }

    /// Messages are disabled in this ring by number (that of a decoded record, or
    /// `MsgDescriptor::msgId`): their records are skipped. A message that nobody has disabled is
    /// enabled, also before its first record. To change a number from `MsgDescriptor::maxMessages`
    /// on fails an assertion.
    void messageEnabledIs(U32 msgId, bool enabled);
    bool messageEnabled(U32 msgId) const noexcept { return (state(msgId) & disabled) == 0; }
    bool takes(MsgDescriptor const& descriptor) const noexcept {
        return messageEnabled(descriptor.msgIdOrNone());
    }

    /// Whether the ring holds the description of this message.
    bool knows(MsgDescriptor const& descriptor) const noexcept {
        return (state(descriptor.msgIdOrNone()) & known) != 0;
    }

    /// Whether the ring both knows and takes this message, so that its record needs nothing else.
    bool readyFor(MsgDescriptor const& descriptor) const noexcept {
        return state(descriptor.msgIdOrNone()) == known;
    }

    /// Stores the description of a message that has its number. When the room for descriptions is
    /// used up, its records can be read without their text only. When it throws (`std::bad_alloc`)
    /// nothing has changed, as with `messageEnabledIs`.
    void describe(MsgDescriptor const& descriptor);

    /// A record is written by `startMsg`, appends that add up to `payloadSize`, and `endMsg`, with
    /// nothing that could write another record in between. `payloadSize` is at most `maxPayload()`.
    /// The message must have its number; it is written whether it is enabled or not.
    inline std::byte* startMsg(MsgDescriptor const& descriptor, std::size_t payloadSize) noexcept;
    template <class T> static std::byte* append(std::byte* at, T const& value) noexcept {
        std::memcpy(at, &value, sizeof value);
        return at + sizeof value;
    }
    static inline std::byte* appendBytes(std::byte* at, std::string_view text) noexcept;
    inline void endMsg() noexcept;

    std::size_t maxPayload() const noexcept { return maxPayload_; }

    U64 recordCount() const noexcept { return header_->sequence; } ///< ever written

    /// The whole block, for `Lumlog::Reader` or to be saved. It changes with the next record.
    std::span<std::byte const> bytes() const noexcept { return {block_.get(), blockSize_}; }

private:
    enum State : U8 { known = 1, disabled = 2 };
    struct BlockDeleter {
        void operator()(std::byte* block) const noexcept;
    };

    U8 state(U32 msgId) const noexcept { return msgId < states_.size() ? states_[msgId] : U8{0}; }
    U8& stateFor(U32 msgId);

    static RingBuffer* current_;

    RingFormat::RingHeader* header_;
    std::byte* descriptors_;
    std::byte* records_;
    U64 mask_;
    U64 cookie_;
    std::size_t maxPayload_;
    std::vector<U8> states_; ///< `State` bits, by message number
    Clock clock_;
    std::size_t blockSize_;
    std::unique_ptr<std::byte, BlockDeleter> block_;
};

inline std::byte* RingBuffer::startMsg(MsgDescriptor const& descriptor,
                                       std::size_t payloadSize) noexcept {
    std::size_t const size = RingFormat::roundedUp(sizeof(RingFormat::RecordHeader) + payloadSize);
    U64 const position = header_->head;
    header_->reserved = position + size;
    std::atomic_signal_fence(std::memory_order_seq_cst); // what follows destroys the oldest records
    std::byte* const at = records_ + (position & mask_);
    new (at) RingFormat::RecordHeader{
        static_cast<U16>(size / RingFormat::unit), static_cast<U16>(descriptor.msgId()),
        static_cast<U32>(header_->sequence), position ^ cookie_, clock_.now()};
    return at + sizeof(RingFormat::RecordHeader);
}

/// Most texts are names, for which a call of `memcpy` would take longer than the copy: up to 16
/// bytes are copied as two words that may overlap.
inline std::byte* RingBuffer::appendBytes(std::byte* at, std::string_view text) noexcept {
    std::size_t const size = text.size();
    auto const copyEnds = [&](auto first) {
        auto last = first;
        std::memcpy(&first, text.data(), sizeof first);
        std::memcpy(&last, text.data() + size - sizeof last, sizeof last);
        append(at, first);
        append(at + size - sizeof last, last);
    };
    if (size > 2 * sizeof(U64)) {
        std::memcpy(at, text.data(), size);
    } else if (size >= sizeof(U64)) {
        copyEnds(U64{});
    } else if (size >= sizeof(U32)) {
        copyEnds(U32{});
    } else if (size >= sizeof(U16)) {
        copyEnds(U16{});
    } else if (size != 0) {
        append(at, text.front());
    }
    return at + size;
}

inline void RingBuffer::endMsg() noexcept {
    std::atomic_signal_fence(std::memory_order_seq_cst); // the record is whole before it counts
    ++header_->sequence;
    header_->head = header_->reserved;
}

} // namespace Lumlog
