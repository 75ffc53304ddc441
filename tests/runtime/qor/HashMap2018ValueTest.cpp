#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/String.h"
#include "qor/HashMap2018.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace {

using Pelo::Ptr;
using Pelo::String;

/// An entity that does something, perhaps to the collection that held it, when it goes.
class Guest final : public Pelo::Node {
public:
    using Farewell = std::function<void()>;
    explicit Guest(Farewell farewell = {}) : farewell_(std::move(farewell)) { ++alive; }

    static inline int alive = 0;

private:
    ~Guest() override {
        --alive;
        if (farewell_) {
            farewell_();
        }
    }
    Farewell farewell_;
};

using Guests = Qor::HashMap2018<String, Ptr<Guest>>;
using Names = std::vector<std::string>;

class HashMap2018Value : public testing::Test {
protected:
    void TearDown() override {
        guests.reset();
        EXPECT_EQ(Guest::alive, 0);
    }
    void insert(String const& name, Guest::Farewell farewell = {}) {
        guests->newMember(name, Pelo::newNode<Guest>(std::move(farewell)));
    }
    void insertMany() {
        for (int i = 0; i < 100; ++i) {
            insert(String("new " + std::to_string(i)));
        }
    }
    Names names() const {
        Names result;
        for (Guests::Iterator it(*guests); it; it.advance()) {
            result.emplace_back(it.key().view());
            EXPECT_NE(it.value(), nullptr);
        }
        EXPECT_EQ(guests->memberCount(), result.size());
        return result;
    }

    std::unique_ptr<Guests> guests = std::make_unique<Guests>();
};

TEST_F(HashMap2018Value, CollectionHoldsOneUse) {
    auto const guest = Pelo::newNode<Guest>();
    guests->newMember("a", guest);
    EXPECT_EQ(guest->useCount(), 2u);
    EXPECT_EQ(guests->memberIs("a", guest), Guests::Change::none);
    EXPECT_EQ(guest->useCount(), 2u);
    for (int i = 0; i < 100; ++i) { // the array grows
        guests->newMember(String(std::to_string(i)), guest);
    }
    EXPECT_EQ(guest->useCount(), 102u);
    guests->memberDelAll();
    EXPECT_EQ(guest->useCount(), 1u);
}

TEST_F(HashMap2018Value, DeletedOneLivesAsLongAsItsLastUser) {
    insert("a");
    {
        auto const removed = guests->deleteMember("a");
        EXPECT_EQ(Guest::alive, 1);
        EXPECT_EQ((*removed)->useCount(), 1u);
    }
    EXPECT_EQ(Guest::alive, 0);
}

TEST_F(HashMap2018Value, GoesAfterTheDeletionAndMayInsertItsKeyAgain) {
    insert("a", [this] {
        EXPECT_EQ(names(), (Names{"b"}));
        insert("a");
    });
    insert("b");
    guests->deleteMember("a");
    EXPECT_EQ(names(), (Names{"b", "a"}));
}

TEST_F(HashMap2018Value, OfADeletedNodeGoesAfterTheDeletionToo) {
    insert("a", [this] {
        EXPECT_EQ(names(), (Names{"b"}));
        insert("a");
    });
    insert("b");
    guests->deleteMember(*guests->lookupNode("a"));
    EXPECT_EQ(names(), (Names{"b", "a"}));
}

TEST_F(HashMap2018Value, ReplacedOneMayInsertMembers) {
    insert("a", [this] { insertMany(); });
    insert("b");
    insert("a");
    Names const all = names();
    EXPECT_EQ(all.size(), 102u);
    EXPECT_EQ(all[0], "a");
    EXPECT_EQ(all[1], "b");
}

TEST_F(HashMap2018Value, ReplacedOneMayDeleteItsOwnKey) {
    insert("a", [this] { guests->deleteMember("a"); });
    insert("b");
    EXPECT_EQ(guests->memberIs("a", Pelo::newNode<Guest>()), Guests::Change::replaced);
    EXPECT_EQ(names(), (Names{"b"}));
}

TEST_F(HashMap2018Value, ReplacedOneMayEmptyTheCollection) {
    insert("a", [this] { guests->memberDelAll(); });
    insert("b");
    insert("a");
    EXPECT_EQ(names(), Names{});
}

TEST_F(HashMap2018Value, ReplacedOneSeesTheNewOne) {
    auto const next = Pelo::newNode<Guest>();
    bool seen = false;
    insert("a", [&] { seen = guests->lookupNode("a")->value() == next; });
    guests->newMember("a", next);
    EXPECT_TRUE(seen);
}

TEST_F(HashMap2018Value, OnesThatGoTogetherSeeAnEmptyCollection) {
    std::vector<U32> counts;
    for (char const* const name : {"a", "b", "c"}) {
        insert(name, [this, &counts] { counts.push_back(guests->memberCount()); });
    }
    guests->memberDelAll();
    EXPECT_EQ(counts, (std::vector<U32>{0, 0, 0}));
}

TEST_F(HashMap2018Value, OnesThatGoTogetherFindTheWalksWhereTheyStay) {
    std::unique_ptr<Guests::Iterator> onMember;
    std::unique_ptr<Guests::Iterator> atEnd;
    std::vector<bool> seen;
    for (char const* const name : {"a", "b"}) {
        insert(name, [&] {
            seen.push_back(static_cast<bool>(*onMember)); // it stands on a deleted member
            seen.push_back(static_cast<bool>(*atEnd));
        });
    }
    onMember = std::make_unique<Guests::Iterator>(*guests);
    atEnd = std::make_unique<Guests::Iterator>(*guests);
    while (*atEnd) {
        atEnd->advance();
    }
    guests->memberDelAll();
    EXPECT_EQ(seen, (std::vector<bool>{true, false, true, false}));
}

TEST_F(HashMap2018Value, OnesThatGoTogetherMayInsertMembersThatStay) {
    insert("a", [this] { insert("late a"); });
    insert("b");
    insert("c", [this] {
        EXPECT_EQ(names(), (Names{"late a"}));
        insertMany();
    });
    guests->memberDelAll();
    EXPECT_EQ(guests->memberCount(), 101u);
    EXPECT_EQ(Guest::alive, 101);
}

TEST_F(HashMap2018Value, OnesThatGoWithTheCollectionMayStillUseIt) {
    auto map = std::make_unique<Guests>();
    Guests* const there = map.get();
    int visits = 0;
    there->newMember("a", Pelo::newNode<Guest>([&] {
                         there->deleteMember("b");
                         EXPECT_FALSE(there->has("b"));
                         there->newMember("late", Pelo::newNode<Guest>([&] { ++visits; }));
                     }));
    there->newMember("b", Pelo::newNode<Guest>());
    Guests::Iterator walk(*there);
    map.reset();
    EXPECT_FALSE(walk);
    EXPECT_EQ(visits, 1);
    EXPECT_EQ(Guest::alive, 0);
}

TEST_F(HashMap2018Value, OneThatGoesMayDeleteTheOthersInTheMiddleOfAWalk) {
    for (char const* const name : {"b", "c", "d"}) {
        insert(name);
    }
    insert("a", [this] {
        guests->deleteMember("c");
        guests->deleteMember("d");
    });
    Names visited;
    for (Guests::Iterator it(*guests); it; it.advance()) {
        visited.emplace_back(it.key().view());
        if (visited.size() == 1) {
            guests->deleteMember("a");
        }
    }
    EXPECT_EQ(visited, (Names{"b"}));
}

TEST_F(HashMap2018Value, OneThatGoesMayDestroyTheCollectionThatItWasIn) {
    insert("a", [this] { guests.reset(); });
    insert("b");
    Guests::Iterator walk(*guests);
    guests->deleteMember("a"); // the returned value is the last use
    EXPECT_EQ(guests, nullptr);
    walk.advance();
    EXPECT_FALSE(walk);
}

} // namespace
