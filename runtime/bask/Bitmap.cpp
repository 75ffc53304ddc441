#include "bask/Bitmap.h"

#include <algorithm>
#include <bit>

namespace Bask {
namespace {

constexpr U64 wordsFor(U64 bits) { return std::max<U64>((bits + 63) / 64, 1); }

/// Writes the words of one level: ones where bits are clear, but never past the last bit, where
/// they would be found.
void fill(U64* words, U64 bits, HBitmap::BitState state) {
    U64 const count = wordsFor(bits);
    std::fill_n(words, count, state == HBitmap::BitState::clear ? ~U64{0} : U64{0});
    if (bits % 64 != 0) {
        words[count - 1] &= (U64{1} << bits % 64) - 1;
    }
}

} // namespace

Bitmap::Bitmap(U64 id, U32 size, HBitmap::BitState initialBitState)
    : size_(size), initialBitState_(initialBitState), id_(id) {
    std::array<U64, maxLevels> bits{size}; // of each level, up to the first that fits into one word
    U64 words = wordsFor(size);
    while (bits[topLevel_] > wordBits) {
        bits[topLevel_ + 1] = wordsFor(bits[topLevel_]);
        ++topLevel_;
        words += wordsFor(bits[topLevel_]);
    }
    words_ = std::make_unique_for_overwrite<U64[]>(words);
    U64* next = words_.get();
    for (U32 level = topLevel_ + 1; level-- > 0;) {
        levels_[level] = next;
        next += wordsFor(bits[level]);
        fill(levels_[level], bits[level], initialBitState);
    }
    setCount_ = initialBitState == HBitmap::BitState::set ? size : 0;
}

Bitmap::~Bitmap() = default;

// Both searches look at the word of the bound first, and then go up until a level knows of a word
// on the wanted side that has a clear bit; from there the way down is certain.

U32 Bitmap::lowestFrom(U32 lo) const noexcept {
    U64 word = lo / wordBits;
    U64 wanted = ~U64{0} << (lo % wordBits);
    for (U32 level = 0;; ++level) {
        if (U64 const found = levels_[level][word] & wanted; found != 0) {
            U64 const bit = word * wordBits + static_cast<U64>(std::countr_zero(found));
            return level == 0 ? static_cast<U32>(bit) : lowestBelow(level - 1, bit);
        }
        if (level == topLevel_) {
            return HBitmap::null();
        }
        wanted = ~U64{1} << (word % wordBits); // beyond this word
        word /= wordBits;
    }
}

U32 Bitmap::highestUpTo(U32 hi) const noexcept {
    U64 word = hi / wordBits;
    U64 wanted = ~U64{0} >> (wordBits - 1 - hi % wordBits);
    for (U32 level = 0;; ++level) {
        if (U64 const found = levels_[level][word] & wanted; found != 0) {
            U64 const bit = word * wordBits + static_cast<U64>(std::bit_width(found) - 1);
            return level == 0 ? static_cast<U32>(bit) : highestBelow(level - 1, bit);
        }
        if (level == topLevel_) {
            return HBitmap::null();
        }
        wanted = bitOf(word) - 1; // before this word
        word /= wordBits;
    }
}

} // namespace Bask
