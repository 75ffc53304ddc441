#pragma once

#include "pelo/Integers.h"
#include "pelo/ThreadControl.h"

#include <atomic>
#include <cstddef>
#include <memory>
#include <mutex>
#include <new>

namespace Pelo {

/// A table of entries that values share, such as the names behind interface ids. It holds exactly
/// the entries in use: the last user of an entry takes it out and destroys it.
///
/// An `Entry` has `U64 hash`, equal for equal entries for its whole life, and `U32 useCount`, which
/// the table and its users change. Entries stay at their address, so a value can be a pointer to
/// one, and two values are equal when their pointers are.
///
/// Cost: `take` is one probe sequence; `release` is a count, and no search, unless the entry goes.
/// The array of slots follows the number of entries in both directions. Entries that are still in
/// use when the table is destroyed are not freed, so it should outlive its users.
///
/// Threads: under the thread-control rule (see `ThreadControl`). What holds:
/// - Whenever the mutex is free, every entry in the table has a use: the last one is given back,
///   and the entry taken out, under the mutex. So `take` finds no entry that is on its way out.
/// - Without the mutex a use is added only by somebody who has one, with `countInc`.
template <class Entry> class CountedTable {
public:
    CountedTable() = default;
    CountedTable(CountedTable const&) = delete;
    CountedTable& operator=(CountedTable const&) = delete;

    /// One use of the entry of this hash for which `matches(entry)` holds; if there is none, of the
    /// entry that `make()` returns, a pointer from `new` with a use count of 1. An exception of
    /// `make`, or `std::bad_alloc`, leaves the table as it was. Both are called under the mutex:
    /// they must not use the table.
    template <class Matches, class Make> Entry* take(U64 hash, Matches matches, Make make) {
        ThreadControlGuard const guard(mutex_);
        if (size_ + 1 > capacity_ - capacity_ / 4) {
            grow();
        }
        std::size_t at = hash & (capacity_ - 1);
        for (; slots_[at].entry != nullptr; at = next(at)) {
            if (slots_[at].hash == hash && matches(*slots_[at].entry)) {
                countInc(slots_[at].entry->useCount);
                return slots_[at].entry;
            }
        }
        slots_[at] = {hash, make()};
        ++size_;
        return slots_[at].entry;
    }

    /// Gives back one use; the entry, if that was its last, is destroyed before this returns.
    void release(Entry* entry) noexcept {
        if (countDecUnlessLast(entry->useCount)) {
            return;
        }
        std::unique_ptr<Entry> gone; // destroyed after the mutex is free
        ThreadControlGuard const guard(mutex_);
        if (countDec(entry->useCount)) {
            erase(*entry);
            gone.reset(entry);
        }
    }

    /// The uses of the entry of this hash for which `matches(entry)` holds; 0 when there is none.
    template <class Matches> U32 uses(U64 hash, Matches matches) const {
        ThreadControlGuard const guard(mutex_);
        for (std::size_t at = hash & (capacity_ - 1); capacity_ != 0 && slots_[at].entry != nullptr;
             at = next(at)) {
            if (slots_[at].hash == hash && matches(*slots_[at].entry)) {
                return std::atomic_ref<U32>(slots_[at].entry->useCount).load();
            }
        }
        return 0;
    }

    /// The number of entries in use.
    std::size_t size() const {
        ThreadControlGuard const guard(mutex_);
        return size_;
    }

private:
    struct Slot {
        U64 hash = 0;
        Entry* entry = nullptr;
    };
    static constexpr std::size_t smallestCapacity = 16;

    std::size_t next(std::size_t at) const noexcept { return (at + 1) & (capacity_ - 1); }

    void grow() {
        std::size_t const capacity = capacity_ == 0 ? smallestCapacity : capacity_ * 2;
        moveTo(new Slot[capacity], capacity);
    }

    void moveTo(Slot* slots, std::size_t capacity) noexcept {
        for (std::size_t from = 0; from < capacity_; ++from) {
            if (slots_[from].entry != nullptr) {
                std::size_t to = slots_[from].hash & (capacity - 1);
                while (slots[to].entry != nullptr) {
                    to = (to + 1) & (capacity - 1);
                }
                slots[to] = slots_[from];
            }
        }
        slots_.reset(slots);
        capacity_ = capacity;
    }

    /// Takes an entry out and closes the gap, so that no probe sequence is cut.
    void erase(Entry const& entry) noexcept {
        std::size_t gap = entry.hash & (capacity_ - 1);
        while (slots_[gap].entry != &entry) {
            gap = next(gap);
        }
        for (std::size_t at = next(gap); slots_[at].entry != nullptr; at = next(at)) {
            std::size_t const fromHome = (at - slots_[at].hash) & (capacity_ - 1);
            if (fromHome >= ((at - gap) & (capacity_ - 1))) {
                slots_[gap] = slots_[at];
                gap = at;
            }
        }
        slots_[gap] = {};
        --size_;
        shrink();
    }

    /// Halves an array that is almost empty. Without memory for it, the larger one stays in use.
    void shrink() noexcept {
        if (capacity_ == smallestCapacity || size_ >= capacity_ / 8) {
            return;
        }
        if (Slot* const slots = new (std::nothrow) Slot[capacity_ / 2]; slots != nullptr) {
            moveTo(slots, capacity_ / 2);
        }
    }

    mutable std::mutex mutex_;
    std::unique_ptr<Slot[]> slots_;
    std::size_t capacity_ = 0; ///< slots, a power of two; at most three quarters are taken
    std::size_t size_ = 0;
};

} // namespace Pelo
