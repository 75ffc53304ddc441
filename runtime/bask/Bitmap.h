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
/// any clear bit, so a search goes down through one word a level (three levels for 65,536 bits, six
/// at most), and one that begins amid the bits goes up as many first. Setting and clearing touch
/// one word, and those above it only when a word fills up or stops being full. The number of set
/// bits is kept.
///
/// A size from 0 to 2^32 - 1 is valid. Bits at or past the size cannot be set or cleared (nothing
/// happens), test as not set, are not counted and are never found. Memory: one bit a bit, and 1/63
/// more for the levels above.
///
/// Not thread-safe.
class VORNIC_RUNTIME_API Bitmap final : public Pelo::Node, public Pelo::SlabAllocated<Bitmap> {
public:
    /// `id` is a number of the owner's choice, which the bitmap only keeps; `size` is in bits.
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

    ~Bitmap() override;

    static constexpr U64 bitOf(U64 index) noexcept { return U64{1} << (index % wordBits); }

    // The word has a one, so the builtins are defined; the standard functions test for zero first,
    // which doubles the cost of a search.
    U64 lowestIn(U32 level, U64 word) const noexcept {
        return word * wordBits + static_cast<U32>(__builtin_ctzll(levels_[level][word]));
    }
    U64 highestIn(U32 level, U64 word) const noexcept {
        return word * wordBits + static_cast<U32>(63 ^ __builtin_clzll(levels_[level][word]));
    }

    void wordFilled(U64 word) noexcept;
    void wordFreed(U64 word) noexcept;
    U32 lowest() const noexcept {
        return levels_[topLevel_][0] == 0 ? HBitmap::null() : lowestBelow(topLevel_, 0);
    }
    U32 highest() const noexcept {
        return levels_[topLevel_][0] == 0 ? HBitmap::null() : highestBelow(topLevel_, 0);
    }
    U32 lowestFrom(U32 lo) const noexcept;
    U32 highestUpTo(U32 hi) const noexcept;

    /// The clear bit below a word of that level that has one.
    U32 lowestBelow(U32 level, U64 word) const noexcept;
    U32 highestBelow(U32 level, U64 word) const noexcept;

    // In every level a one stands for "clear" below: a clear bit in level 0, a word that is not
    // zero above.
    std::array<U64*, maxLevels> levels_{}; ///< the lowest first; they share one piece of storage
    U32 topLevel_ = 0;
    U32 setCount_ = 0;
    U32 const size_;
    HBitmap::BitState const initialBitState_;
    U64 const id_;
    std::unique_ptr<U64[]> words_;
};

inline void Bitmap::setBit(U32 index) noexcept {
    if (index >= size_) [[unlikely]] {
        return;
    }
    U64& word = levels_[0][index / wordBits];
    if ((word & bitOf(index)) != 0) {
        word ^= bitOf(index);
        ++setCount_;
        if (word == 0) [[unlikely]] {
            wordFilled(index / wordBits);
        }
    }
}

inline void Bitmap::clearBit(U32 index) noexcept {
    if (index >= size_) [[unlikely]] {
        return;
    }
    U64& word = levels_[0][index / wordBits];
    if ((word & bitOf(index)) == 0) {
        --setCount_;
        if (word == 0) [[unlikely]] {
            wordFreed(index / wordBits);
        }
        word |= bitOf(index);
    }
}

/// A word of level 0 has no clear bit any more.
inline void Bitmap::wordFilled(U64 word) noexcept {
    for (U32 level = 1; level <= topLevel_; ++level) {
        U64& above = levels_[level][word / wordBits];
        above &= ~bitOf(word);
        if (above != 0) {
            return;
        }
        word /= wordBits;
    }
}

/// A word of level 0 that had no clear bit gets one.
inline void Bitmap::wordFreed(U64 word) noexcept {
    for (U32 level = 1; level <= topLevel_; ++level) {
        levels_[level][word / wordBits] |= bitOf(word);
        word /= wordBits;
    }
}

inline U32 Bitmap::lowestBelow(U32 level, U64 word) const noexcept {
    if (level >= 5) {
        word = lowestIn(5, word);
    }
    if (level >= 4) {
        word = lowestIn(4, word);
    }
    if (level >= 3) {
        word = lowestIn(3, word);
    }
    if (level >= 2) {
        word = lowestIn(2, word);
    }
    if (level >= 1) {
        word = lowestIn(1, word);
    }
    return static_cast<U32>(lowestIn(0, word));
}

inline U32 Bitmap::highestBelow(U32 level, U64 word) const noexcept {
    if (level >= 5) {
        word = highestIn(5, word);
    }
    if (level >= 4) {
        word = highestIn(4, word);
    }
    if (level >= 3) {
        word = highestIn(3, word);
    }
    if (level >= 2) {
        word = highestIn(2, word);
    }
    if (level >= 1) {
        word = highestIn(1, word);
    }
    return static_cast<U32>(highestIn(0, word));
}

inline U32 Bitmap::findClearBitInRange(U32 lo, U32 hi, Preference preference) const noexcept {
    if (lo > hi || lo >= size_) [[unlikely]] {
        return HBitmap::null();
    }
    if (preference == Preference::low) {
        U32 const found = lo == 0 ? lowest() : lowestFrom(lo);
        return found <= hi ? found : HBitmap::null(); // null is above every bound but itself
    }
    U32 const found = hi >= size_ - 1 ? highest() : highestUpTo(hi);
    return found >= lo ? found : HBitmap::null();
}

} // namespace Bask
