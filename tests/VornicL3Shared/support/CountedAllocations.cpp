#include "VornicL3Shared/support/CountedAllocations.h"

#include <cstdlib>
#include <new>

namespace {

thread_local U32 allocations = 0;

void* allocateOrNull(std::size_t size) noexcept {
    ++allocations;
    return std::malloc(size == 0 ? 1 : size);
}

void* allocate(std::size_t size) {
    if (void* const storage = allocateOrNull(size)) {
        return storage;
    }
    throw std::bad_alloc();
}

} // namespace

namespace Test {

CountedAllocations::CountedAllocations() noexcept : before_(allocations) {}
U32 CountedAllocations::count() const noexcept { return allocations - before_; }

} // namespace Test

void* operator new(std::size_t size) { return allocate(size); }
void* operator new[](std::size_t size) { return allocate(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept {
    return allocateOrNull(size);
}
void* operator new[](std::size_t size, std::nothrow_t const&) noexcept {
    return allocateOrNull(size);
}
void operator delete(void* storage) noexcept { std::free(storage); }
void operator delete[](void* storage) noexcept { std::free(storage); }
void operator delete(void* storage, std::size_t) noexcept { std::free(storage); }
void operator delete[](void* storage, std::size_t) noexcept { std::free(storage); }
