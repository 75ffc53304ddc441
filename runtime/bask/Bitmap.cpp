#include "bask/Bitmap.h"

#include <algorithm>

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
    for (U32 level = 1; level <= thirdLevel || bits[level - 1] > wordBits; ++level) {
        bits[level] = wordsFor(bits[level - 1]);
        words += wordsFor(bits[level]);
        topLevel_ = level;
    }
    words_ = std::make_unique_for_overwrite<U64[]>(words);
    U64* next = words_.get();
    for (U32 level = topLevel_ + 1; level-- > 0;) {
        levels_[level] = next;
        next += wordsFor(bits[level]);
        fill(levels_[level], bits[level], initialBitState);
    }
    if (initialBitState == HBitmap::BitState::set) {
        setCount_ = size;
    } else if (size != 0) {
        clearBegin_ = 0;
        clearEnd_ = size;
    }
}

Bitmap::~Bitmap() = default;

void Bitmap::filledAbove(U32 word) noexcept {
    for (U32 level = thirdLevel + 1; level <= topLevel_; ++level) {
        if ((levels_[level][word / wordBits] &= ~bitOf(word)) != 0) {
            return;
        }
        word /= wordBits;
    }
}

void Bitmap::freedAbove(U32 word) noexcept {
    for (U32 level = thirdLevel + 1; level <= topLevel_; ++level) {
        levels_[level][word / wordBits] |= bitOf(word);
        word /= wordBits;
    }
}

U32 Bitmap::lowestBelow(U32 word, U32 level, U32 to) const noexcept {
    for (; level != to; --level) {
        word = lowestIn(level, word);
    }
    return lowestIn(to, word);
}

U32 Bitmap::highestBelow(U32 word, U32 level, U32 to) const noexcept {
    for (; level != to; --level) {
        word = highestIn(level, word);
    }
    return highestIn(to, word);
}

/// Whether the range is empty or lies before or behind all clear bits.
bool Bitmap::noneWithin(U32 lo, U32 hi) const noexcept {
    return lo > hi || lo >= clearEnd_ || hi < clearBegin_;
}

// Both searches are of a range that does not have the bit at the wanted end of all clear ones. They
// look at the word of the bound first, and then go up until a level knows of a word on the wanted
// side that has a clear bit; from there the way down is certain. There is such a bit: the bound
// lies between the lowest and the highest clear bit.

U32 Bitmap::lowestWithin(U32 lo, U32 hi) const noexcept {
    if (noneWithin(lo, hi)) {
        return HBitmap::null();
    }
    U32 word = lo / wordBits;
    U64 wanted = ~U64{0} << (lo % wordBits);
    U32 level = 0;
    while ((levels_[level][word] & wanted) == 0) {
        wanted = ~U64{1} << (word % wordBits); // beyond this word
        word /= wordBits;
        ++level;
    }
    U32 const bit = word * wordBits + lowestOne(levels_[level][word] & wanted);
    U32 const found = level == 0 ? bit : lowestBelow(bit, level - 1, 0);
    return found <= hi ? found : HBitmap::null();
}

U32 Bitmap::highestWithin(U32 lo, U32 hi) const noexcept {
    if (noneWithin(lo, hi)) {
        return HBitmap::null();
    }
    U32 word = hi / wordBits;
    U64 wanted = ~U64{0} >> (wordBits - 1 - hi % wordBits);
    U32 level = 0;
    while ((levels_[level][word] & wanted) == 0) {
        wanted = bitOf(word) - 1; // before this word
        word /= wordBits;
        ++level;
    }
    U32 const bit = word * wordBits + highestOne(levels_[level][word] & wanted);
    U32 const found = level == 0 ? bit : highestBelow(bit, level - 1, 0);
    return found >= lo ? found : HBitmap::null();
}

} // namespace Bask
