#include "qor/HashMap2018.h"
#include "runtime/qor/MapKeys.h"
#include "support/Allocations.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <new>
#include <vector>

namespace {

using Support::keyOf;
using Support::Members;
using Support::membersOf;
using Numbers = Qor::HashMap2018<U32, int>;

TEST(HashMap2018Storage, GrowthDuringWalksLeavesThemOnTheirMembers) {
    Numbers map;
    std::vector<std::unique_ptr<Numbers::Iterator>> walks;
    for (U32 key = 0; key < 300; ++key) {
        map.newMember(key, 0);
        walks.push_back(std::make_unique<Numbers::Iterator>(map));
        while (walks.back()->key() != key) {
            walks.back()->advance();
        }
        for (U32 walk = 0; walk <= key; ++walk) {
            ASSERT_EQ(walks[walk]->key(), walk) << "with " << key + 1 << " members";
        }
    }
}

/// Closes the holes of a full collection, in which `hole(key)` members are deleted, while a walk
/// stands on each member and behind each deleted one.
void expectWalksSurviveClosing(std::function<bool(U32)> const& hole) {
    constexpr U32 count = 200;
    Numbers map(count);
    std::vector<std::unique_ptr<Numbers::Iterator>> walks;
    for (U32 key = 0; key < count; ++key) {
        map.newMember(key, 0);
        walks.push_back(std::make_unique<Numbers::Iterator>(map));
        while (walks.back()->key() != key) {
            walks.back()->advance();
        }
    }
    for (U32 key = 0; key < count; ++key) {
        if (hole(key)) {
            map.deleteMember(key);
        }
    }
    std::size_t const storage = map.storageSize();
    map.newMember(count, 0); // the array is full
    EXPECT_EQ(map.storageSize(), storage);
    for (U32 key = 0; key < count; ++key) {
        U32 next = key;
        while (hole(next) && next < count) {
            ++next;
        }
        EXPECT_EQ(walks[key]->currNodeMaybeStale(), hole(key) ? nullptr : map.lookupNode(key));
        EXPECT_EQ(walks[key]->currNodeNonStale(), map.lookupNode(next)) << key;
    }
}

TEST(HashMap2018Storage, ClosingEverySecondPlaceLeavesWalksOnTheirMembers) {
    expectWalksSurviveClosing([](U32 key) { return key % 2 == 0; });
    expectWalksSurviveClosing([](U32 key) { return key % 2 == 1; });
}

TEST(HashMap2018Storage, ClosingHolesAtOneEndLeavesWalksOnTheirMembers) {
    expectWalksSurviveClosing([](U32 key) { return key < 120; });
    expectWalksSurviveClosing([](U32 key) { return key >= 80; });
}

TEST(HashMap2018Storage, ClosingAllPlacesLeavesWalksAtTheNextMember) {
    expectWalksSurviveClosing([](U32) { return true; });
}

TEST(HashMap2018Storage, AMemberTakesThePlaceOfALastOneThatIsGone) {
    constexpr U32 count = 200;
    Numbers map(count);
    for (U32 key = 0; key < count; ++key) {
        map.newMember(key, 0);
    }
    std::size_t const storage = map.storageSize();
    for (U32 key = count; key < count + 10; ++key) {
        map.deleteMember(key - 1);
        map.newMember(key, 0); // the array was full
    }
    EXPECT_EQ(map.storageSize(), storage);
}

TEST(HashMap2018Storage, HundredsOfThousandsOfMembersStayInOrder) {
    constexpr U32 count = 300000;
    Numbers map;
    for (U32 key = 0; key < count; ++key) {
        map.newMember(key * 7, 1);
    }
    for (U32 key = 0; key < count; key += 3) {
        ASSERT_TRUE(map.deleteMember(key * 7));
    }
    EXPECT_EQ(map.memberCount(), count / 3 * 2);
    U32 expected = 0;
    for (Numbers::Iterator it(map); it; it.advance()) {
        expected += expected % 3 == 0 ? 1u : 0u;
        ASSERT_EQ(it.key(), expected * 7);
        ASSERT_FALSE(map.has(it.key() + 1));
        ++expected;
    }
    EXPECT_EQ(expected, count);
    EXPECT_LE(map.storageSize(), count * 32);
}

template <class K> class HashMap2018WithoutMemory : public testing::Test {};
TYPED_TEST_SUITE(HashMap2018WithoutMemory, Support::KeyTypes, Support::KeyNames);

/// Inserts a member with ever more allocations allowed until it succeeds; each failure must leave
/// the collection and a walk as they were.
template <class K> int failuresUntilInserted(Qor::HashMap2018<K, int>& map, U32 number) {
    Members const before = membersOf(map);
    K const key = keyOf<K>(number);
    typename Qor::HashMap2018<K, int>::Iterator walk(map);
    auto const* const member = walk.currNodeMaybeStale();
    for (U32 allowed = 0;; ++allowed) {
        try {
            Support::FailingAllocations const fail(allowed);
            map.newMember(key, 5);
        } catch (std::bad_alloc const&) {
            EXPECT_EQ(membersOf(map), before);
            EXPECT_EQ(map.memberCount(), before.size());
            EXPECT_EQ(walk.currNodeMaybeStale(), member);
            EXPECT_FALSE(map.has(key));
            continue;
        }
        return static_cast<int>(allowed);
    }
}

TYPED_TEST(HashMap2018WithoutMemory, InsertionThrowsAndChangesNothing) {
    Qor::HashMap2018<TypeParam, int> map;
    int failures = 0;
    for (U32 number = 0; number < 100; ++number) {
        failures += failuresUntilInserted(map, number);
        if (number % 3 == 0) {
            map.deleteMember(keyOf<TypeParam>(number / 2));
        }
    }
    EXPECT_GT(failures, 5);
    EXPECT_EQ(membersOf(map).back(), (Members::value_type{99, 5}));
}

TYPED_TEST(HashMap2018WithoutMemory, ReplacementAndDeletionNeedNone) {
    Qor::HashMap2018<TypeParam, int> map;
    std::vector<TypeParam> keys;
    for (U32 number = 0; number < 50; ++number) {
        keys.push_back(keyOf<TypeParam>(number));
        map.newMember(keys.back(), 1);
    }
    {
        Support::FailingAllocations const none(0);
        for (TypeParam const& key : keys) {
            map.memberIs(key, 2);
        }
        for (TypeParam const& key : keys) {
            map.deleteMember(key);
        }
        map.newMember(keys.front(), 3); // in the room that is there
        map.memberDelAll();
    }
    EXPECT_EQ(map.memberCount(), 0u);
}

} // namespace
