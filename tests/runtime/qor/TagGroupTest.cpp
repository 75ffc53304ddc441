#include "qor/TagGroup.h"

#include "support/Random.h"

#include <gtest/gtest.h>

#include <array>

namespace {

using Qor::TagGroup;

constexpr U32 allSlots = (1u << TagGroup::slotCount) - 1;

TEST(TagGroup, IsFreeAndEndsSearchesAtFirst) {
    TagGroup const group;
    EXPECT_EQ(group.freeSlots(), allSlots);
    EXPECT_TRUE(group.endsSearch());
    for (U32 byte = 0; byte < 256; ++byte) {
        EXPECT_EQ(group.matches(byte << 24), 0u);
    }
}

TEST(TagGroup, FindsEveryTagInEverySlot) {
    for (U32 slot = 0; slot < TagGroup::slotCount; ++slot) {
        for (U32 byte = 0; byte < 256; ++byte) {
            TagGroup group;
            group.slotTake(slot, byte << 24 | 0x00ABCDEF);
            EXPECT_EQ(group.matches(byte << 24), 1u << slot);
            EXPECT_EQ(group.matches((byte ^ 0x80) << 24), 0u);
            EXPECT_EQ(group.freeSlots(), allSlots & ~(1u << slot));
            group.slotFree(slot);
            EXPECT_EQ(group.freeSlots(), allSlots);
        }
    }
}

TEST(TagGroup, FindsWhatASearchSlotBySlotFinds) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    TagGroup group;
    std::array<int, TagGroup::slotCount> bytes;
    bytes.fill(-1); // free
    for (int step = 0; step < 20000; ++step) {
        U32 const slot = random.below(TagGroup::slotCount);
        U32 const byte = 2 + random.below(5); // 0 and 1 share a tag
        bool const take = random.oneIn(2);
        bytes[slot] = take ? static_cast<int>(byte) : -1;
        take ? group.slotTake(slot, byte << 24) : group.slotFree(slot);
        U32 expected = 0;
        U32 expectedFree = 0;
        for (U32 at = 0; at < TagGroup::slotCount; ++at) {
            expected |= U32{bytes[at] == static_cast<int>(byte)} << at;
            expectedFree |= U32{bytes[at] == -1} << at;
        }
        ASSERT_EQ(group.matches(byte << 24), expected);
        ASSERT_EQ(group.freeSlots(), expectedFree);
    }
}

TEST(TagGroup, EndsSearchesAgainWhenAllWhoPassedAreGone) {
    TagGroup group;
    group.passedInc();
    group.passedInc();
    EXPECT_FALSE(group.endsSearch());
    group.passedDec();
    EXPECT_FALSE(group.endsSearch());
    group.passedDec();
    EXPECT_TRUE(group.endsSearch());
    EXPECT_EQ(group.freeSlots(), allSlots);
}

TEST(TagGroup, CountThatReachedItsBoundEndsNoSearchAnyMore) {
    TagGroup group;
    for (U32 member = 0; member < 70000; ++member) {
        group.passedInc();
        ASSERT_FALSE(group.endsSearch()) << member;
    }
    for (U32 member = 0; member < 70000; ++member) {
        group.passedDec();
        ASSERT_FALSE(group.endsSearch()) << member;
    }
}

} // namespace
