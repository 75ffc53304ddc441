#include "qor/HashMap2018.h"
#include "runtime/qor/WalkedMap.h"

#include <gtest/gtest.h>

#include <numeric>
#include <utility>

namespace {

using Support::Members;
using Support::membersOf;

class HashMap2018Walk : public Support::WalkedMap {};

TEST_F(HashMap2018Walk, OfAnEmptyCollectionIsAtItsEnd) {
    Map const empty;
    Map::Iterator it(empty);
    EXPECT_FALSE(it);
    EXPECT_EQ(it.currNodeMaybeStale(), nullptr);
    EXPECT_EQ(it.currNodeNonStale(), nullptr);
    it.advance();
    EXPECT_FALSE(it);
}

TEST_F(HashMap2018Walk, VisitsEachMemberOnce) {
    EXPECT_EQ(visited([](U32) {}), (Numbers{1, 2, 3, 4, 5}));
}

TEST_F(HashMap2018Walk, MayDeleteTheCurrentMember) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key % 2 == 1) {
                      remove(key);
                  }
              }),
              (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(keys(), (Numbers{2, 4}));
}

TEST_F(HashMap2018Walk, MayDeleteTheMemberThatItGaveInsteadOfItsKey) {
    Numbers visited;
    for (Map::Iterator it(*map); it; it.advance()) {
        visited.push_back(it.key());
        if (it.key() % 2 == 1) {
            EXPECT_EQ(map->deleteMember(*it.currNodeMaybeStale()),
                      static_cast<int>(visited.back()));
            EXPECT_EQ(it.currNodeMaybeStale(), nullptr);
            EXPECT_FALSE(map->has(visited.back()));
        }
    }
    EXPECT_EQ(visited, (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(keys(), (Numbers{2, 4}));
}

TEST_F(HashMap2018Walk, MayDeleteEveryMemberAsItGoes) {
    EXPECT_EQ(visited([this](U32 key) { remove(key); }), (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(keys(), Numbers{});
}

TEST_F(HashMap2018Walk, DoesNotVisitAMemberDeletedBeforeItsTurn) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 2) {
                      remove(3);
                      remove(5);
                  }
              }),
              (Numbers{1, 2, 4}));
}

TEST_F(HashMap2018Walk, GoesOnWhenTheCurrentMemberAndThoseAroundItAreDeleted) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 3) {
                      remove(2);
                      remove(3);
                      remove(4);
                  }
              }),
              (Numbers{1, 2, 3, 5}));
}

TEST_F(HashMap2018Walk, IsNotDisturbedWhenMembersBehindItAreDeleted) {
    EXPECT_EQ(visited([this](U32 key) { remove(key - 1); }), (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(keys(), (Numbers{5}));
}

TEST_F(HashMap2018Walk, VisitsMembersInsertedMeanwhile) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key < 100) {
                      insert(key + 10);
                  }
              }).size(),
              5u * 11);
}

TEST_F(HashMap2018Walk, KeepsItsPlaceWhenTheArrayIsMovedAndHolesBeforeItAreClosed) {
    Numbers all(100);
    std::iota(all.begin(), all.end(), 1u);
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 4) {
                      remove(2);
                      for (U32 more = 6; more <= 100; ++more) {
                          insert(more);
                      }
                  }
              }),
              all);
}

TEST_F(HashMap2018Walk, VisitsAMemberInsertedAtTheLastOne) {
    EXPECT_EQ(visited([this](U32 key) {
                  if (key == 5) {
                      remove(5);
                      insert(6);
                  }
              }),
              (Numbers{1, 2, 3, 4, 5, 6}));
}

TEST_F(HashMap2018Walk, VisitsAKeyDeletedAndInsertedAgainAsTheNewMemberThatItIs) {
    bool again = false;
    EXPECT_EQ(visited([&](U32 key) {
                  if (key == 2 && !std::exchange(again, true)) {
                      remove(2);
                      insert(2);
                  }
              }),
              (Numbers{1, 2, 3, 4, 5, 2}));
}

TEST_F(HashMap2018Walk, DoesNotVisitAgainAKeyThatIsSetAgain) {
    EXPECT_EQ(visited([this](U32 key) { map->newMember(key, 0); }), (Numbers{1, 2, 3, 4, 5}));
    EXPECT_EQ(membersOf(*map), (Members{{1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}));
}

TEST_F(HashMap2018Walk, SeveralWalksGoOnIndependently) {
    Map::Iterator first(*map);
    Map::Iterator second(*map);
    Map::Iterator third(*map);
    second.advance();
    third.advance();
    third.advance();
    remove(1);
    remove(2);
    remove(3);
    EXPECT_EQ(first.currNodeMaybeStale(), nullptr);
    EXPECT_EQ(second.currNodeMaybeStale(), nullptr);
    EXPECT_EQ(third.currNodeMaybeStale(), nullptr);
    first.advance();
    second.advance();
    EXPECT_EQ(first.key(), 4u);
    EXPECT_EQ(second.key(), 4u);
    EXPECT_EQ(third.currNodeNonStale()->key(), 4u);
    first.advance();
    EXPECT_EQ(first.key(), 5u);
    EXPECT_EQ(third.key(), 4u);
}

TEST_F(HashMap2018Walk, NestedWalksMayDeleteWhatTheOuterOneStandsOn) {
    EXPECT_EQ(visited([this](U32 outer) {
                  for (Map::Iterator inner(*map); inner; inner.advance()) {
                      if (inner.key() % 2 == outer % 2) {
                          remove(U32(inner.key()));
                      }
                  }
              }),
              (Numbers{1, 2}));
    EXPECT_EQ(keys(), Numbers{});
}

} // namespace
