#include "pelo/Slab.h"

#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "support/Allocations.h"
#include "support/MultiThreaded.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <memory>
#include <new>
#include <set>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

using Pelo::AllocationTracker;
using Pelo::slabAllocate;
using Pelo::slabRelease;

/// A node of the given content; each type has a tracker of its own.
template <std::size_t size> struct Box final : Pelo::Node, Pelo::SlabAllocated<Box<size>> {
    std::array<unsigned char, size> content;
};

TEST(Slab, TrackerCountsTheObjectsOfItsType) {
    using Counted = Box<48>;
    using Other = Box<49>;
    AllocationTracker const& tracker = Counted::allocationTracker();
    EXPECT_EQ(tracker.objectSize(), 0u);
    auto one = Pelo::newNode<Counted>();
    auto two = Pelo::newNode<Counted>();
    auto const other = Pelo::newNode<Other>();
    EXPECT_EQ(tracker.objectSize(), sizeof(Counted));
    EXPECT_EQ(tracker.live(), 2u);
    one = nullptr;
    EXPECT_EQ(tracker.live(), 1u);
    EXPECT_EQ(tracker.allocated(), 2u);
    two = nullptr;
    EXPECT_EQ(tracker.live(), 0u);
    EXPECT_EQ(Other::allocationTracker().live(), 1u);
}

template <std::size_t size> struct Fragile final : Pelo::Node, Pelo::SlabAllocated<Fragile<size>> {
    explicit Fragile(bool broken) {
        lastBuilt = this;
        if (broken) {
            throw std::runtime_error("broken");
        }
    }
    std::array<unsigned char, size> content;
    static inline void const* lastBuilt = nullptr;
};

TEST(Slab, ConstructorThatThrowsReturnsTheStorageAndUndoesTheRecord) {
    using Object = Fragile<100>;
    AllocationTracker const& tracker = Object::allocationTracker();
    EXPECT_THROW(Pelo::newNode<Object>(true), std::runtime_error);
    EXPECT_EQ(tracker.objectSize(), 0u);
    EXPECT_EQ(tracker.allocated(), 0u);
    EXPECT_EQ(tracker.live(), 0u);
    auto before = Pelo::newNode<Object>(false);
    EXPECT_THROW(Pelo::newNode<Object>(true), std::runtime_error);
    EXPECT_EQ(tracker.objectSize(), sizeof(Object));
    EXPECT_EQ(tracker.allocated(), 1u);
    EXPECT_EQ(tracker.live(), 1u);
    void const* const broken = Object::lastBuilt;
    auto const after = Pelo::newNode<Object>(false);
    EXPECT_EQ(after.get(), broken); // the same storage is used again
    before = nullptr;
    EXPECT_EQ(tracker.allocated(), 2u);
    EXPECT_EQ(tracker.live(), 1u);
}

TEST(Slab, ConstructorOfALargeObjectMayThrow) {
    using Object = Fragile<10000>;
    EXPECT_THROW(Pelo::newNode<Object>(true), std::runtime_error);
    EXPECT_EQ(Object::allocationTracker().allocated(), 0u);
    EXPECT_EQ(Object::allocationTracker().live(), 0u);
}

/// Plain `new` could not undo the record.
template <class T>
concept PlainlyBuilt = requires { new T; };
static_assert(PlainlyBuilt<std::array<int, 1>> && !PlainlyBuilt<Box<1>>);

class Root : public Pelo::Node {};
struct SmallLeaf final : Root, Pelo::SlabAllocated<SmallLeaf> {};
struct LargeLeaf final : Root, Pelo::SlabAllocated<LargeLeaf> {
    std::array<unsigned char, 500> content{};
};

TEST(Slab, NodeReturnsItsStorageThroughAPointerToItsBase) {
    Pelo::Ptr<Root> small = Pelo::newNode<SmallLeaf>();
    Pelo::Ptr<Root> large = Pelo::newNode<LargeLeaf>();
    void const* const storage = large.get();
    small = nullptr;
    large = nullptr;
    EXPECT_EQ(SmallLeaf::allocationTracker().live(), 0u);
    EXPECT_EQ(LargeLeaf::allocationTracker().live(), 0u);
    large = Pelo::newNode<LargeLeaf>();
    EXPECT_EQ(large.get(), storage);
}

TEST(Slab, StorageGivenBackIsUsedAgainForItsSizeClassOnly) {
    AllocationTracker tracker;
    void* const first = slabAllocate(33, tracker);
    slabRelease(first, 33, tracker);
    void* const smaller = slabAllocate(32, tracker);
    void* const larger = slabAllocate(49, tracker);
    void* const same = slabAllocate(48, tracker); // 33 to 48 bytes are one class
    EXPECT_NE(smaller, first);
    EXPECT_NE(larger, first);
    EXPECT_EQ(same, first);
    slabRelease(smaller, 32, tracker);
    slabRelease(larger, 49, tracker);
    slabRelease(same, 48, tracker);
    EXPECT_EQ(tracker.live(), 0u);
    EXPECT_EQ(tracker.allocated(), 4u);
}

TEST(Slab, EverySizeIsAlignedForEveryType) {
    AllocationTracker tracker;
    constexpr std::array<std::size_t, 10> sizes = {0, 1, 15, 16, 17, 100, 4095, 4096, 4097, 100000};
    for (std::size_t const size : sizes) {
        std::vector<void*> pieces;
        for (int i = 0; i < 40; ++i) {
            pieces.push_back(slabAllocate(size, tracker));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(pieces.back()) % 16, 0u) << size;
            std::memset(pieces.back(), 0xA5, size);
        }
        EXPECT_EQ(std::set<void*>(pieces.begin(), pieces.end()).size(), pieces.size()) << size;
        for (void* const piece : pieces) {
            slabRelease(piece, size, tracker);
        }
    }
    EXPECT_EQ(tracker.live(), 0u);
}

TEST(Slab, WithoutMemoryNothingIsRecorded) {
    AllocationTracker tracker;
    std::vector<void*> pieces;
    {
        Support::FailingAllocations const none(0);
        EXPECT_THROW(slabAllocate(5000, tracker), std::bad_alloc);
    }
    bool exhausted = false;
    pieces.reserve(1000);
    while (!exhausted) { // until the free pieces of this class are used up
        Support::FailingAllocations const none(0);
        try {
            pieces.push_back(slabAllocate(3000, tracker));
        } catch (std::bad_alloc const&) {
            exhausted = true;
        }
    }
    EXPECT_EQ(tracker.live(), pieces.size());
    EXPECT_EQ(tracker.allocated(), pieces.size());
    pieces.push_back(slabAllocate(3000, tracker));
    for (void* const piece : pieces) {
        slabRelease(piece, 3000, tracker);
    }
    EXPECT_EQ(tracker.live(), 0u);
}

/// Pieces of storage, each filled with a pattern of its own that must still be there at the end.
class Pieces {
public:
    explicit Pieces(AllocationTracker& tracker) : tracker_(tracker) {}

    void take(std::size_t size, unsigned char pattern) {
        void* const storage = slabAllocate(size, tracker_);
        std::memset(storage, pattern, size);
        held_.push_back({storage, size, pattern});
    }
    void giveBack(std::size_t at) {
        Piece const piece = held_[at];
        auto const* const bytes = static_cast<unsigned char const*>(piece.storage);
        EXPECT_TRUE(std::all_of(bytes, bytes + piece.size,
                                [&](unsigned char byte) { return byte == piece.pattern; }));
        slabRelease(piece.storage, piece.size, tracker_);
        held_[at] = held_.back();
        held_.pop_back();
    }
    std::size_t count() const { return held_.size(); }

private:
    struct Piece {
        void* storage;
        std::size_t size;
        unsigned char pattern;
    };
    AllocationTracker& tracker_;
    std::vector<Piece> held_;
};

TEST(Slab, NoTwoPiecesInUseOverlap) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    AllocationTracker tracker;
    Pieces pieces(tracker);
    for (int step = 0; step < 30000; ++step) {
        if (pieces.count() == 0 || (pieces.count() < 500 && random.oneIn(2))) {
            pieces.take(1 + random.below(random.oneIn(20) ? 6000 : 200), random.byte());
        } else {
            pieces.giveBack(random.below(static_cast<U32>(pieces.count())));
        }
        ASSERT_EQ(tracker.live(), pieces.count());
    }
    while (pieces.count() != 0) {
        pieces.giveBack(0);
    }
    EXPECT_EQ(tracker.live(), 0u);
}

TEST(Slab, ManyThreadsTakeAndGiveBack) {
    Support::MultiThreaded const on;
    AllocationTracker tracker;
    std::vector<std::thread> threads;
    for (unsigned char thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&tracker, thread] {
            Pieces pieces(tracker);
            for (std::size_t step = 0; step < 5000; ++step) {
                pieces.take(16 + step % 3 * 16, thread);
                if (pieces.count() == 50) {
                    pieces.giveBack(step % 50);
                }
            }
            while (pieces.count() != 0) {
                pieces.giveBack(0);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(tracker.live(), 0u);
    EXPECT_EQ(tracker.allocated(), 20000u);
}

} // namespace
