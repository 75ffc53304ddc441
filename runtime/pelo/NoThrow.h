#pragma once

#include <exception>
#include <utility>

namespace Pelo {

/// Runs what must not throw: nobody who runs it could do anything about an exception. One that
/// leaves `work` ends the process by `std::terminate` while it is being handled, so that the
/// terminate handler can name it.
///
/// A function that is `noexcept` ends the process as well, but optimised code of GCC then calls the
/// handler outside of any handling, and the reason is lost ("terminate called without an active
/// exception"). Costs nothing when nothing is thrown.
template <class Work> void runNoThrow(Work&& work) noexcept {
    try {
        std::forward<Work>(work)();
    } catch (...) {
        std::terminate();
    }
}

} // namespace Pelo
