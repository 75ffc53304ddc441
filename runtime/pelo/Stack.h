#pragma once

#include "pelo/Export.h"

#include <cstdint>

namespace Pelo {

/// How far the calling thread's stack is used up, for what may call itself without a bound of its
/// own, through code that others wrote: publications, sinks and destructors.
///
/// The last `reserve` bytes, or the last quarter of a stack of less than four times that, are kept
/// for what runs between two tests. Of a stack of more than `largest` only so much counts, so that
/// a recursion without end is found before it has eaten the memory. The stack is measured when the
/// thread asks for the first time, as it is then.
///
/// A stack that is not the thread's own (of a coroutine, say, or of a signal handler) is never
/// found used up, and neither is one that the system does not tell the size of.
///
/// Cost: a load, a comparison and a jump; some system calls at the first test of a thread.
class VORNIC_RUNTIME_API Stack {
public:
    static constexpr std::uintptr_t reserve = std::uintptr_t{64} << 10;
    static constexpr std::uintptr_t largest = std::uintptr_t{64} << 20;

    /// Whether only the reserve is left.
    static bool low() noexcept { return mayBeBelow(low_) && isBelow(low_); }
    /// Whether half of the stack is used.
    static bool halfUsed() noexcept { return mayBeBelow(half_) && isBelow(half_); }

    /// A quick test before `low()`, for what is called very often: false where that is false, but
    /// for a thread that has not asked yet and for stacks that are not the thread's own.
    static bool mayBeLow() noexcept { return mayBeBelow(low_); }

private:
    /// Where the caller's frame stands. Sanitizers keep local variables elsewhere.
    [[gnu::always_inline]] static std::uintptr_t place() noexcept {
        return reinterpret_cast<std::uintptr_t>(__builtin_frame_address(0));
    }
    [[gnu::always_inline]] static bool mayBeBelow(std::uintptr_t mark) noexcept {
        return place() < mark;
    }
    /// The whole test, after which the stack is measured.
    [[gnu::cold]] static bool isBelow(std::uintptr_t const& mark) noexcept;
    static void measure() noexcept;

    // The marks of the thread: above every address until its stack is measured, then within it. The
    // model spares each use a call; it takes a few bytes of what the system keeps for libraries.
    [[gnu::tls_model("initial-exec")]] static constinit thread_local std::uintptr_t low_;
    [[gnu::tls_model("initial-exec")]] static constinit thread_local std::uintptr_t half_;
    [[gnu::tls_model("initial-exec")]] static constinit thread_local std::uintptr_t end_;
};

} // namespace Pelo
