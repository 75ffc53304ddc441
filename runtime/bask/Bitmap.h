#pragma once

#include "bask/HBitmap.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/Node.h"
#include "pelo/Slab.h"

#include <array>
#include <cstddef>
#include <memory>

namespace Bask {

/// A bitmap of fixed size that finds a clear bit at the same cost however full it is.
///
/// Levels of 64-bit words stand on each other: a bit of a level says whether the word below it has
/// any clear bit (three levels for up to 262,144 bits, six at most). Setting and clearing touch one
/// word, and those above it only when a word fills up or stops being full.
///
/// The number of set bits and the lowest and the highest clear bit are kept, so that asking for
/// them is a read. Setting one of the two finds the next: in the same word, or down from the top
/// through one word a level. A search that begins amid the bits goes up as many levels first.
///
/// A size from 0 to 2^32 - 1 is valid. Bits at or past the size cannot be set or cleared (nothing
/// happens), test as not set, are not counted and are never found. Memory: one bit a bit, and 1/63
/// more for the levels above.
///
/// Not thread-safe.
class VORNIC_RUNTIME_API Bitmap final : public Pelo::Node, public Pelo::SlabAllocated<Bitmap> {
public:
    /// `id` is a number of the owner's choice, which the bitmap only keeps; `size` is in bits. The
    /// only operation that takes memory.
    Bitmap(U64 id, U32 size, HBitmap::BitState initialBitState);

    U64 id() const noexcept { return id_; }
    U32 size() const noexcept { return size_; }
    HBitmap::BitState initialBitState() const noexcept { return initialBitState_; }

    void setBit(U32 index) noexcept;
    void clearBit(U32 index) noexcept;
    bool isBitSet(U32 index) const noexcept {
        return index < size_ && (levels_[0][index / wordBits] & bitOf(index)) == 0;
    }
    U32 numBitsInSetState() const noexcept { return setCount_; }

    /// The lowest or the highest clear bit from `lo` to `hi`, both included; `HBitmap::null()` when
    /// there is none. A range that reaches past the end is cut, and one whose `lo` is past `hi` or
    /// past the end is empty.
    U32 findClearBitInRange(U32 lo, U32 hi, Preference preference) const noexcept;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    static constexpr U32 wordBits = 64;
    static constexpr U32 maxLevels = 6;
    static constexpr U32 thirdLevel = 2; ///< always there, so that common sizes take no loop

    ~Bitmap() override;

    static constexpr U64 bitOf(U64 index) noexcept { return U64{1} << (index % wordBits); }

    // The word has a one, so the builtins are defined; the standard functions test for zero first,
    // which doubles the cost of a search.
    static U32 lowestOne(U64 word) noexcept { return static_cast<U32>(__builtin_ctzll(word)); }
    static U32 highestOne(U64 word) noexcept {
        return static_cast<U32>(63 ^ __builtin_clzll(word));
    }
    U32 lowestIn(U32 level, U32 word) const noexcept {
        return word * wordBits + lowestOne(levels_[level][word]);
    }
    U32 highestIn(U32 level, U32 word) const noexcept {
        return word * wordBits + highestOne(levels_[level][word]);
    }

    void wordFilled(U32 word) noexcept;
    void wordFreed(U32 word) noexcept;
    U32 lowest() const noexcept;
    U32 highest() const noexcept;

    // What is seldom needed: levels above the third, and ranges that begin amid the bits.
    void filledAbove(U32 word) noexcept;
    void freedAbove(U32 word) noexcept;
    bool noneWithin(U32 lo, U32 hi) const noexcept;
    U32 lowestWithin(U32 lo, U32 hi) const noexcept;
    U32 highestWithin(U32 lo, U32 hi) const noexcept;
    /// The bit of level `to` at which a walk down from a word of `level` arrives. The word has one.
    U32 lowestBelow(U32 word, U32 level, U32 to) const noexcept;
    U32 highestBelow(U32 word, U32 level, U32 to) const noexcept;

    // In every level a one stands for "clear" below: a clear bit in level 0, a word that is not
    // zero above.
    std::array<U64*, maxLevels> levels_{}; ///< the lowest first; they share one piece of storage
    U32 topLevel_ = thirdLevel;
    U32 setCount_ = 0;
    U32 clearBegin_ = HBitmap::null(); ///< the lowest clear bit; null when there is none
    U32 clearEnd_ = 0;                 ///< one past the highest clear bit; 0 when there is none
    U32 const size_;
    HBitmap::BitState const initialBitState_;
    U64 const id_;
    std::unique_ptr<U64[]> words_;
};

inline void Bitmap::setBit(U32 index) noexcept {
    if (index >= size_) [[unlikely]] {
        return;
    }
    U32 const word = index / wordBits;
    U64 const before = levels_[0][word];
    if ((before & bitOf(index)) == 0) {
        return;
    }
    U64 const after = before ^ bitOf(index);
    levels_[0][word] = after;
    ++setCount_;
    if (after != 0) { // the next clear bit on either side is in the same word
        if (index == clearBegin_) {
            clearBegin_ = word * wordBits + lowestOne(after);
        }
        if (index + 1 == clearEnd_) {
            clearEnd_ = word * wordBits + highestOne(after) + 1;
        }
        return;
    }
    wordFilled(word);
    if (index == clearBegin_) {
        clearBegin_ = lowest();
    }
    if (index + 1 == clearEnd_) {
        clearEnd_ = highest() + 1; // null is followed by 0
    }
}

inline void Bitmap::clearBit(U32 index) noexcept {
    if (index >= size_) [[unlikely]] {
        return;
    }
    U32 const word = index / wordBits;
    U64 const before = levels_[0][word];
    if ((before & bitOf(index)) != 0) {
        return;
    }
    levels_[0][word] = before | bitOf(index);
    --setCount_;
    if (before == 0) {
        wordFreed(word);
    }
    if (index < clearBegin_) {
        clearBegin_ = index;
    }
    if (index >= clearEnd_) {
        clearEnd_ = index + 1;
    }
}

/// A word of level 0 has no clear bit any more.
inline void Bitmap::wordFilled(U32 word) noexcept {
    U64 const left = levels_[1][word / wordBits] &= ~bitOf(word);
    word /= wordBits;
    // Without a branch: which words fill up is as random as the indices are.
    if ((levels_[thirdLevel][word / wordBits] &= ~(U64{left == 0} << word % wordBits)) == 0)
        [[unlikely]] {
        filledAbove(word / wordBits);
    }
}

/// A word of level 0 that had no clear bit gets one.
inline void Bitmap::wordFreed(U32 word) noexcept {
    levels_[1][word / wordBits] |= bitOf(word);
    word /= wordBits;
    levels_[thirdLevel][word / wordBits] |= bitOf(word);
    if (topLevel_ != thirdLevel) [[unlikely]] {
        freedAbove(word / wordBits);
    }
}

/// The lowest clear bit by the levels; null when there is none.
inline U32 Bitmap::lowest() const noexcept {
    if (setCount_ == size_) [[unlikely]] {
        return HBitmap::null();
    }
    U32 const word = topLevel_ == thirdLevel ? 0 : lowestBelow(0, topLevel_, thirdLevel + 1);
    return lowestIn(0, lowestIn(1, lowestIn(thirdLevel, word)));
}

inline U32 Bitmap::highest() const noexcept {
    if (setCount_ == size_) [[unlikely]] {
        return HBitmap::null();
    }
    U32 const word = topLevel_ == thirdLevel ? 0 : highestBelow(0, topLevel_, thirdLevel + 1);
    return highestIn(0, highestIn(1, highestIn(thirdLevel, word)));
}

inline U32 Bitmap::findClearBitInRange(U32 lo, U32 hi, Preference preference) const noexcept {
    if (preference == Preference::low) {
        U32 const found = clearBegin_;
        return lo <= found && found <= hi ? found : lowestWithin(lo, hi);
    }
    U32 const found = clearEnd_ - 1;
    return lo <= found && found <= hi ? found : highestWithin(lo, hi);
}

} // namespace Bask
