#include "pelo/CountedTable.h"

#include "support/Allocations.h"
#include "support/MultiThreaded.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <atomic>
#include <map>
#include <stdexcept>
#include <thread>
#include <vector>

namespace {

struct Entry {
    Entry(U64 hashOfKey, U32 keyHeld) : hash(hashOfKey), key(keyHeld) { ++live; }
    ~Entry() { --live; }
    Entry(Entry const&) = delete;
    Entry& operator=(Entry const&) = delete;

    U64 hash;
    U32 useCount = 1;
    U32 key;

    static inline std::atomic<int> live = 0;
};

/// A table of numbers, of which many have the same hash.
class Numbers {
public:
    explicit Numbers(U32 hashes) : hashes_(hashes) {}

    Entry* take(U32 key) {
        return table_.take(
            hashOf(key), [key](Entry const& entry) { return entry.key == key; },
            [&] { return new Entry(hashOf(key), key); });
    }
    U32 uses(U32 key) const {
        return table_.uses(hashOf(key), [key](Entry const& entry) { return entry.key == key; });
    }
    void release(Entry* entry) { table_.release(entry); }
    std::size_t size() const { return table_.size(); }

    Pelo::CountedTable<Entry>& table() { return table_; }

private:
    U64 hashOf(U32 key) const { return key % hashes_; }

    U32 hashes_;
    Pelo::CountedTable<Entry> table_;
};

TEST(CountedTable, EqualEntriesAreOne) {
    Numbers numbers(3);
    Entry* const four = numbers.take(4);
    Entry* const seven = numbers.take(7);
    EXPECT_NE(four, seven);
    EXPECT_EQ(numbers.take(4), four);
    EXPECT_EQ(numbers.uses(4), 2u);
    EXPECT_EQ(numbers.uses(7), 1u);
    EXPECT_EQ(numbers.uses(1), 0u);
    EXPECT_EQ(numbers.size(), 2u);
    numbers.release(four);
    numbers.release(four);
    numbers.release(seven);
    EXPECT_EQ(numbers.size(), 0u);
}

TEST(CountedTable, NothingIsUsedBeforeTheFirstEntry) {
    Numbers const numbers(3);
    EXPECT_EQ(numbers.uses(4), 0u);
    EXPECT_EQ(numbers.size(), 0u);
}

TEST(CountedTable, WithoutMemoryToShrinkEntriesStayWhereTheyAre) {
    Numbers numbers(300);
    std::vector<Entry*> entries;
    for (U32 key = 0; key < 300; ++key) {
        entries.push_back(numbers.take(key));
    }
    Support::FailingAllocations const noMemory(0);
    for (; entries.size() > 1; entries.pop_back()) {
        numbers.release(entries.back());
    }
    EXPECT_EQ(numbers.size(), 1u);
    EXPECT_EQ(numbers.uses(0), 1u);
    numbers.release(entries.front());
    EXPECT_EQ(Entry::live, 0);
}

TEST(CountedTable, LastReleaseDestroysTheEntry) {
    Numbers numbers(3);
    Entry* const entry = numbers.take(4);
    Pelo::countInc(entry->useCount);
    numbers.release(entry);
    EXPECT_EQ(numbers.uses(4), 1u);
    EXPECT_EQ(Entry::live, 1);
    numbers.release(entry);
    EXPECT_EQ(numbers.uses(4), 0u);
    EXPECT_EQ(Entry::live, 0);
}

TEST(CountedTable, FailureToMakeAnEntryLeavesTheTableAsItWas) {
    Numbers numbers(3);
    Entry* const entry = numbers.take(4);
    auto const none = [](Entry const&) { return false; };
    auto const fail = []() -> Entry* { throw std::runtime_error("out of names"); };
    EXPECT_THROW(numbers.table().take(1, none, fail), std::runtime_error);
    EXPECT_EQ(numbers.size(), 1u);
    EXPECT_EQ(numbers.uses(4), 1u);
    numbers.release(entry);
}

TEST(CountedTable, ReleasesMakeTheArraySmallerAgain) {
    Numbers numbers(1000);
    std::vector<Entry*> entries;
    for (U32 key = 0; key < 1000; ++key) {
        entries.push_back(numbers.take(key));
    }
    Support::CountedAllocations const since;
    for (Entry* const entry : entries) {
        numbers.release(entry);
    }
    EXPECT_EQ(since.count(), 7u); // arrays of 1024 slots, 512 and so on down to 16
}

/// The table against a map, through growth and shrinking.
void agreesWithAMap(Support::Random& random, Numbers& numbers) {
    std::map<U32, std::vector<Entry*>> model;
    for (int step = 0; step < 8000; ++step) {
        bool const growing = step / 1000 % 2 == 0;
        U32 const key = random.below(300);
        if (growing != random.oneIn(4)) {
            model[key].push_back(numbers.take(key));
        } else if (auto const found = model.find(key); found != model.end()) {
            numbers.release(found->second.back());
            found->second.pop_back();
            if (found->second.empty()) {
                model.erase(found);
            }
        }
        ASSERT_EQ(numbers.size(), model.size());
        U32 const seen = random.below(300);
        ASSERT_EQ(numbers.uses(seen), model.contains(seen) ? model[seen].size() : 0u);
    }
    for (auto const& [key, uses] : model) {
        for (Entry* const entry : uses) {
            ASSERT_EQ(entry->key, key);
            numbers.release(entry);
        }
    }
    EXPECT_EQ(numbers.size(), 0u);
    EXPECT_EQ(Entry::live, 0);
}

TEST(CountedTable, AgreesWithAMapHoweverManyEntriesHaveOneHash) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (U32 const hashes : {1u, 11u, 100u, 300u}) {
        SCOPED_TRACE(hashes);
        Numbers numbers(hashes);
        agreesWithAMap(random, numbers);
    }
}

/// Threads take and give back so few entries that the last use goes while another thread looks the
/// entry up.
TEST(CountedTable, ThreadsNeverSeeAnEntryOnItsWayOut) {
    Support::MultiThreaded const on;
    Numbers numbers(2);
    std::atomic<int> wrong = 0;
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&] {
            for (U32 round = 0; round < 20000; ++round) {
                Entry* const entry = numbers.take(round % 3);
                Pelo::countInc(entry->useCount);
                wrong += entry->key != round % 3 ? 1 : 0;
                numbers.release(entry);
                numbers.release(entry);
            }
        });
    }
    for (std::thread& thread : threads) {
        thread.join();
    }
    EXPECT_EQ(wrong, 0);
    EXPECT_EQ(numbers.size(), 0u);
    EXPECT_EQ(Entry::live, 0);
}

} // namespace
