#include "qor/HashMap2018.h"
#include "runtime/qor/WalkedMap.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

class HashMap2018Iterator : public Support::WalkedMap {};

TEST_F(HashMap2018Iterator, StandsOnADeletedMemberUntilItMovesOn) {
    Map::Iterator it(*map);
    EXPECT_EQ(it.currNodeMaybeStale(), map->lookupNode(1));
    remove(1);
    EXPECT_TRUE(it); // it is not at its end, although it stands on nothing
    EXPECT_EQ(it.currNodeMaybeStale(), nullptr);
    EXPECT_EQ(it.currNodeMaybeStale(), nullptr);
    it.advance();
    EXPECT_EQ(it.currNodeMaybeStale(), map->lookupNode(2));
}

TEST_F(HashMap2018Iterator, NonStaleMemberIsTheOneThatFollowsADeletedOne) {
    Map::Iterator it(*map);
    remove(1);
    remove(2);
    EXPECT_EQ(it.currNodeNonStale(), map->lookupNode(3));
    EXPECT_EQ(it.currNodeMaybeStale(), map->lookupNode(3));
    it.advance(); // moves on from 3, to which it had moved
    EXPECT_EQ(it.key(), 4u);
    EXPECT_EQ(it.currNodeNonStale(), map->lookupNode(4));
}

TEST_F(HashMap2018Iterator, LastMemberDeletedLeavesNothingToMoveTo) {
    Map::Iterator byAdvance(*map);
    Map::Iterator byLook(*map);
    for (int step = 0; step < 4; ++step) {
        byAdvance.advance();
        byLook.advance();
    }
    remove(5);
    EXPECT_TRUE(byAdvance);
    byAdvance.advance();
    EXPECT_FALSE(byAdvance);
    EXPECT_EQ(byLook.currNodeNonStale(), nullptr);
    EXPECT_FALSE(byLook);
}

TEST_F(HashMap2018Iterator, AtItsEndFindsMembersInsertedLater) {
    Map::Iterator it(*map);
    while (it) {
        it.advance();
    }
    it.advance();
    EXPECT_FALSE(it);
    insert(6);
    insert(7);
    EXPECT_TRUE(it);
    EXPECT_EQ(it.key(), 6u);
    remove(6);
    it.advance();
    EXPECT_EQ(it.key(), 7u);
}

TEST_F(HashMap2018Iterator, GoesOnWithWhatIsInsertedAfterAllWasDeleted) {
    Map::Iterator onMember(*map);
    onMember.advance();
    Map::Iterator onDeleted(*map);
    remove(1);
    Map::Iterator atEnd(*map);
    while (atEnd) {
        atEnd.advance();
    }
    map->memberDelAll();
    EXPECT_TRUE(onMember);
    EXPECT_EQ(onMember.currNodeMaybeStale(), nullptr);
    EXPECT_TRUE(onDeleted);
    EXPECT_FALSE(atEnd);
    insert(8);
    insert(9);
    onMember.advance();
    EXPECT_EQ(onMember.key(), 8u);
    EXPECT_EQ(onDeleted.currNodeNonStale()->key(), 8u);
    EXPECT_EQ(atEnd.key(), 8u);
    onMember.advance();
    EXPECT_EQ(onMember.key(), 9u);
}

TEST_F(HashMap2018Iterator, DeletingAllEndsAWalkThatStoodOnAMember) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 2) {
                      map->memberDelAll();
                  }
              }),
              (Numbers{1, 2}));
}

TEST_F(HashMap2018Iterator, EndsWhenTheCollectionGoes) {
    Map::Iterator onMember(*map);
    Map::Iterator onDeleted(*map);
    onDeleted.advance();
    remove(2);
    map.reset();
    for (Map::Iterator* const it : {&onMember, &onDeleted}) {
        EXPECT_FALSE(*it);
        EXPECT_EQ(it->currNodeMaybeStale(), nullptr);
        EXPECT_EQ(it->currNodeNonStale(), nullptr);
        it->advance();
        EXPECT_FALSE(*it);
    }
}

TEST_F(HashMap2018Iterator, MayDestroyTheCollection) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 3) {
                      map.reset();
                  }
              }),
              (Numbers{1, 2, 3}));
}

TEST_F(HashMap2018Iterator, WalksMayEndInAnyOrder) {
    auto first = std::make_unique<Map::Iterator>(*map);
    auto second = std::make_unique<Map::Iterator>(*map);
    auto third = std::make_unique<Map::Iterator>(*map);
    second.reset();
    remove(1);
    first.reset();
    remove(2);
    EXPECT_EQ(third->currNodeNonStale()->key(), 3u);
    third.reset();
    remove(3);
    EXPECT_EQ(keys(), (Numbers{4, 5}));
}

} // namespace
