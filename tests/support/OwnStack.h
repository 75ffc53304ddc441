#pragma once

#include <pthread.h>

#include <cstddef>
#include <functional>
#include <stdexcept>

namespace Support {

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
