#include "vpstate/VpNames.h"

#include "support/Allocations.h"
#include "support/MultiThreaded.h"
#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using VornicCentral::VpNames;

std::string nameOf(std::size_t number) { return "client-" + std::to_string(number); }

VpNames namesOf(std::size_t count) {
    VpNames names;
    for (std::size_t number = 0; number < count; ++number) {
        names.add(nameOf(number).c_str());
    }
    return names;
}

std::vector<std::string> listOf(VpNames const& names) {
    std::vector<std::string> list;
    for (Pelo::String const& name : names) {
        list.emplace_back(name.view());
    }
    return list;
}

/// Sizes on both sides of every change of storage.
constexpr std::size_t sizes[] = {0, 1, 3, 4, 5, 8, 15, 16, 17, 18, 31, 32, 33, 100, 1000};

TEST(VpNames, DefaultIsEmpty) {
    VpNames const names;
    EXPECT_TRUE(names.empty());
    EXPECT_FALSE(names);
    EXPECT_EQ(names.size(), 0u);
    EXPECT_EQ(names.begin(), names.end());
    EXPECT_EQ(Support::printed(names), "[]");
}

TEST(VpNames, IteratesInTheOrderOfAddition) {
    VpNames names;
    EXPECT_TRUE(names.add("mlag"));
    EXPECT_TRUE(names.add("bgp"));
    EXPECT_FALSE(names.add("mlag"));
    EXPECT_EQ(Support::printed(names), "[mlag, bgp]");
    EXPECT_TRUE(names.remove("mlag"));
    EXPECT_FALSE(names.remove("mlag"));
    EXPECT_TRUE(names.add("mlag"));
    EXPECT_EQ(Support::printed(names), "[bgp, mlag]");
    EXPECT_TRUE(names);
}

TEST(VpNames, FourNamesStandInTheSetItself) {
    VpNames names = namesOf(4);
    auto const within = [&names] {
        auto const* const first = reinterpret_cast<char const*>(names.begin());
        auto const* const self = reinterpret_cast<char const*>(&names);
        return first >= self && first < self + sizeof names;
    };
    EXPECT_TRUE(within());
    names.add("fifth");
    EXPECT_FALSE(within());
}

TEST(VpNames, CopiesAndMovesOfEverySizeAreValues) {
    for (std::size_t const size : sizes) {
        VpNames const names = namesOf(size);
        VpNames copy(names);
        EXPECT_EQ(listOf(copy), listOf(names));
        copy.add("one more");
        EXPECT_EQ(names.size(), size);
        EXPECT_FALSE(names.has("one more"));

        VpNames moved(std::move(copy));
        EXPECT_TRUE(copy.empty()); // NOLINT(bugprone-use-after-move): a moved-from set is empty
        EXPECT_EQ(moved.size(), size + 1);

        for (std::size_t const former : {0u, 4u, 5u, 20u}) {
            VpNames assigned = namesOf(former);
            assigned = names;
            EXPECT_EQ(listOf(assigned), listOf(names));
            VpNames& self = assigned;
            assigned = self;
            EXPECT_EQ(listOf(assigned), listOf(names));
            assigned = std::move(self);
            EXPECT_EQ(listOf(assigned), listOf(names));
            assigned = VpNames(moved);
            EXPECT_EQ(assigned, moved);
        }
    }
}

TEST(VpNames, EqualityIgnoresTheOrder) {
    for (std::size_t const size : sizes) {
        VpNames const names = namesOf(size);
        VpNames reversed;
        for (std::size_t number = size; number-- > 0;) {
            reversed.add(nameOf(number).c_str());
        }
        EXPECT_EQ(names, reversed);
        if (size != 0) {
            reversed.remove(nameOf(size / 2).c_str());
            EXPECT_NE(names, reversed);
            reversed.add("somebody else");
            EXPECT_NE(names, reversed);
        }
    }
}

TEST(VpNames, EqualityIgnoresHowTheSetGrew) {
    VpNames shrunk = namesOf(100);
    for (std::size_t number = 2; number < 100; ++number) {
        shrunk.remove(nameOf(number).c_str());
    }
    EXPECT_EQ(shrunk, namesOf(2));
    EXPECT_EQ(namesOf(2), shrunk);
}

TEST(VpNames, RemovesAMemberOfTheSetItself) {
    for (std::size_t const size : sizes) {
        VpNames names = namesOf(size);
        for (std::size_t left = size; left > 0; --left) {
            ASSERT_TRUE(names.remove(*names.begin()));
            ASSERT_EQ(names.size(), left - 1);
        }
        EXPECT_EQ(names, VpNames());
    }
}

TEST(VpNames, ClearedSetCanBeUsedAgain) {
    for (std::size_t const size : sizes) {
        VpNames names = namesOf(size);
        names.clear();
        EXPECT_TRUE(names.empty());
        EXPECT_FALSE(names.has(nameOf(0).c_str()));
        names.add("bgp");
        EXPECT_EQ(Support::printed(names), "[bgp]");
    }
}

TEST(VpNames, AgreesWithAListOfNames) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    VpNames names;
    std::vector<std::string> model;
    for (int step = 0; step < 20000; ++step) {
        bool const growing = step / 500 % 2 == 0;
        std::string const name = nameOf(random.below(60));
        auto const found = std::find(model.begin(), model.end(), name);
        ASSERT_EQ(names.has(name.c_str()), found != model.end());
        if (growing != random.oneIn(3)) {
            ASSERT_EQ(names.add(name.c_str()), found == model.end());
            if (found == model.end()) {
                model.push_back(name);
            }
        } else {
            ASSERT_EQ(names.remove(name.c_str()), found != model.end());
            if (found != model.end()) {
                model.erase(found);
            }
        }
        ASSERT_EQ(listOf(names), model);
    }
}

TEST(VpNames, CopiesShareTheirBlockUntilOneIsChanged) {
    for (std::size_t const size : sizes) {
        VpNames const names = namesOf(size);
        VpNames added(names);
        VpNames removed(names);
        VpNames cleared(names);
        VpNames const kept(names);
        EXPECT_EQ(kept.begin() == names.begin(), size > 4) << size;

        EXPECT_TRUE(added.add("one more"));
        EXPECT_EQ(removed.remove(nameOf(0).c_str()), size != 0);
        cleared.clear();

        auto const list = listOf(namesOf(size));
        EXPECT_EQ(listOf(names), list);
        EXPECT_EQ(listOf(kept), list);
        EXPECT_EQ(names, kept);
        auto expected = list;
        expected.emplace_back("one more");
        EXPECT_EQ(listOf(added), expected);
        EXPECT_TRUE(added.has("one more"));
        EXPECT_FALSE(names.has("one more"));
        expected = list;
        expected.erase(expected.begin(), expected.begin() + (size == 0 ? 0 : 1));
        EXPECT_EQ(listOf(removed), expected);
        EXPECT_TRUE(cleared.empty());
    }
}

TEST(VpNames, ChangeThatChangesNothingLeavesTheBlockShared) {
    VpNames const names = namesOf(10);
    VpNames copy(names);
    EXPECT_FALSE(copy.add(nameOf(3).c_str()));
    EXPECT_FALSE(copy.remove("nobody"));
    EXPECT_EQ(copy.begin(), names.begin());
}

TEST(VpNames, LastCopyKeepsTheNamesWhenTheOthersAreGone) {
    VpNames last;
    {
        VpNames const names = namesOf(20);
        last = names;
        last = VpNames(last);
    }
    EXPECT_EQ(listOf(last), listOf(namesOf(20)));
    Pelo::String const* const before = last.begin();
    EXPECT_TRUE(last.remove(nameOf(19).c_str()));
    EXPECT_EQ(last.begin(), before); // in its own block again
}

TEST(VpNames, GivesEverythingBackHoweverItGrew) {
    for (std::size_t const size : sizes) {
        Support::CountedAllocations const since;
        {
            VpNames names = namesOf(size);
            VpNames const copy(names);
            names.add("another");
            names.remove(nameOf(0).c_str());
            names.clear();
        }
        EXPECT_EQ(since.live(), 0) << size;
    }
}

TEST(VpNames, CopiesOfOneBlockBelongToDifferentThreads) {
    Support::MultiThreaded const multiThreaded;
    VpNames const names = namesOf(20);
    auto const work = [](VpNames copy) {
        for (int round = 0; round < 1000; ++round) {
            VpNames changed(copy);
            changed.add("another");
            changed.remove(nameOf(static_cast<std::size_t>(round % 20)).c_str());
            copy = VpNames(copy);
        }
        EXPECT_EQ(copy.size(), 20u);
    };
    std::thread first(work, names);
    std::thread second(work, names);
    first.join();
    second.join();
    EXPECT_EQ(listOf(names), listOf(namesOf(20)));
}

} // namespace
