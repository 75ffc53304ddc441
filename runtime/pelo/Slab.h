#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <cstddef>

namespace Pelo {

/// What a type has allocated: how many of its objects are alive, and how many were ever built.
///
/// One per type, kept by `SlabAllocated` and changed by the slab functions only. Reads are for
/// tests, inspection and leak hunting; they are not guarded.
class VORNIC_RUNTIME_API AllocationTracker {
public:
    /// In bytes; 0 until the first object is built.
    std::size_t objectSize() const noexcept { return objectSize_; }
    U64 live() const noexcept { return allocated_ - released_; }
    /// Since the process began; an object whose constructor threw is not counted.
    U64 allocated() const noexcept { return allocated_; }

    void allocationRecorded(std::size_t objectSize) noexcept {
        objectSize_ = objectSize;
        ++allocated_;
    }
    void allocationUndone() noexcept {
        if (--allocated_ == 0) {
            objectSize_ = 0;
        }
    }
    void releaseRecorded() noexcept { ++released_; }

private:
    std::size_t objectSize_ = 0;
    U64 allocated_ = 0;
    U64 released_ = 0;
};

/// Takes storage for one object, aligned to 16 bytes, from the slab of its size class, or gives it
/// back with the size that was asked for.
///
/// Storage comes in blocks of 64 KiB that are cut into equal pieces; a piece given back is used
/// again for the next object of that size class, and blocks are kept for the life of the process.
/// Cost: a few instructions, and one block allocation for each block full of pieces. `slabAllocate`
/// throws `std::bad_alloc` when a block cannot be had. Sizes above 4 KiB go to the global
/// allocator. Guarded under the thread-control rule.
VORNIC_RUNTIME_API void* slabAllocate(std::size_t size, AllocationTracker& tracker);
VORNIC_RUNTIME_API void slabRelease(void* storage, std::size_t size,
                                    AllocationTracker& tracker) noexcept;

/// As `slabRelease`, for an object that was not built: the tracker forgets the allocation.
VORNIC_RUNTIME_API void slabUndo(void* storage, std::size_t size,
                                 AllocationTracker& tracker) noexcept;

/// What `newNode` gives to `new`, for the `delete` that runs when the constructor throws: the
/// language does not tell it the size.
struct VORNIC_RUNTIME_API NodeSize {
    std::size_t bytes;
};

/// Base of an entity type whose objects live in slab storage and are counted by the type's
/// allocation tracker.
///
///     class Fan final : public Qor::Entity, public Pelo::SlabAllocated<Fan> {
///
/// `Pelo::newNode` builds the objects, plain `new` does not compile. The storage is taken and the
/// allocation recorded before the constructor runs; when the constructor throws, the storage is
/// returned and the record undone.
template <class T> class VORNIC_RUNTIME_API SlabAllocated {
public:
    static void* operator new(std::size_t size) = delete;
    static void* operator new(std::size_t size, NodeSize) {
        static_assert(alignof(T) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);
        return slabAllocate(size, allocationTracker());
    }
    static void operator delete(void* storage, NodeSize size) noexcept {
        slabUndo(storage, size.bytes, allocationTracker());
    }
    static void operator delete(void* storage, std::size_t size) noexcept {
        slabRelease(storage, size, allocationTracker());
    }

    static AllocationTracker& allocationTracker() noexcept {
        static constinit AllocationTracker tracker;
        return tracker;
    }

protected:
    SlabAllocated() = default;
    ~SlabAllocated() = default;
};

/// A type that derives from `SlabAllocated`.
template <class T>
concept InSlab = requires { T::allocationTracker(); };

} // namespace Pelo
