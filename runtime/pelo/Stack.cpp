#include "pelo/Stack.h"

#include <pthread.h>

#include <algorithm>
#include <limits>

namespace Pelo {
namespace {

constexpr std::uintptr_t unknown = std::numeric_limits<std::uintptr_t>::max();

} // namespace

constinit thread_local std::uintptr_t Stack::low_ = unknown;
constinit thread_local std::uintptr_t Stack::half_ = unknown;
constinit thread_local std::uintptr_t Stack::end_ = 0;

bool Stack::isBelow(std::uintptr_t const& mark) noexcept {
    if (mark == unknown) {
        measure();
    }
    return place() < mark && place() >= end_;
}

void Stack::measure() noexcept {
    low_ = 0;
    half_ = 0;
    pthread_attr_t attributes;
    if (pthread_getattr_np(pthread_self(), &attributes) != 0) {
        return;
    }
    void* lowest = nullptr;
    std::size_t size = 0;
    if (pthread_attr_getstack(&attributes, &lowest, &size) == 0) {
        std::uintptr_t const top = reinterpret_cast<std::uintptr_t>(lowest) + size;
        std::uintptr_t const counted = std::min<std::uintptr_t>(size, largest);
        end_ = reinterpret_cast<std::uintptr_t>(lowest);
        low_ = top - counted + std::min(reserve, counted / 4);
        half_ = top - counted / 2;
    }
    pthread_attr_destroy(&attributes);
}

} // namespace Pelo
