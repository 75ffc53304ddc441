#include "qor/MemberIndex.h"

#include "runtime/qor/MapKeys.h"
#include "support/Allocations.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <map>
#include <new>
#include <vector>

namespace {

using Qor::DirectIndex;
using Qor::HashIndex;
using Qor::keyHash;
using Qor::noPosition;

/// A hash index of members that are their positions, each with a hash that the test chooses. A
/// model keeps them for the index to be filled again when it grows.
class Filed {
public:
    void insert(U32 position, U32 hash) {
        hashes_[position] = hash;
        if (index_.hasRoom(0)) {
            index_.insert(0, hash, position);
            return;
        }
        index_.grow(0);
        for (auto const& [member, itsHash] : hashes_) {
            index_.insert(0, itsHash, member);
        }
    }
    U32 take(U32 position) {
        U32 const hash = hashes_.at(position);
        hashes_.erase(position);
        return index_.take(0, hash, [=](U32 at) { return at == position; });
    }
    void takeAt(U32 position) {
        U32 const hash = hashes_.at(position);
        hashes_.erase(position);
        index_.takeAt(0, hash, position);
    }
    U32 find(U32 position, U32 hash) const {
        return index_.find(0, hash, [=](U32 at) { return at == position; });
    }
    /// How many members a search for one that is not there looks at.
    U32 looks(U32 hash) const {
        U32 looks = 0;
        index_.find(0, hash, [&looks](U32) {
            ++looks;
            return false;
        });
        return looks;
    }
    void expectAllFound() const {
        for (auto const& [position, hash] : hashes_) {
            ASSERT_EQ(find(position, hash), position);
        }
    }

    std::map<U32, U32> const& hashes() const { return hashes_; }
    HashIndex& index() { return index_; }

private:
    HashIndex index_;
    std::map<U32, U32> hashes_;
};

/// The hash whose search begins at `group` of at most 2^23 groups, with the given tag.
constexpr U32 hashAt(U32 group, U32 tag) { return tag << 24 | (group << 1 & 0x00FFFFFF) | 1; }

TEST(HashIndex, OfNothingFindsNothing) {
    Filed filed;
    EXPECT_EQ(filed.find(0, hashAt(0, 5)), noPosition);
    EXPECT_EQ(filed.index().take(0, 1, [](U32) { return true; }), noPosition);
    EXPECT_FALSE(filed.index().hasRoom(0));
    EXPECT_EQ(filed.index().storageSize(), 0u);
    filed.index().clear();
    filed.index().reset();
    EXPECT_EQ(filed.looks(1), 0u);
}

TEST(HashIndex, FindsMembersOfOneHashByWhatTellsThemApart) {
    Filed filed;
    for (U32 position = 0; position < 200; ++position) {
        filed.insert(position, hashAt(3, 7));
        filed.expectAllFound();
    }
    EXPECT_EQ(filed.find(200, hashAt(3, 7)), noPosition);
    EXPECT_EQ(filed.looks(hashAt(3, 7)), 200u);
    EXPECT_EQ(filed.looks(hashAt(3, 8)), 0u);
}

TEST(HashIndex, SearchesGoOnFromTheLastGroupToTheFirst) {
    Filed filed;
    U32 const last = hashAt(0xFFFFFF, 9);
    for (U32 position = 0; position < 100; ++position) {
        filed.insert(position, last);
    }
    for (U32 position = 100; position < 130; ++position) {
        filed.insert(position, hashAt(0, 9));
    }
    filed.expectAllFound();
    for (U32 position = 0; position < 130; position += 2) {
        EXPECT_EQ(filed.take(position), position);
        filed.expectAllFound();
    }
}

TEST(HashIndex, MemberTakenOutIsNotFound) {
    Filed filed;
    filed.insert(0, hashAt(1, 1));
    filed.insert(1, hashAt(1, 1));
    EXPECT_EQ(filed.take(0), 0u);
    EXPECT_EQ(filed.find(0, hashAt(1, 1)), noPosition);
    EXPECT_EQ(filed.find(1, hashAt(1, 1)), 1u);
    EXPECT_EQ(filed.index().take(0, hashAt(1, 2), [](U32) { return true; }), noPosition);
}

TEST(HashIndex, MemberTakenOutByItsPositionIsNotFound) {
    Filed filed;
    filed.insert(0, hashAt(1, 1));
    filed.insert(1, hashAt(1, 2));
    filed.takeAt(0); // the only one with its tag
    EXPECT_EQ(filed.looks(hashAt(1, 1)), 0u);
    filed.expectAllFound();
    filed.insert(2, hashAt(1, 2));
    filed.takeAt(1); // one of two
    EXPECT_EQ(filed.looks(hashAt(1, 2)), 1u);
    filed.expectAllFound();
}

TEST(HashIndex, MembersThatComeAndGoNeedTheRoomOfThoseThatAreThere) {
    Filed filed;
    for (U32 position = 0; position < 1000; ++position) {
        filed.insert(position, hashAt(position, 1));
        if (position % 2 == 0) {
            filed.takeAt(position);
        } else {
            filed.take(position);
        }
    }
    EXPECT_EQ(filed.index().storageSize(), 16u + 64u); // one group
}

TEST(HashIndex, MembersThatWentOnAreTakenOutByTheirPositions) {
    Filed filed;
    U32 position = 0;
    for (; position < 20; ++position) {
        filed.insert(position, hashAt(2, 4 + position % 2)); // more than a group has slots
    }
    filed.insert(position, hashAt(2, 9)); // alone with its tag, and not in its first group
    filed.insert(position + 1, hashAt(3, 9));
    filed.takeAt(position);
    EXPECT_EQ(filed.looks(hashAt(3, 9)), 1u);
    filed.expectAllFound();
    while (position-- != 0) {
        filed.takeAt(position);
        ASSERT_EQ(filed.find(position, hashAt(2, 4 + position % 2)), noPosition);
        ASSERT_NO_FATAL_FAILURE(filed.expectAllFound());
    }
    EXPECT_EQ(filed.looks(hashAt(2, 4)), 0u);
}

TEST(HashIndex, OldMembersMakeNoSearchLonger) {
    Filed filed;
    for (U32 position = 0; position < 60; ++position) {
        filed.insert(position, hashAt(2, 4));
    }
    for (U32 position = 0; position < 60; ++position) {
        filed.take(position);
    }
    for (U32 position = 0; position < 20; ++position) {
        filed.insert(position, hashAt(3, 4)); // where the others had gone on to
    }
    EXPECT_EQ(filed.looks(hashAt(2, 4)), 0u);
    EXPECT_EQ(filed.looks(hashAt(3, 4)), 20u);
}

TEST(HashIndex, SearchEndsAlsoWhenMembersHavePassedEveryGroup) {
    // Two groups of 14 slots: members of each stand in the other one, so that neither ends a
    // search.
    Filed filed;
    for (U32 position = 0; position < 15; ++position) {
        filed.insert(position, hashAt(0, 1)); // 14 in the first group, 1 in the second
    }
    for (U32 position = 0; position < 13; ++position) {
        filed.take(position);
    }
    for (U32 position = 20; position < 34; ++position) {
        filed.insert(position, hashAt(1, 2)); // 13 in the second group, 1 in the first
    }
    EXPECT_EQ(filed.index().storageSize(), 2 * (16u + 64u));
    EXPECT_EQ(filed.looks(hashAt(0, 5)), 0u);
    EXPECT_EQ(filed.looks(hashAt(0, 1)), 2u);
    EXPECT_EQ(filed.looks(hashAt(1, 2)), 14u);
    filed.expectAllFound();
}

TEST(HashIndex, ClearForgetsAllMembersAndKeepsTheRoom) {
    Filed filed;
    for (U32 position = 0; position < 100; ++position) {
        filed.insert(position, hashAt(position, position));
    }
    std::size_t const storage = filed.index().storageSize();
    filed.index().clear();
    EXPECT_EQ(filed.index().storageSize(), storage);
    EXPECT_EQ(filed.find(5, hashAt(5, 5)), noPosition);
    Support::FailingAllocations const none(0);
    for (U32 position = 0; position < 100; ++position) {
        ASSERT_TRUE(filed.index().hasRoom(0));
        filed.index().insert(0, hashAt(position, position), position);
    }
    filed.expectAllFound();
}

TEST(HashIndex, ResetGivesTheRoomBack) {
    Filed filed;
    filed.insert(1, hashAt(1, 1));
    filed.index().reset();
    EXPECT_EQ(filed.index().storageSize(), 0u);
    EXPECT_EQ(filed.find(1, hashAt(1, 1)), noPosition);
    filed.insert(2, hashAt(1, 1));
    filed.expectAllFound();
}

TEST(HashIndex, WithoutMemoryGrowthChangesNothing) {
    Filed filed;
    for (U32 position = 0; filed.index().storageSize() == 0 || filed.index().hasRoom(0);
         ++position) {
        filed.insert(position, hashAt(position, 3));
    }
    for (U32 allowed = 0; allowed < 2; ++allowed) {
        Support::FailingAllocations const fail(allowed);
        EXPECT_THROW(filed.index().grow(0), std::bad_alloc);
    }
    filed.expectAllFound();
    EXPECT_FALSE(filed.index().hasRoom(0));
}

TEST(HashIndex, RandomMembersOfFewHashesAreAllFound) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    Filed filed;
    for (U32 step = 0; step < 20000; ++step) {
        bool const growing = step / 500 % 2 == 0;
        if (filed.hashes().empty() || !random.oneIn(growing ? 3 : 1)) {
            filed.insert(step, hashAt(random.below(4) - 1, random.below(3)));
        } else {
            auto const at = filed.hashes().lower_bound(random.below(step));
            U32 const position =
                at == filed.hashes().end() ? filed.hashes().begin()->first : at->first;
            if (random.oneIn(2)) {
                filed.takeAt(position);
            } else {
                ASSERT_EQ(filed.take(position), position);
            }
        }
        if (step % 50 == 0) {
            ASSERT_NO_FATAL_FAILURE(filed.expectAllFound());
            ASSERT_EQ(filed.find(step + 1, hashAt(0, 1)), noPosition);
        }
    }
}

TEST(DirectIndex, FindsMembersByTheirNumbers) {
    using Support::SmallNumber;
    DirectIndex index;
    auto const never = [](U32) { return false; };
    auto const find = [&](U16 number) { return index.find(SmallNumber{number}, 1, never); };
    EXPECT_EQ(find(0), noPosition);
    EXPECT_EQ(find(65535), noPosition);
    EXPECT_EQ(index.take(SmallNumber{9}, 1, never), noPosition);
    index.grow(SmallNumber{9});
    EXPECT_TRUE(index.hasRoom(SmallNumber{9}));
    EXPECT_EQ(index.storageSize(), 16 * sizeof(U32));
    index.insert(SmallNumber{9}, 1, 4);
    EXPECT_EQ(find(9), 4u);
    EXPECT_EQ(find(8), noPosition);
    index.grow(SmallNumber{65535});
    EXPECT_TRUE(index.hasRoom(SmallNumber{65535}));
    EXPECT_EQ(index.storageSize(), 65536 * sizeof(U32));
    EXPECT_EQ(find(9), noPosition); // grown, it has forgotten its members
    index.insert(SmallNumber{65535}, 1, 0);
    EXPECT_EQ(find(65535), 0u);
    EXPECT_EQ(index.take(SmallNumber{65535}, 1, never), 0u);
    EXPECT_EQ(find(65535), noPosition);
    index.insert(SmallNumber{7}, 1, 1);
    index.takeAt(SmallNumber{7}, 1, 1);
    EXPECT_EQ(find(7), noPosition);
    index.insert(SmallNumber{7}, 1, 1);
    index.clear();
    EXPECT_EQ(find(7), noPosition);
    index.reset();
    EXPECT_EQ(index.storageSize(), 0u);
    EXPECT_FALSE(index.hasRoom(SmallNumber{0}));
}

TEST(KeyHash, IsNeverZero) {
    EXPECT_NE(keyHash(Support::SameHash{5}), 0u);
    EXPECT_NE(keyHash(Support::SmallNumber{0}), 0u);
    EXPECT_NE(keyHash(Pelo::String()), 0u);
    EXPECT_NE(keyHash(0), 0u);
}

TEST(KeyHash, IsTheSameForEqualKeysAndSpreadsOthers) {
    std::map<U32, int> hashes;
    for (U32 number = 0; number < 10000; ++number) {
        EXPECT_EQ(keyHash(number), keyHash(number));
        ++hashes[keyHash(number)];
    }
    EXPECT_GE(hashes.size(), 9990u);
}

} // namespace
