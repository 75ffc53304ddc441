#include "qor/HashMap2018.h"

#include "runtime/qor/MapKeys.h"

#include <gtest/gtest.h>

#include <limits>
#include <memory>
#include <optional>

namespace {

using Qor::HashMap2018;
using Support::keyOf;
using Support::Members;
using Support::membersOf;

template <class K> class HashMap2018Test : public testing::Test {
protected:
    using Map = HashMap2018<K, int>;
    using Change = typename Map::Change;

    void insert(U32 number, int value) { map.newMember(keyOf<K>(number), value); }
    Change set(U32 number, int value) { return map.memberIs(keyOf<K>(number), value); }
    std::optional<int> remove(U32 number) { return map.deleteMember(keyOf<K>(number)); }
    std::optional<int> lookup(U32 number) const {
        auto const* const member = map.lookupNode(keyOf<K>(number));
        EXPECT_EQ(member != nullptr, map.has(keyOf<K>(number)));
        return member == nullptr ? std::nullopt : std::optional(member->value());
    }
    Members members() const { return membersOf(map); }

    Map map;
};
TYPED_TEST_SUITE(HashMap2018Test, Support::KeyTypes, Support::KeyNames);

TYPED_TEST(HashMap2018Test, IsEmptyAtFirst) {
    EXPECT_EQ(this->map.memberCount(), 0u);
    EXPECT_EQ(this->members(), Members{});
    EXPECT_EQ(this->lookup(1), std::nullopt);
    EXPECT_EQ(this->remove(1), std::nullopt);
    EXPECT_EQ(this->map.storageSize(), 0u);
    this->map.memberDelAll();
    EXPECT_EQ(this->map.memberCount(), 0u);
}

TYPED_TEST(HashMap2018Test, FindsWhatWasInserted) {
    this->insert(7, 70);
    this->insert(0, 1);
    EXPECT_EQ(this->lookup(7), 70);
    EXPECT_EQ(this->lookup(0), 1);
    EXPECT_EQ(this->lookup(8), std::nullopt);
    EXPECT_EQ(this->map.memberCount(), 2u);
    EXPECT_EQ(this->map.lookupNode(keyOf<TypeParam>(7))->key(), keyOf<TypeParam>(7));
}

TYPED_TEST(HashMap2018Test, WalksInTheOrderOfInsertion) {
    this->insert(9, 1);
    this->insert(3, 2);
    this->insert(65535, 3);
    this->insert(0, 4);
    EXPECT_EQ(this->members(), (Members{{9, 1}, {3, 2}, {65535, 3}, {0, 4}}));
}

TYPED_TEST(HashMap2018Test, KeySetAgainKeepsItsPlace) {
    this->insert(1, 10);
    this->insert(2, 20);
    this->insert(3, 30);
    this->insert(1, 11);
    EXPECT_EQ(this->set(2, 21), TestFixture::Change::replaced);
    EXPECT_EQ(this->members(), (Members{{1, 11}, {2, 21}, {3, 30}}));
    EXPECT_EQ(this->map.memberCount(), 3u);
}

TYPED_TEST(HashMap2018Test, KeyDeletedAndInsertedAgainGoesLast) {
    this->insert(1, 10);
    this->insert(2, 20);
    this->insert(3, 30);
    this->remove(1);
    this->insert(1, 11);
    EXPECT_EQ(this->members(), (Members{{2, 20}, {3, 30}, {1, 11}}));
    this->remove(1);
    this->insert(1, 12);
    EXPECT_EQ(this->members(), (Members{{2, 20}, {3, 30}, {1, 12}}));
}

TYPED_TEST(HashMap2018Test, SaysWhatChanged) {
    EXPECT_EQ(this->set(1, 10), TestFixture::Change::inserted);
    EXPECT_EQ(this->set(1, 10), TestFixture::Change::none);
    EXPECT_EQ(this->set(1, 11), TestFixture::Change::replaced);
    EXPECT_EQ(this->set(1, 11), TestFixture::Change::none);
    this->remove(1);
    EXPECT_EQ(this->set(1, 11), TestFixture::Change::inserted);
}

TYPED_TEST(HashMap2018Test, DeletionReturnsTheValue) {
    this->insert(1, 10);
    this->insert(2, 20);
    EXPECT_EQ(this->remove(1), 10);
    EXPECT_EQ(this->remove(1), std::nullopt);
    EXPECT_EQ(this->lookup(1), std::nullopt);
    EXPECT_EQ(this->members(), (Members{{2, 20}}));
    EXPECT_EQ(this->map.memberCount(), 1u);
}

TYPED_TEST(HashMap2018Test, ValueExchangeGivesTheFormerValue) {
    this->insert(1, 10);
    this->insert(2, 20);
    EXPECT_EQ(this->map.valueExchange(*this->map.lookupNode(keyOf<TypeParam>(2)), 21), 20);
    EXPECT_EQ(this->members(), (Members{{1, 10}, {2, 21}}));
}

TYPED_TEST(HashMap2018Test, KeyAndValueMayBeReferencesIntoTheCollection) {
    for (U32 number = 0; number < 40; ++number) { // the array grows meanwhile
        this->insert(number, static_cast<int>(number));
        auto const* first = this->map.lookupNode(keyOf<TypeParam>(0));
        this->map.memberIs(keyOf<TypeParam>(1000 + number), first->value());
        first = this->map.lookupNode(keyOf<TypeParam>(0));
        this->map.memberIs(first->key(), static_cast<int>(number));
        EXPECT_EQ(this->lookup(1000 + number), number == 0 ? 0 : static_cast<int>(number) - 1);
    }
    auto const* const last = this->map.lookupNode(keyOf<TypeParam>(39));
    EXPECT_EQ(this->map.deleteMember(last->key()), 39);
    EXPECT_EQ(this->lookup(39), std::nullopt);
}

TYPED_TEST(HashMap2018Test, DeletingAllLeavesNoMemberAndNoStorage) {
    for (U32 number = 0; number < 100; ++number) {
        this->insert(number, 1);
    }
    EXPECT_GT(this->map.storageSize(), 0u);
    this->map.memberDelAll();
    EXPECT_EQ(this->members(), Members{});
    EXPECT_EQ(this->map.memberCount(), 0u);
    EXPECT_EQ(this->map.storageSize(), 0u);
    EXPECT_EQ(this->lookup(5), std::nullopt);
    this->insert(5, 50);
    this->insert(4, 40);
    EXPECT_EQ(this->members(), (Members{{5, 50}, {4, 40}}));
}

TYPED_TEST(HashMap2018Test, ManyMembersAreFoundWhileTheyComeAndGo) {
    constexpr U32 count = 400;
    Members expected;
    for (U32 number = 0; number < count; ++number) {
        this->insert(number, static_cast<int>(number));
        expected.emplace_back(number, static_cast<int>(number));
        for (U32 other = 0; other <= number; other += 37) {
            ASSERT_EQ(this->lookup(other), static_cast<int>(other)) << number;
        }
    }
    EXPECT_EQ(this->members(), expected);
    for (U32 number = 0; number < count; number += 2) {
        ASSERT_EQ(this->remove(number), static_cast<int>(number));
        ASSERT_EQ(this->lookup(number), std::nullopt);
    }
    std::erase_if(expected, [](auto const& member) { return member.first % 2 == 0; });
    EXPECT_EQ(this->members(), expected);
    for (U32 number = 0; number < count; ++number) {
        bool const there = number % 2 == 1;
        ASSERT_EQ(this->lookup(number),
                  there ? std::optional(static_cast<int>(number)) : std::nullopt);
    }
}

TYPED_TEST(HashMap2018Test, SizeHintReservesTheArrayAndChangesNothingElse) {
    typename TestFixture::Map hinted(100);
    std::size_t const reserved = hinted.storageSize();
    EXPECT_GE(reserved, 100 * sizeof(typename TestFixture::Map::Member));
    EXPECT_EQ(hinted.memberCount(), 0u);
    EXPECT_EQ(membersOf(hinted), Members{});
    for (U32 number = 0; number < 150; ++number) {
        hinted.newMember(keyOf<TypeParam>(number), 5);
    }
    EXPECT_EQ(membersOf(hinted).size(), 150u);
}

TEST(HashMap2018, HoldsValuesThatOnlyMove) {
    HashMap2018<Pelo::String, std::unique_ptr<int>> map;
    map.newMember("one", std::make_unique<int>(1));
    map.newMember("two", std::make_unique<int>(2));
    map.newMember("one", std::make_unique<int>(11));
    EXPECT_EQ(*map.lookupNode("one")->value(), 11);
    std::optional<std::unique_ptr<int>> const removed = map.deleteMember("two");
    EXPECT_EQ(**removed, 2);
    EXPECT_EQ(*map.valueExchange(*map.lookupNode("one"), nullptr), 11);
}

TEST(HashMap2018, NumbersOfEverySizeAndSignAreKeys) {
    HashMap2018<int, bool> integers;
    for (int const key :
         {0, -1, 1, std::numeric_limits<int>::min(), std::numeric_limits<int>::max()}) {
        integers.newMember(key, key < 0);
        EXPECT_EQ(integers.lookupNode(key)->value(), key < 0);
    }
    HashMap2018<U64, bool> wide;
    wide.newMember(0, true);
    wide.newMember(U64{1} << 32, false);
    wide.newMember(~U64{0}, true);
    EXPECT_TRUE(wide.lookupNode(0)->value());
    EXPECT_FALSE(wide.lookupNode(U64{1} << 32)->value());
    EXPECT_EQ(wide.memberCount(), 3u);
}

TEST(HashMap2018, EveryNumberOfADirectKeyIsPossible) {
    HashMap2018<Support::SmallNumber, int> map;
    map.newMember(Support::SmallNumber{65535}, 1);
    EXPECT_FALSE(map.has(Support::SmallNumber{65534}));
    for (U32 number = 0; number < 65536; ++number) {
        map.newMember(keyOf<Support::SmallNumber>(number), static_cast<int>(number));
    }
    EXPECT_EQ(map.memberCount(), 65536u);
    Members const members = membersOf(map);
    EXPECT_EQ(members.front(), (Members::value_type{65535, 65535}));
    EXPECT_EQ(members.back(), (Members::value_type{65534, 65534}));
}

} // namespace
