#include "pelo/Hash.h"
#include "qor/HashMap2018.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <ctime>
#include <functional>

namespace {

using Numbers = Qor::HashMap2018<U32, int>;

/// A key that counts how often its kind was compared and moved.
struct Counted {
    explicit Counted(U32 n) : number(n) {}
    Counted(Counted const&) = default;
    Counted(Counted&& other) noexcept : number(other.number) { ++moves; }
    U64 hash() const noexcept { return Pelo::hashMix(number, 0); }
    bool operator==(Counted const& other) const noexcept {
        ++comparisons;
        return number == other.number;
    }
    U32 number;
    static inline U64 moves = 0;
    static inline U64 comparisons = 0;
};

/// Keeps so many members while millions pass through, first come, first served; the work and the
/// storage that this takes.
class Queue {
public:
    explicit Queue(U32 length) {
        while (last_ < length) {
            map_.newMember(Counted(last_++), true);
        }
    }
    void pass(U32 count) {
        for (U32 i = 0; i < count; ++i) {
            map_.newMember(Counted(last_++), true);
            Map::Iterator const front(map_);
            ASSERT_EQ(front.key().number, first_);
            map_.deleteMember(Counted(first_++));
            storage = std::max(storage, map_.storageSize());
        }
    }
    std::size_t storage = 0;

private:
    using Map = Qor::HashMap2018<Counted, bool>;
    Map map_;
    U32 first_ = 0;
    U32 last_ = 0;
};

TEST(HashMap2018Queue, ThroughWhichMillionsPassKeepsItsSize) {
    for (U32 const length : {0u, 1u, 10u, 1000u}) {
        Queue queue(length);
        queue.pass(5 * length + 100);
        std::size_t const storage = queue.storage;
        queue.pass(1000000);
        EXPECT_EQ(queue.storage, storage) << length;
        EXPECT_LE(storage, 1000 + length * 200) << length;
    }
}

TEST(HashMap2018Queue, CostsTheSameHoweverMuchHasPassed) {
    Queue queue(1000);
    for (int round = 0; round < 5; ++round) {
        Counted::moves = Counted::comparisons = 0;
        queue.pass(100000);
        EXPECT_LE(Counted::moves, 600000u) << "three of them are the caller's";
        EXPECT_LE(Counted::comparisons, 120000u);
    }
}

/// The processor time that it takes to delete the first half of many members, one by one, and to do
/// something after each deletion.
std::clock_t timeToHalve(std::function<void(Numbers const&)> const& after) {
    constexpr U32 count = 60000;
    Numbers map;
    for (U32 key = 0; key < count; ++key) {
        map.newMember(key, 0);
    }
    std::clock_t const start = std::clock();
    for (U32 key = 0; key < count / 2; ++key) {
        map.deleteMember(key);
        after(map);
    }
    return std::clock() - start;
}

TEST(HashMap2018Queue, FrontIsFoundWithoutPassingWhatWasBeforeIt) {
    std::clock_t const lookup =
        timeToHalve([](Numbers const& map) { EXPECT_TRUE(map.has(50000)); });
    std::clock_t const front = timeToHalve([](Numbers const& map) {
        Numbers::Iterator const it(map);
        EXPECT_TRUE(it);
    });
    EXPECT_LT(front, lookup * 20); // it is less than twice, and hundreds if each hole is passed
}

TEST(HashMap2018Queue, MayBeWalkedByOneThatWaitsAtItsEnd) {
    Numbers map;
    Numbers::Iterator reader(map);
    std::size_t largest = 0;
    for (U32 key = 0; key < 100000; ++key) {
        map.newMember(key, 0);
        ASSERT_TRUE(reader);
        ASSERT_EQ(reader.key(), key);
        reader.advance();
        map.deleteMember(key);
        largest = std::max(largest, map.storageSize());
    }
    EXPECT_FALSE(reader);
    EXPECT_LE(largest, 1000u);
}

TEST(HashMap2018Queue, MembersThatComeAndGoAtRandomKeepTheCollectionsSize) {
    Numbers map;
    U64 random = 1;
    for (U32 key = 0; key < 1000; ++key) {
        map.newMember(key, 0);
    }
    std::size_t largest = 0;
    for (int round = 0; round < 200000; ++round) {
        random = random * 6364136223846793005u + 1442695040888963407u;
        U32 const key = static_cast<U32>(random >> 40) % 1000;
        map.deleteMember(key);
        map.newMember(key, round);
        largest = std::max(largest, map.storageSize());
    }
    EXPECT_EQ(map.memberCount(), 1000u);
    EXPECT_LE(largest, 40000u);
}

} // namespace
