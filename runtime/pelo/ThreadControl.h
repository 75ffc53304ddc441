#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <atomic>

namespace Pelo {

/// The process-wide switch that says whether more than one thread may touch entities.
///
/// While it is off, which is the default, every use count in the process is changed with plain
/// arithmetic. While it is on, use counts are changed atomically and the tables that values share
/// (names of interfaces, tunnel groups, slab storage) are guarded. The host switches it on before
/// it starts a second thread that copies a pointer or a value of the runtime, and may switch it off
/// again only when that thread is gone. Nothing else is protected: entities and collections are
/// used on one thread at a time, and so is each single object of a value type.
class VORNIC_RUNTIME_API ThreadControl {
public:
    static bool multiThreaded() noexcept { return multiThreaded_.load(std::memory_order_relaxed); }
    static void multiThreadedIs(bool on) noexcept {
        multiThreaded_.store(on, std::memory_order_seq_cst);
    }

private:
    static std::atomic<bool> multiThreaded_;
};

/// Adds one to `count` under the thread-control rule.
inline void countInc(U32& count) noexcept {
    if (ThreadControl::multiThreaded()) {
        std::atomic_ref<U32>(count).fetch_add(1, std::memory_order_relaxed);
    } else {
        ++count;
    }
}

/// Takes one from `count` under the thread-control rule; true when that was the last one.
inline bool countDec(U32& count) noexcept {
    if (ThreadControl::multiThreaded()) {
        return std::atomic_ref<U32>(count).fetch_sub(1, std::memory_order_acq_rel) == 1;
    }
    return --count == 0;
}

/// Takes one from a count that stays above zero, under the thread-control rule; false, and no
/// change, when the count is 1.
inline bool countDecUnlessLast(U32& count) noexcept {
    if (!ThreadControl::multiThreaded()) {
        if (count <= 1) {
            return false;
        }
        --count;
        return true;
    }
    std::atomic_ref<U32> const shared(count);
    U32 seen = shared.load(std::memory_order_relaxed);
    while (seen > 1) {
        if (shared.compare_exchange_weak(seen, seen - 1, std::memory_order_acq_rel,
                                         std::memory_order_relaxed)) {
            return true;
        }
    }
    return false;
}

/// Holds a mutex only while several threads may touch entities, so that a single-threaded agent
/// never locks.
template <class Mutex> class ThreadControlGuard {
public:
    explicit ThreadControlGuard(Mutex& mutex)
        : mutex_(ThreadControl::multiThreaded() ? &mutex : nullptr) {
        if (mutex_ != nullptr) {
            mutex_->lock();
        }
    }
    ~ThreadControlGuard() {
        if (mutex_ != nullptr) {
            mutex_->unlock();
        }
    }
    ThreadControlGuard(ThreadControlGuard const&) = delete;
    ThreadControlGuard& operator=(ThreadControlGuard const&) = delete;

private:
    Mutex* mutex_;
};

} // namespace Pelo
