// The limit: the least that a three-level bitmap can do. It has room for 65,536 bits whatever the
// size, no number of levels to look at, no count, and checks nothing.

#include "pool/Work.h"

#include <algorithm>
#include <memory>

namespace {

// The word is not zero, so the builtins are defined.
constexpr U32 lowestOne(U64 word) { return static_cast<U32>(__builtin_ctzll(word)); }
constexpr U32 highestOne(U64 word) { return static_cast<U32>(63 ^ __builtin_clzll(word)); }
constexpr U64 bitOf(U32 index) { return U64{1} << (index % 64); }

class BareLoopPool {
public:
    explicit BareLoopPool(U32 size) {
        fill(levels_->bits, size);
        fill(levels_->words, (size + 63) / 64);
        fill(&levels_->top, (size + 4095) / 4096);
    }

    void giveBack(U32 index) {
        levels_->bits[index / 64] |= bitOf(index);
        levels_->words[index / 4096] |= bitOf(index / 64);
        levels_->top |= bitOf(index / 4096);
    }
    U32 takeLowest() {
        U32 const group = lowestOne(levels_->top);
        U32 const word = group * 64 + lowestOne(levels_->words[group]);
        return take(word * 64 + lowestOne(levels_->bits[word]));
    }
    U32 takeHighest() {
        U32 const group = highestOne(levels_->top);
        U32 const word = group * 64 + highestOne(levels_->words[group]);
        return take(word * 64 + highestOne(levels_->bits[word]));
    }

private:
    static void fill(U64* words, U32 ones) {
        std::fill_n(words, ones / 64, ~U64{0});
        if (ones % 64 != 0) {
            words[ones / 64] = bitOf(ones) - 1;
        }
    }

    U32 take(U32 index) {
        if ((levels_->bits[index / 64] &= ~bitOf(index)) == 0) {
            if ((levels_->words[index / 4096] &= ~bitOf(index / 64)) == 0) {
                levels_->top &= ~bitOf(index / 4096);
            }
        }
        return index;
    }

    struct Levels {
        U64 top;
        U64 words[16];
        U64 bits[1024];
    };
    // Only the words of the levels that the size needs are ever touched.
    std::unique_ptr<Levels> const levels_ = std::make_unique_for_overwrite<Levels>();
};

[[maybe_unused]] bool const registered = [] {
    Bench::addPoolCases<BareLoopPool, Bench::End::lowest>("bareLoop");
    Bench::addPoolCases<BareLoopPool, Bench::End::highest>("bareLoop");
    return true;
}();

} // namespace
