#include "support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local U32 allocations = 0;
thread_local std::int64_t living = 0;
thread_local bool failing = false;
thread_local bool momentary = false;
thread_local bool anyFailed = false;
thread_local U32 passing = 0;

/// `alignment` is 0 for storage that fits every type without a wish of its own.
void* allocate(std::size_t size, std::size_t alignment) {
    ++allocations;
    if (failing) {
        if (passing == 0) {
            failing = !momentary;
            anyFailed = true;
            throw std::bad_alloc();
        }
        --passing;
    }
    std::size_t const wanted = size == 0 ? 1 : size;
    void* const storage =
        alignment == 0
            ? std::malloc(wanted)
            : std::aligned_alloc(alignment, (wanted + alignment - 1) / alignment * alignment);
    if (storage == nullptr) {
        throw std::bad_alloc();
    }
    ++living;
    return storage;
}

void release(void* storage) noexcept {
    living -= storage != nullptr ? 1 : 0;
    std::free(storage);
}

void* allocateOrNull(std::size_t size) noexcept {
    try {
        return allocate(size, 0);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}

} // namespace

namespace Support {

FailingAllocations::FailingAllocations(U32 allowed, Shortage shortage) noexcept {
    passing = allowed;
    momentary = shortage == Shortage::momentary;
    anyFailed = false;
    failing = true;
}

FailingAllocations::~FailingAllocations() { end(); }
bool FailingAllocations::failed() noexcept { return anyFailed; }
void FailingAllocations::end() noexcept { failing = false; }

CountedAllocations::CountedAllocations() noexcept : before_(allocations), livingBefore_(living) {}
U32 CountedAllocations::count() const noexcept { return allocations - before_; }
std::int64_t CountedAllocations::live() const noexcept { return living - livingBefore_; }

} // namespace Support

void* operator new(std::size_t size) { return allocate(size, 0); }
void* operator new[](std::size_t size) { return allocate(size, 0); }
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocate(size, static_cast<std::size_t>(alignment));
}

void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return allocateOrNull(size);
}

void operator delete(void* storage) noexcept { release(storage); }
void operator delete[](void* storage) noexcept { release(storage); }
void operator delete(void* storage, std::size_t) noexcept { release(storage); }
void operator delete[](void* storage, std::size_t) noexcept { release(storage); }
void operator delete(void* storage, std::align_val_t) noexcept { release(storage); }
void operator delete[](void* storage, std::align_val_t) noexcept { release(storage); }
void operator delete(void* storage, std::size_t, std::align_val_t) noexcept { release(storage); }
void operator delete[](void* storage, std::size_t, std::align_val_t) noexcept { release(storage); }
