#pragma once

#include "support/Sanitizers.h"

#include <pthread.h>

#include <cstddef>
#include <functional>
#include <stdexcept>

namespace Support {

inline constexpr std::size_t kibi = 1024;

/// The stack of a thread as the system usually makes it, in bytes. The thread sanitizer knows
/// 65,536 calls within each other and no more: below it the stack is one that so many do not fit
/// on.
constexpr std::size_t usualStack() { return std::size_t{1} << (threadSanitizer() ? 19 : 23); }

/// Runs something on a thread of its own that has a stack of so many bytes, and waits for its end.
inline void onStackOf(std::size_t bytes, std::function<void()> const& work) {
    auto const run = [](void* given) -> void* {
        (*static_cast<std::function<void()> const*>(given))();
        return nullptr;
    };
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    pthread_t thread{};
    bool const started =
        pthread_attr_setstacksize(&attributes, bytes) == 0 &&
        pthread_create(&thread, &attributes, run, const_cast<std::function<void()>*>(&work)) == 0;
    pthread_attr_destroy(&attributes);
    if (!started) {
        throw std::runtime_error("no thread with such a stack");
    }
    pthread_join(thread, nullptr);
}

} // namespace Support
