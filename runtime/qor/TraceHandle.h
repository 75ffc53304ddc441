#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <string_view>

namespace Lumlog {
class RingBuffer;
}

namespace Qor {

/// A named group of traces and the levels of it that are switched on.
///
/// Level L, 0 to 63, is on when bit L of the mask is set. A host finds a handle by its name and
/// sets its levels. The first handle that is built brings the process's ring buffer into being (see
/// `Lumlog::RingBuffer::current`).
///
/// Cost: a trace asks `wants`, which is one test of one word: the word holds the mask, or all ones
/// while the process has a current ring buffer, which records every level.
///
/// Not thread-safe: built, changed and used on the event thread.
class VORNIC_RUNTIME_API TraceHandle {
public:
    static constexpr U32 levelCount = 64;

    /// `name` must outlive the handle, as a literal does. With `allLevelsOn` every level is on,
    /// else none is. Without memory for the ring buffer (`std::bad_alloc`) there is no handle.
    TraceHandle(char const* name, bool allLevelsOn);
    ~TraceHandle();
    TraceHandle(TraceHandle const&) = delete;
    TraceHandle& operator=(TraceHandle const&) = delete;

    std::string_view name() const noexcept { return name_; }

    /// A level past 63 is never on.
    bool isOn(U32 level) const noexcept {
        return level < levelCount && (levelsMask_ >> level & 1) != 0;
    }

    /// Whether somebody wants to know of a trace of this level: the trace sink or the ring buffer.
    bool wants(U32 level) const noexcept {
        return level < levelCount && (wanted_ >> level & 1) != 0;
    }

    U64 levelsMask() const noexcept { return levelsMask_; }
    void levelsMaskIs(U64 mask) noexcept;

    /// Switches one level; one past 63 fails an assertion.
    void levelIs(U32 level, bool on);

    /// The handle of that name, or null. Of several with one name, the one built last.
    static TraceHandle* find(std::string_view name) noexcept;

    /// Walks all handles: `for (auto* h = TraceHandle::first(); h != nullptr; h = h->next())`, the
    /// last built first.
    static TraceHandle* first() noexcept { return first_; }
    TraceHandle* next() const noexcept { return next_; }

private:
    static void ringChanged(Lumlog::RingBuffer* ring) noexcept;

    U64 wanted_ = 0;
    U64 levelsMask_;
    char const* name_;
    TraceHandle* next_ = nullptr;

    static TraceHandle* first_;
    static bool ringPresent_;
};

} // namespace Qor
