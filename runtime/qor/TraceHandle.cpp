#include "qor/TraceHandle.h"

#include "lumlog/RingBuffer.h"
#include "qor/Assert.h"

#include <utility>

namespace Qor {

constinit TraceHandle* TraceHandle::first_ = nullptr;
constinit bool TraceHandle::ringPresent_ = false;

TraceHandle::TraceHandle(char const* name, bool allLevelsOn)
    : levelsMask_(allLevelsOn ? ~U64{0} : U64{0}), name_(name) {
    Lumlog::RingBuffer* const ring = Lumlog::RingBuffer::current(); // may throw: listed afterwards
    next_ = std::exchange(first_, this);
    Lumlog::RingBuffer::currentObserverIs(&TraceHandle::ringChanged);
    ringChanged(ring);
}

TraceHandle::~TraceHandle() {
    TraceHandle** link = &first_;
    while (*link != this) {
        link = &(*link)->next_;
    }
    *link = next_;
}

void TraceHandle::levelsMaskIs(U64 mask) noexcept {
    levelsMask_ = mask;
    wanted_ = ringPresent_ ? ~U64{0} : mask;
}

void TraceHandle::levelIs(U32 level, bool on) {
    QOR_ASSERT(level < levelCount);
    U64 const bit = U64{1} << level;
    levelsMaskIs(on ? levelsMask_ | bit : levelsMask_ & ~bit);
}

TraceHandle* TraceHandle::find(std::string_view name) noexcept {
    for (TraceHandle* handle = first_; handle != nullptr; handle = handle->next_) {
        if (handle->name() == name) {
            return handle;
        }
    }
    return nullptr;
}

void TraceHandle::ringChanged(Lumlog::RingBuffer* ring) noexcept {
    ringPresent_ = ring != nullptr;
    for (TraceHandle* handle = first_; handle != nullptr; handle = handle->next_) {
        handle->levelsMaskIs(handle->levelsMask_);
    }
}

} // namespace Qor
