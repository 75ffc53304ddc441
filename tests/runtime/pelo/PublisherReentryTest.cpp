#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Publisher.h"
#include "runtime/pelo/PublisherFixture.h"
#include "support/Allocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>
#include <vector>

namespace {

using Pelo::Publisher;
using Support::Calls;
using Support::publish;
using Support::Reactor;

/// Reactors that change subscriptions, or publish, while they are being told.
class PublisherReentry : public Support::PublisherFixture {};

TEST_F(PublisherReentry, WhoIsAddedIsFirstToldOfTheNextChange) {
    Reactor adder(calls, "adder", [&] { add(b); });
    add(adder);
    add(a);
    EXPECT_EQ(heard(1), (Calls{"adder 131.1", "a 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"adder 131.2", "a 131.2", "b 131.2"}));
}

TEST_F(PublisherReentry, WhoIsAddedAtTheFrontIsFirstToldOfTheNextChangeAndNobodyTwice) {
    Reactor adder(calls, "adder", [&] { add(b, true); });
    add(adder);
    add(a);
    EXPECT_EQ(heard(1), (Calls{"adder 131.1", "a 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"b 131.2", "adder 131.2", "a 131.2"}));
}

TEST_F(PublisherReentry, ManyAddedAtOnceDoNotDisturbTheChangeUnderWay) {
    std::vector<std::unique_ptr<Reactor>> many;
    Reactor adder(calls, "adder", [&] {
        for (int i = 0; i < 100; ++i) {
            many.push_back(std::make_unique<Reactor>(calls, "new"));
            add(*many.back(), i % 2 == 0);
        }
    });
    add(adder);
    add(a);
    EXPECT_EQ(heard(1), (Calls{"adder 131.1", "a 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 102u);
}

TEST_F(PublisherReentry, WhoLeavesByItselfIsToldNoMore) {
    Reactor once(calls, "once", [&] { remove(once); });
    add(a);
    add(once);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "once 131.1", "b 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"a 131.2", "b 131.2"}));
}

TEST_F(PublisherReentry, WhoIsRemovedBeforeItsTurnIsNotToldOfTheChangeUnderWay) {
    Reactor remover(calls, "remover", [&] { remove(a); });
    add(remover);
    add(a);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"remover 131.1", "b 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 2u);
}

TEST_F(PublisherReentry, WhoIsRemovedAfterItsTurnStopsNobody) {
    Reactor remover(calls, "remover", [&] { remove(a); });
    add(a);
    add(remover);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "remover 131.1", "b 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"remover 131.2", "b 131.2"}));
}

TEST_F(PublisherReentry, WhoIsRemovedAndAddedAgainWaitsForTheNextChange) {
    Reactor turner(calls, "turner", [&] {
        remove(a);
        add(a);
    });
    add(turner);
    add(a);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"turner 131.1", "b 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"turner 131.2", "b 131.2"}));
    turner.subscriber.publisher()->subscriberRemove(&turner.subscriber);
    EXPECT_EQ(heard(3), (Calls{"b 131.3", "a 131.3"}));
}

TEST_F(PublisherReentry, WhoLeavesAndComesBackWithEachChangeTakesNoMoreRoom) {
    Reactor turner(calls, "turner", [&] {
        remove(a);
        add(a);
    });
    add(turner);
    add(a);
    heard(1);
    calls.reserve(3000);
    Support::CountedAllocations const since;
    for (int change = 0; change < 1000; ++change) {
        publish(publisher, 131, 2);
        calls.clear();
    }
    EXPECT_EQ(since.count(), 0u);
}

TEST_F(PublisherReentry, LastSubscriberThatLeavesEndsTheChange) {
    Reactor sweeper(calls, "sweeper", [&] {
        remove(a);
        remove(b);
        remove(sweeper);
    });
    add(sweeper);
    add(a);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"sweeper 131.1"}));
    EXPECT_FALSE(publisher.hasSubscribers());
    EXPECT_EQ(heard(2), Calls{});
}

TEST_F(PublisherReentry, SubscriberMayBeDestroyedByItselfOrByAnother) {
    std::optional<Reactor> own;
    std::optional<Reactor> other;
    own.emplace(calls, "own", [&] {
        own.reset();
        other.reset();
    });
    other.emplace(calls, "other");
    add(a);
    add(*own);
    add(*other);
    add(b);
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "own 131.1", "b 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 2u);
}

TEST_F(PublisherReentry, NestedChangeIsToldToItsEndBeforeTheFirstGoesOn) {
    int depth = 0;
    Reactor writer(calls, "writer", [&] {
        if (++depth <= 2) {
            publish(publisher, 140, depth);
        }
    });
    add(a);
    add(writer);
    add(b);
    EXPECT_EQ(heard(9), (Calls{"a 131.9", "writer 131.9",            //
                               "a 140.1", "writer 140.1",            //
                               "a 140.2", "writer 140.2", "b 140.2", //
                               "b 140.1", "b 131.9"}));
}

TEST_F(PublisherReentry, NestedChangeIsToldToThoseWhoWereAddedBeforeIt) {
    Reactor writer(calls, "writer", [&] {
        if (!b.subscriber.subscribed()) {
            add(b);
            publish(publisher, 140, 1);
        }
    });
    add(writer);
    add(a);
    EXPECT_EQ(heard(9), (Calls{"writer 131.9", "writer 140.1", "a 140.1", "b 140.1", "a 131.9"}));
}

TEST_F(PublisherReentry, WhoIsRemovedInANestedChangeIsNotToldOfTheOuterOne) {
    Reactor writer(calls, "writer", [&] {
        if (a.subscriber.subscribed()) {
            remove(a);
            publish(publisher, 140, 1);
            add(*std::make_unique<Reactor>(calls, "gone at once"), true);
        }
    });
    add(writer);
    add(a);
    add(b);
    EXPECT_EQ(heard(9), (Calls{"writer 131.9", "writer 140.1", "b 140.1", "b 131.9"}));
    EXPECT_EQ(publisher.subscriberCount(), 2u);
}

/// Who is told alone may do what he may do beside others.
TEST_F(PublisherReentry, OnlySubscriberMayAddOthersWhoWaitForTheNextChange) {
    for (bool const atFront : {false, true}) {
        std::vector<std::unique_ptr<Reactor>> added;
        Reactor adder(calls, "adder", [&] {
            while (added.size() < 100) {
                added.push_back(std::make_unique<Reactor>(calls, "added"));
                add(*added.back(), atFront);
            }
        });
        add(adder);
        EXPECT_EQ(heard(1), (Calls{"adder 131.1"}));
        Calls expected(100, "added 131.2");
        expected.insert(atFront ? expected.end() : expected.begin(), "adder 131.2");
        EXPECT_EQ(heard(2), expected);
    }
}

TEST_F(PublisherReentry, OnlySubscriberMayLeave) {
    Reactor once(calls, "once", [&] { remove(once); });
    add(once);
    EXPECT_EQ(heard(1), (Calls{"once 131.1"}));
    EXPECT_FALSE(publisher.hasSubscribers());
    EXPECT_EQ(heard(2), Calls{});
}

TEST_F(PublisherReentry, OnlySubscriberThatLeavesAndComesBackIsToldOnce) {
    Reactor turner(calls, "turner", [&] {
        remove(turner);
        add(turner);
    });
    add(turner);
    EXPECT_EQ(heard(1), (Calls{"turner 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"turner 131.2"}));
}

TEST_F(PublisherReentry, OnlySubscriberMayGiveItsPlaceToOneWhoWaitsForTheNextChange) {
    Reactor giver(calls, "giver", [&] {
        add(a);
        remove(giver);
    });
    add(giver);
    EXPECT_EQ(heard(1), (Calls{"giver 131.1"}));
    EXPECT_EQ(heard(2), (Calls{"a 131.2"}));
}

TEST_F(PublisherReentry, OnlySubscriberMayBeDestroyed) {
    std::optional<Reactor> own;
    own.emplace(calls, "own", [&] { own.reset(); });
    add(*own);
    EXPECT_EQ(heard(1), (Calls{"own 131.1"}));
    EXPECT_FALSE(publisher.hasSubscribers());
}

TEST_F(PublisherReentry, OnlySubscriberMayPublishBesideOneWhoIsToldOfThatChangeAlone) {
    int depth = 0;
    Reactor writer(calls, "writer", [&] {
        if (++depth == 1) {
            add(a);
            publish(publisher, 140, 1);
            remove(a);
            publish(publisher, 140, 2);
        }
    });
    add(writer);
    EXPECT_EQ(heard(9), (Calls{"writer 131.9", "writer 140.1", "a 140.1", "writer 140.2"}));
}

TEST_F(PublisherReentry, OneWhoIsLeftOverInANestedChangeIsToldWhoeverWasFirst) {
    int depth = 0;
    Reactor leaver(calls, "leaver", [&] {
        if (++depth == 1) {
            remove(leaver);
            publish(publisher, 140, 1);
        }
    });
    add(leaver);
    add(a);
    EXPECT_EQ(heard(9), (Calls{"leaver 131.9", "a 140.1", "a 131.9"}));
    EXPECT_EQ(heard(10), (Calls{"a 131.10"}));
}

/// An entity that publishes, held by counted pointers.
class Tower final : public Pelo::Node {
public:
    explicit Tower(bool& gone) : gone_(gone) {}
    Publisher* publisher() const noexcept override { return &publisher_; }
    void change(int key) { publish(publisher_, 131, key); }

private:
    ~Tower() override { gone_ = true; }
    bool& gone_;
    mutable Publisher publisher_;
};

TEST_F(PublisherReentry, LastPointerToThePublishersOwnerMayGo) {
    bool gone = false;
    auto tower = Pelo::newNode<Tower>(gone);
    Reactor breaker(calls, "breaker", [&] { tower = nullptr; });
    tower->publisher()->subscriberAdd(&a.subscriber, false);
    tower->publisher()->subscriberAdd(&breaker.subscriber, false);
    tower->publisher()->subscriberAdd(&b.subscriber, false);
    tower->change(1);
    EXPECT_TRUE(gone);
    EXPECT_EQ(calls, (Calls{"a 131.1", "breaker 131.1"}));
    EXPECT_FALSE(b.subscriber.subscribed());
}

TEST_F(PublisherReentry, LastPointerToThePublishersOwnerMayGoWhenSomebodyHasLeft) {
    bool gone = false;
    auto tower = Pelo::newNode<Tower>(gone);
    Reactor breaker(calls, "breaker", [&] {
        tower->publisher()->subscriberRemove(&a.subscriber);
        tower = nullptr;
    });
    for (Pelo::Subscriber* const each : {&a.subscriber, &breaker.subscriber, &b.subscriber}) {
        tower->publisher()->subscriberAdd(each, false);
    }
    tower->change(1);
    EXPECT_TRUE(gone);
    EXPECT_EQ(calls, (Calls{"a 131.1", "breaker 131.1"}));
    EXPECT_FALSE(breaker.subscriber.subscribed());
}

/// A subscriber changes the tower again, and again, and then drops the last pointer to it; `others`
/// are subscribed behind it.
void expectTowerMayGoInANestedChange(Calls& calls, std::vector<Pelo::Subscriber*> const& others) {
    bool gone = false;
    auto tower = Pelo::newNode<Tower>(gone);
    int depth = 0;
    Reactor breaker(calls, "breaker", [&] {
        if (++depth == 3) {
            tower = nullptr;
        } else {
            tower->change(depth);
        }
    });
    tower->publisher()->subscriberAdd(&breaker.subscriber, false);
    for (Pelo::Subscriber* const other : others) {
        tower->publisher()->subscriberAdd(other, false);
    }
    tower->change(9);
    EXPECT_TRUE(gone);
    EXPECT_FALSE(breaker.subscriber.subscribed());
    EXPECT_EQ(calls, (Calls{"breaker 131.9", "breaker 131.1", "breaker 131.2"}));
}

TEST_F(PublisherReentry, LastPointerToThePublishersOwnerMayGoInANestedChange) {
    expectTowerMayGoInANestedChange(calls, {&a.subscriber});
}

TEST_F(PublisherReentry, LastPointerToThePublishersOwnerMayGoByTheOnlySubscriber) {
    expectTowerMayGoInANestedChange(calls, {});
}

TEST_F(PublisherReentry, SubscriberMayMoveToAnotherPublisherWhileItIsTold) {
    Publisher other;
    Reactor mover(calls, "mover", [&] {
        other.subscriberAdd(&mover.subscriber, false);
        publish(publisher, 140, 1);
    });
    add(mover);
    add(a);
    EXPECT_EQ(heard(9), (Calls{"mover 131.9", "a 140.1", "a 131.9"}));
    EXPECT_EQ(mover.subscriber.publisher(), &other);
}

TEST_F(PublisherReentry, NestedChangesOfOneKeyAreEachToldAndNobodyComparesKeys) {
    Pelo::KeyEquality const neverCalled = [](void const*, void const*) {
        ADD_FAILURE();
        return true;
    };
    int const key = 1;
    int depth = 0;
    Reactor writer(calls, "writer", [&] {
        if (++depth <= 2) {
            publisher.publishChangeRecursive(131, &key, nullptr,
                                             depth == 1 ? neverCalled : nullptr);
        }
    });
    add(writer);
    add(a);
    publisher.publishChangeRecursive(131, &key, nullptr, neverCalled);
    EXPECT_EQ(calls, (Calls{"writer 131.1", "writer 131.1", "writer 131.1", //
                            "a 131.1", "a 131.1", "a 131.1"}));
}

} // namespace
