#include "pelo/Slab.h"

#include "pelo/ThreadControl.h"

#include <array>
#include <mutex>
#include <new>

#if defined(__SANITIZE_ADDRESS__)
#define PELO_SLAB_POISONS 1
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define PELO_SLAB_POISONS 1
#endif
#endif

#ifdef PELO_SLAB_POISONS
#include <sanitizer/asan_interface.h>
#endif

namespace Pelo {
namespace {

constexpr std::size_t granule = 16; // bytes; every piece is a multiple of it and aligned to it
constexpr std::size_t largestPiece = 4096; // bytes
constexpr std::size_t blockSize = 65536;   // bytes

/// What a block begins with; its pieces follow.
struct alignas(granule) BlockHead {
    BlockHead* next;
};

/// The pieces of one size class that nobody uses, linked through their first word.
struct SizeClass {
    struct Piece {
        Piece* next;
    };
    Piece* free = nullptr;
};

/// All size classes. It is never destroyed: objects with static storage may give their pieces back
/// at any time.
struct Slabs {
    std::mutex mutex;
    BlockHead* blocks = nullptr; ///< all of them, so that leak checkers see that none is lost
    std::array<SizeClass, largestPiece / granule> classes;
};

Slabs& slabs() {
    static Slabs* const instance = new Slabs;
    return *instance;
}

/// A piece that is free must not be touched; with the address sanitizer a touch of one is reported.
void poison([[maybe_unused]] void* piece, [[maybe_unused]] std::size_t size) noexcept {
#ifdef PELO_SLAB_POISONS
    __asan_poison_memory_region(piece, size);
#endif
}

void unpoison([[maybe_unused]] void* piece, [[maybe_unused]] std::size_t size) noexcept {
#ifdef PELO_SLAB_POISONS
    __asan_unpoison_memory_region(piece, size);
#endif
}

std::size_t pieceSize(std::size_t size) noexcept {
    return size == 0 ? granule : (size + granule - 1) / granule * granule;
}

void putFree(SizeClass& sizeClass, void* storage, std::size_t size) noexcept {
    sizeClass.free = new (storage) SizeClass::Piece{sizeClass.free};
    poison(storage, size);
}

void addBlock(Slabs& all, SizeClass& sizeClass, std::size_t size) {
    void* const block = ::operator new(blockSize);
    all.blocks = new (block) BlockHead{all.blocks};
    std::byte* const pieces = static_cast<std::byte*>(block) + sizeof(BlockHead);
    for (std::size_t at = (blockSize - sizeof(BlockHead)) / size; at-- > 0;) {
        putFree(sizeClass, pieces + at * size, size);
    }
}

void* takePiece(Slabs& all, std::size_t size) {
    SizeClass& sizeClass = all.classes[size / granule - 1];
    if (sizeClass.free == nullptr) {
        addBlock(all, sizeClass, size);
    }
    SizeClass::Piece* const piece = sizeClass.free;
    unpoison(piece, size);
    sizeClass.free = piece->next;
    return piece;
}

void giveBack(Slabs& all, void* storage, std::size_t size) noexcept {
    if (size > largestPiece) {
        ::operator delete(storage);
        return;
    }
    putFree(all.classes[pieceSize(size) / granule - 1], storage, pieceSize(size));
}

} // namespace

void* slabAllocate(std::size_t size, AllocationTracker& tracker) {
    Slabs& all = slabs();
    ThreadControlGuard const guard(all.mutex);
    void* const storage =
        size > largestPiece ? ::operator new(size) : takePiece(all, pieceSize(size));
    tracker.allocationRecorded(size);
    return storage;
}

void slabRelease(void* storage, std::size_t size, AllocationTracker& tracker) noexcept {
    Slabs& all = slabs();
    ThreadControlGuard const guard(all.mutex);
    tracker.releaseRecorded();
    giveBack(all, storage, size);
}

void slabUndo(void* storage, std::size_t size, AllocationTracker& tracker) noexcept {
    Slabs& all = slabs();
    ThreadControlGuard const guard(all.mutex);
    tracker.allocationUndone();
    giveBack(all, storage, size);
}

} // namespace Pelo
