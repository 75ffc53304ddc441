#include "bask/Bitmap.h"

#include "pelo/Ptr.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <vector>

namespace Bask {
namespace {

using BitState = HBitmap::BitState;

Pelo::Ptr<Bitmap> makeBitmap(U32 size, BitState state = BitState::clear) {
    return Pelo::newNode<Bitmap>(U64{0}, size, state);
}

constexpr U32 null = HBitmap::null();
constexpr U32 noBound = std::numeric_limits<U32>::max();

U32 lowest(Bitmap const& bitmap, U32 lo = 0, U32 hi = noBound) {
    return bitmap.findClearBitInRange(lo, hi, Preference::low);
}

U32 highest(Bitmap const& bitmap, U32 lo = 0, U32 hi = noBound) {
    return bitmap.findClearBitInRange(lo, hi, Preference::high);
}

TEST(Bitmap, NullIsAllOnes) { EXPECT_EQ(HBitmap::null(), 0xFFFFFFFFu); }

TEST(Bitmap, KeepsWhatItWasBuiltWith) {
    auto const bitmap = Pelo::newNode<Bitmap>(U64{1} << 40, 100u, BitState::set);
    EXPECT_EQ(bitmap->id(), U64{1} << 40);
    EXPECT_EQ(bitmap->size(), 100u);
    EXPECT_EQ(bitmap->initialBitState(), BitState::set);
    bitmap->clearBit(3);
    EXPECT_EQ(bitmap->initialBitState(), BitState::set);
}

TEST(Bitmap, BeginsWithAllBitsInTheInitialState) {
    for (U32 const size : {0u, 1u, 8u, 63u, 64u, 65u, 4097u, 65536u}) {
        auto const clear = makeBitmap(size, BitState::clear);
        auto const set = makeBitmap(size, BitState::set);
        EXPECT_EQ(clear->numBitsInSetState(), 0u) << size;
        EXPECT_EQ(set->numBitsInSetState(), size) << size;
        EXPECT_EQ(lowest(*clear), size == 0 ? null : 0) << size;
        EXPECT_EQ(highest(*clear), size == 0 ? null : size - 1) << size;
        EXPECT_EQ(lowest(*set), null) << size;
        EXPECT_EQ(highest(*set), null) << size;
        for (U32 index = 0; index < size; ++index) {
            ASSERT_FALSE(clear->isBitSet(index)) << index << " of " << size;
            ASSERT_TRUE(set->isBitSet(index)) << index << " of " << size;
        }
    }
}

TEST(Bitmap, SettingAndClearingTwiceCountsOnce) {
    auto const bitmap = makeBitmap(65536);
    bitmap->setBit(5000);
    bitmap->setBit(5000);
    EXPECT_TRUE(bitmap->isBitSet(5000));
    EXPECT_EQ(bitmap->numBitsInSetState(), 1u);
    bitmap->clearBit(5000);
    bitmap->clearBit(5000);
    EXPECT_FALSE(bitmap->isBitSet(5000));
    EXPECT_EQ(bitmap->numBitsInSetState(), 0u);
}

TEST(Bitmap, PreferenceChoosesTheEndOfTheRange) {
    auto const bitmap = makeBitmap(16);
    for (U32 index = 0; index < 8; ++index) {
        bitmap->setBit(index);
    }
    EXPECT_EQ(lowest(*bitmap, 0, 15), 8u);
    EXPECT_EQ(highest(*bitmap, 0, 15), 15u);
    EXPECT_EQ(highest(*bitmap, 0, 11), 11u);
    EXPECT_EQ(lowest(*bitmap, 12, 15), 12u);
    EXPECT_EQ(lowest(*bitmap, 0, 7), null);
    EXPECT_EQ(highest(*bitmap, 0, 7), null);
}

TEST(Bitmap, EmptyRangeHasNoBit) {
    auto const bitmap = makeBitmap(100);
    EXPECT_EQ(lowest(*bitmap, 6, 5), null);
    EXPECT_EQ(highest(*bitmap, 6, 5), null);
    EXPECT_EQ(lowest(*bitmap, 100, 200), null);
    EXPECT_EQ(highest(*bitmap, 100, 200), null);
    EXPECT_EQ(lowest(*bitmap, noBound, noBound), null);
    EXPECT_EQ(highest(*bitmap, noBound, noBound), null);
}

TEST(Bitmap, RangePastTheEndIsCut) {
    auto const bitmap = makeBitmap(100);
    EXPECT_EQ(highest(*bitmap, 99, 100), 99u);
    EXPECT_EQ(lowest(*bitmap, 99, noBound), 99u);
    bitmap->setBit(99);
    EXPECT_EQ(highest(*bitmap, 99, noBound), null);
    EXPECT_EQ(lowest(*bitmap, 99, noBound), null);
}

TEST(Bitmap, BitsPastTheEndCannotBeUsed) {
    for (U32 const size : {0u, 7u, 64u, 65535u}) {
        for (auto const state : {BitState::clear, BitState::set}) {
            auto const bitmap = makeBitmap(size, state);
            for (U32 const index : {size, size + 1, size + 64, size + 5000, noBound}) {
                bitmap->setBit(index);
                EXPECT_FALSE(bitmap->isBitSet(index)) << index << " of " << size;
                bitmap->clearBit(index);
                EXPECT_FALSE(bitmap->isBitSet(index)) << index << " of " << size;
            }
            EXPECT_EQ(bitmap->numBitsInSetState(), state == BitState::set ? size : 0) << size;
            EXPECT_EQ(highest(*bitmap), state == BitState::set || size == 0 ? null : size - 1)
                << size;
        }
    }
}

TEST(Bitmap, FillsUpFromEitherEndAndEmptiesAgain) {
    constexpr U32 size = 4097;
    for (auto const preference : {Preference::low, Preference::high}) {
        auto const bitmap = makeBitmap(size);
        for (U32 count = 0; count < size; ++count) {
            U32 const found = bitmap->findClearBitInRange(0, size - 1, preference);
            ASSERT_EQ(found, preference == Preference::low ? count : size - 1 - count);
            bitmap->setBit(found);
        }
        EXPECT_EQ(bitmap->findClearBitInRange(0, size - 1, preference), null);
        EXPECT_EQ(bitmap->numBitsInSetState(), size);
        for (U32 index = 0; index < size; ++index) {
            bitmap->clearBit(index);
            ASSERT_EQ(highest(*bitmap), index);
            ASSERT_EQ(lowest(*bitmap), 0u);
        }
        EXPECT_EQ(bitmap->numBitsInSetState(), 0u);
    }
}

TEST(Bitmap, OneClearBitIsFoundWhereverItIs) {
    constexpr U32 size = 262145;
    auto const bitmap = makeBitmap(size, BitState::set);
    for (U32 const index : {0u, 1u, 63u, 64u, 4095u, 4096u, 65535u, 65536u, 262143u, 262144u}) {
        bitmap->clearBit(index);
        EXPECT_EQ(lowest(*bitmap), index);
        EXPECT_EQ(highest(*bitmap), index);
        EXPECT_EQ(lowest(*bitmap, index, index), index);
        EXPECT_EQ(highest(*bitmap, index, index), index);
        EXPECT_EQ(lowest(*bitmap, index + 1, noBound), null);
        if (index > 0) {
            EXPECT_EQ(lowest(*bitmap, 1, noBound), index);
            EXPECT_EQ(highest(*bitmap, 0, index - 1), null);
        }
        bitmap->setBit(index);
    }
}

TEST(Bitmap, EndsMoveInwardsOverWhatIsSetAlready) {
    auto const bitmap = makeBitmap(300);
    for (U32 index = 100; index < 200; ++index) {
        bitmap->setBit(index);
    }
    for (U32 index = 1; index < 100; ++index) {
        bitmap->setBit(index);
        EXPECT_EQ(lowest(*bitmap), 0u) << index;
    }
    bitmap->setBit(0);
    EXPECT_EQ(lowest(*bitmap), 200u);
    for (U32 index = 200; index < 299; ++index) {
        bitmap->setBit(index);
        EXPECT_EQ(highest(*bitmap), 299u) << index;
    }
    EXPECT_EQ(lowest(*bitmap), 299u);
    bitmap->setBit(299);
    EXPECT_EQ(lowest(*bitmap), null);
    EXPECT_EQ(highest(*bitmap), null);
}

TEST(Bitmap, EndsMoveOutwardsToWhatIsCleared) {
    auto const bitmap = makeBitmap(300, BitState::set);
    for (U32 distance = 0; distance < 150; ++distance) {
        bitmap->clearBit(149 - distance);
        EXPECT_EQ(lowest(*bitmap), 149 - distance);
        EXPECT_EQ(highest(*bitmap), 149 + distance);
        bitmap->clearBit(150 + distance);
        EXPECT_EQ(lowest(*bitmap), 149 - distance);
        EXPECT_EQ(highest(*bitmap), 150 + distance);
    }
    bitmap->clearBit(150);
    EXPECT_EQ(lowest(*bitmap), 0u);
    EXPECT_EQ(highest(*bitmap), 299u);
}

/// Whole words of the third level fill up and come free again, with and without a level above it.
TEST(Bitmap, EndsMeetInTheMiddleOfManyLevels) {
    for (U32 const size : {262143u, 262144u, 262145u, 530000u}) {
        auto const bitmap = makeBitmap(size);
        for (U32 from = 0, to = size; from < to;) {
            ASSERT_EQ(lowest(*bitmap), from) << size;
            bitmap->setBit(from++);
            if (from < to) {
                ASSERT_EQ(highest(*bitmap), to - 1) << size;
                bitmap->setBit(--to);
            }
        }
        EXPECT_EQ(lowest(*bitmap), null) << size;
        EXPECT_EQ(highest(*bitmap), null) << size;
        EXPECT_EQ(bitmap->numBitsInSetState(), size);
        bitmap->clearBit(size - 1);
        bitmap->clearBit(1);
        EXPECT_EQ(lowest(*bitmap), 1u) << size;
        EXPECT_EQ(highest(*bitmap), size - 1) << size;
        EXPECT_EQ(lowest(*bitmap, 2), size - 1) << size;
        EXPECT_EQ(highest(*bitmap, 0, size - 2), 1u) << size;
    }
}

TEST(Bitmap, RangeBetweenTheEndsMayHaveNoClearBit) {
    auto const bitmap = makeBitmap(20000, BitState::set);
    bitmap->clearBit(10);
    bitmap->clearBit(15000);
    for (U32 const lo : {11u, 63u, 64u, 4096u, 14999u}) {
        EXPECT_EQ(lowest(*bitmap, lo, 14999), null) << lo;
        EXPECT_EQ(highest(*bitmap, lo, 14999), null) << lo;
        EXPECT_EQ(lowest(*bitmap, lo), 15000u) << lo;
        EXPECT_EQ(highest(*bitmap, 0, lo), 10u) << lo;
    }
    EXPECT_EQ(lowest(*bitmap, 0, 9), null);
    EXPECT_EQ(highest(*bitmap, 15001), null);
}

/// Sets the clear bits of an otherwise full bitmap from either end: the next one is found by
/// levels.
void expectEndsToMoveOver(Bitmap& bitmap, std::vector<U32> const& clear) {
    for (U32 const index : clear) {
        bitmap.clearBit(index);
    }
    for (std::size_t at = 0; at + 1 < clear.size(); ++at) {
        bitmap.setBit(clear[at]);
        EXPECT_EQ(lowest(bitmap), clear[at + 1]);
    }
    for (U32 const index : clear) {
        bitmap.clearBit(index);
    }
    for (std::size_t at = clear.size() - 1; at > 0; --at) {
        EXPECT_EQ(highest(bitmap, 0, clear[at] - 1), clear[at - 1]);
        bitmap.setBit(clear[at]);
        EXPECT_EQ(highest(bitmap), clear[at - 1]);
    }
    bitmap.setBit(clear[0]);
    EXPECT_EQ(lowest(bitmap), null);
}

TEST(Bitmap, EndsMoveOverWhatIsSetThroughFiveLevels) {
    constexpr U32 size = 20'000'000;
    auto const bitmap = makeBitmap(size, BitState::set);
    expectEndsToMoveOver(*bitmap,
                         {0, 1, 262143, 262144, 5'000'000, 16'777'215, 16'777'216, size - 1});
}

TEST(Bitmap, LargestSizeIsValid) {
    constexpr U32 size = std::numeric_limits<U32>::max();
    auto const bitmap = makeBitmap(size, BitState::set);
    EXPECT_EQ(bitmap->numBitsInSetState(), size);
    for (U32 const index : {0u, 1u << 30, size - 1}) {
        bitmap->clearBit(index);
        EXPECT_FALSE(bitmap->isBitSet(index));
        EXPECT_EQ(bitmap->numBitsInSetState(), size - 1);
        EXPECT_EQ(lowest(*bitmap), index);
        EXPECT_EQ(highest(*bitmap), index);
        EXPECT_EQ(lowest(*bitmap, index / 2, noBound), index);
        bitmap->setBit(index);
    }
    expectEndsToMoveOver(*bitmap, {0, 5'000'000, 1u << 30, (1u << 30) + 1, 3u << 30, size - 1});
    EXPECT_FALSE(bitmap->isBitSet(size));
}

TEST(Bitmap, IsANodeOfItsOwnAllocationTracker) {
    U64 const before = Bitmap::allocationTracker().live();
    {
        auto const bitmap = makeBitmap(10);
        EXPECT_EQ(bitmap->useCount(), 1u);
        EXPECT_EQ(Bitmap::allocationTracker().live(), before + 1);
    }
    EXPECT_EQ(Bitmap::allocationTracker().live(), before);
}

} // namespace
} // namespace Bask
