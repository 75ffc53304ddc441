#include "support/Allocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local U32 allocations = 0;
thread_local std::int64_t alive = 0;
thread_local bool failing = false;
thread_local U32 passing = 0;

/// `alignment` is 0 for storage that fits every type without a wish of its own.
void* allocate(std::size_t size, std::size_t alignment) {
    ++allocations;
    if (failing) {
        if (passing == 0) {
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
    ++alive;
    return storage;
}

void giveBack(void* storage) noexcept {
    alive -= storage == nullptr ? 0 : 1;
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

FailingAllocations::FailingAllocations(U32 allowed) noexcept {
    passing = allowed;
    failing = true;
}

FailingAllocations::~FailingAllocations() { failing = false; }

CountedAllocations::CountedAllocations() noexcept : before_(allocations), liveBefore_(alive) {}
U32 CountedAllocations::count() const noexcept { return allocations - before_; }
std::int64_t CountedAllocations::live() const noexcept { return alive - liveBefore_; }

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

void operator delete(void* storage) noexcept { giveBack(storage); }
void operator delete[](void* storage) noexcept { giveBack(storage); }
void operator delete(void* storage, std::size_t) noexcept { giveBack(storage); }
void operator delete[](void* storage, std::size_t) noexcept { giveBack(storage); }
void operator delete(void* storage, std::align_val_t) noexcept { giveBack(storage); }
void operator delete[](void* storage, std::align_val_t) noexcept { giveBack(storage); }
void operator delete(void* storage, std::size_t, std::align_val_t) noexcept { giveBack(storage); }
void operator delete[](void* storage, std::size_t, std::align_val_t) noexcept { giveBack(storage); }
