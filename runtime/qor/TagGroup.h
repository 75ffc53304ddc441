#pragma once

#include "pelo/Integers.h"

#include <array>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace Qor {

/// Sixteen bytes that stand for 14 slots of a hash index: of each member one byte of its hash, the
/// tag, so that all slots are compared at once, and how many members found no free slot here and
/// went on to the next group.
///
/// Cost: a search of the group is a few instructions where the processor has SSE2, else a loop.
class alignas(16) TagGroup {
public:
    static constexpr U32 slotCount = 14;

    /// The slots of the members whose hash has the same tag as `hash`, one bit a slot.
    U32 matches(U32 hash) const noexcept { return equal(tagOf(hash)); }
    U32 freeSlots() const noexcept { return equal(freeTag); }

    void slotTake(U32 slot, U32 hash) noexcept { tags_[slot] = static_cast<U8>(tagOf(hash)); }
    void slotFree(U32 slot) noexcept { tags_[slot] = freeTag; }

    /// Whether a member that is not in this group is in none of those behind it.
    bool endsSearch() const noexcept { return passed_ == 0; }

    /// One more member went on to the next group, or one that did is gone. A count that has reached
    /// its bound is not known any more and stays there, which costs searches and nothing else.
    void passedInc() noexcept {
        if (passed_ != manyPassed) {
            ++passed_;
        }
    }
    void passedDec() noexcept {
        if (passed_ != manyPassed) {
            --passed_;
        }
    }

private:
    static constexpr U8 freeTag = 0;
    static constexpr U16 manyPassed = 0xFFFF;

    /// The tag that each topmost byte of a hash gives, four times over.
    static constexpr std::array<U32, 256> repeatedTags = [] {
        std::array<U32, 256> tags{};
        for (U32 top = 0; top != 256; ++top) {
            tags[top] = 0x01010101u * (top == freeTag ? 1 : top);
        }
        return tags;
    }();
    static U32 tagOf(U32 hash) noexcept { return repeatedTags[hash >> 24]; }

    U32 equal(U32 repeatedTag) const noexcept {
#ifdef __SSE2__
        __m128i const tags = _mm_load_si128(reinterpret_cast<__m128i const*>(this));
        __m128i const same = _mm_cmpeq_epi8(tags, _mm_set1_epi32(static_cast<int>(repeatedTag)));
        return static_cast<U32>(_mm_movemask_epi8(same)) & ((1u << slotCount) - 1);
#else
        U32 slots = 0;
        for (U32 slot = 0; slot < slotCount; ++slot) {
            slots |= U32{tags_[slot] == static_cast<U8>(repeatedTag)} << slot;
        }
        return slots;
#endif
    }

    std::array<U8, slotCount> tags_{};
    U16 passed_ = 0;
};

} // namespace Qor
