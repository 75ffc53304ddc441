#include "lumlog/RingBuffer.h"

#include "pelo/Hash.h"
#include "qor/Assert.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <new>
#include <string>
#include <utility>

namespace Lumlog {
namespace {

using namespace RingFormat;

constexpr std::size_t alignment = 4096;
constexpr std::size_t largestRecord = 4096;        // bytes
constexpr std::size_t leastDescriptorArea = 16384; // bytes

bool hostHasChosen = false;
RingBuffer::CurrentObserver observer = nullptr;

RingHeader headerFor(std::size_t recordSize) {
    RingHeader header{};
    header.magic = magic;
    header.version = version;
    header.byteOrder = byteOrderMark;
    header.recordSize = recordSize;
    header.maxRecordSize = std::min(largestRecord, recordSize / 4);
    header.descriptorOffset = sizeof header;
    header.descriptorSize = std::max(leastDescriptorArea, recordSize / 4);
    header.recordOffset = header.descriptorOffset + header.descriptorSize;
    header.blockSize = header.recordOffset + recordSize + header.maxRecordSize;
    header.cookie = Pelo::hashMix(
        static_cast<U64>(std::chrono::system_clock::now().time_since_epoch().count()), recordSize);
    header.check = Pelo::hashBytes(&header, fixedPartSize);
    return header;
}

template <class T> void appendTo(std::string& bytes, T const& value) {
    bytes.append(reinterpret_cast<char const*>(&value), sizeof value);
}

std::string descriptorBytes(MsgDescriptor const& descriptor) {
    DescriptorHeader header{};
    std::string_view const unit = descriptor.unit();
    std::string_view const format = descriptor.format();
    header.msgId = static_cast<U16>(descriptor.msgId());
    header.wordCount = static_cast<U16>(descriptor.words().size());
    header.level = descriptor.level();
    header.line = descriptor.line();
    header.unitLength = static_cast<U16>(unit.size());
    header.formatLength = static_cast<U16>(format.size());
    std::string bytes;
    appendTo(bytes, header);
    bytes.append(unit).append(format);
    for (Qor::Words const words : descriptor.words()) {
        appendTo(bytes, static_cast<U16>(words.size()));
        bytes.append(words.view());
    }
    bytes.resize(roundedUp(bytes.size()));
    header.size = static_cast<U32>(bytes.size());
    std::memcpy(bytes.data(), &header, sizeof header);
    header.check = descriptorCheck(std::as_bytes(std::span(bytes)));
    std::memcpy(bytes.data(), &header, sizeof header);
    return bytes;
}

} // namespace

constinit RingBuffer* RingBuffer::current_ = nullptr;

RingBuffer::RingBuffer(std::size_t size) {
    QOR_ASSERT(std::has_single_bit(size) && size >= minSize && size <= maxSize);
    RingHeader const header = headerFor(size);
    blockSize_ = header.blockSize;
    block_.reset(static_cast<std::byte*>(::operator new(blockSize_, std::align_val_t(alignment))));
    std::memset(block_.get(), 0,
                blockSize_); // also touches every page now rather than within a handler
    header_ = new (block_.get()) RingHeader(header);
    descriptors_ = block_.get() + header.descriptorOffset;
    records_ = block_.get() + header.recordOffset;
    mask_ = size - 1;
    cookie_ = header.cookie;
    maxPayload_ = header.maxRecordSize - sizeof(RecordHeader);
}

RingBuffer::~RingBuffer() {
    if (current_ == this) {
        currentIs(nullptr);
    }
}

void RingBuffer::BlockDeleter::operator()(std::byte* block) const noexcept {
    ::operator delete(block, std::align_val_t(alignment));
}

RingBuffer* RingBuffer::current() {
    if (!hostHasChosen) {
        currentIs(new RingBuffer(defaultSize));
    }
    return current_;
}

RingBuffer* RingBuffer::currentIs(RingBuffer* ring) noexcept {
    hostHasChosen = true;
    RingBuffer* const former = std::exchange(current_, ring);
    if (observer != nullptr) {
        observer(ring);
    }
    return former;
}

void RingBuffer::currentObserverIs(CurrentObserver newObserver) noexcept { observer = newObserver; }

U8& RingBuffer::stateFor(U32 msgId) {
    QOR_ASSERT(msgId < MsgDescriptor::maxMessages);
    if (msgId >= states_.size()) {
        states_.resize(std::bit_ceil(std::size_t{msgId} + 64));
    }
    return states_[msgId];
}

void RingBuffer::messageEnabledIs(U32 msgId, bool enabled) {
    U8& state = stateFor(msgId);
    state = static_cast<U8>(enabled ? state & ~disabled : state | disabled);
}

void RingBuffer::describe(MsgDescriptor const& descriptor) {
    std::string const bytes = descriptorBytes(descriptor);
    U8& state = stateFor(descriptor.msgId()); // may throw: nothing is stored yet
    if (bytes.size() <= header_->descriptorSize - header_->descriptorUsed) {
        std::memcpy(descriptors_ + header_->descriptorUsed, bytes.data(), bytes.size());
        std::atomic_signal_fence(
            std::memory_order_seq_cst); // the description is whole before it counts
        header_->descriptorUsed += bytes.size();
    }
    state = static_cast<U8>(state | known);
}

} // namespace Lumlog
