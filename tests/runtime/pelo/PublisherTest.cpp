#include "pelo/Publisher.h"

#include "runtime/pelo/PublisherFixture.h"
#include "support/Allocations.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>

namespace {

using Pelo::Publisher;
using Support::Calls;
using Support::publish;
using Support::Reactor;

class PublisherTest : public Support::PublisherFixture {};

TEST_F(PublisherTest, TellsNobodyWhenNobodySubscribes) {
    EXPECT_FALSE(publisher.hasSubscribers());
    EXPECT_EQ(heard(1), Calls{});
}

TEST_F(PublisherTest, TellsFieldKeyAndValue) {
    add(a);
    int const key = 7;
    int const value = 99;
    publisher.publishChangeRecursive(258, &key, &value, &Pelo::keysEqual<int>);
    publisher.publishChangeRecursive(258, &key, nullptr, &Pelo::keysEqual<int>);
    publisher.publishChangeRecursive(130, nullptr, &value, nullptr);
    EXPECT_EQ(calls, (Calls{"a 258.7=99", "a 258.7", "a 130=99"}));
}

TEST_F(PublisherTest, HandsOnTheVeryPointersAndTheSubscribersOwner) {
    struct Owner {
        static void dispatch(Publisher* from, Pelo::Subscriber* subscriber, Pelo::FieldId,
                             void const* key, void const* value) noexcept {
            auto& self = subscriber->owner<Owner>();
            self.right = from == self.from && subscriber == &self.subscriber && key == &self.key &&
                         value == &self.value;
        }
        Publisher* from;
        Pelo::Subscriber subscriber{this, &Owner::dispatch};
        int key = 1;
        int value = 1;
        bool right = false;
    };
    Owner owner{&publisher};
    publisher.subscriberAdd(&owner.subscriber, false);
    publisher.publishChangeRecursive(131, &owner.key, &owner.value, &Pelo::keysEqual<int>);
    EXPECT_TRUE(owner.right);
}

TEST_F(PublisherTest, TellsSubscribersInTheOrderOfSubscription) {
    add(b);
    add(a);
    add(c);
    EXPECT_EQ(heard(1), (Calls{"b 131.1", "a 131.1", "c 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 3u);
}

TEST_F(PublisherTest, TellsWhoSubscribedAtTheFrontFirst) {
    add(a);
    add(b, true);
    add(c, true);
    EXPECT_EQ(heard(1), (Calls{"c 131.1", "b 131.1", "a 131.1"}));
}

TEST_F(PublisherTest, SubscribingAgainChangesNothing) {
    add(a);
    add(b);
    add(a);
    add(b, true);
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "b 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 2u);
}

TEST_F(PublisherTest, WhoLeavesIsToldNoMore) {
    add(a);
    add(b);
    add(c);
    remove(b);
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "c 131.1"}));
    remove(a);
    remove(c);
    EXPECT_FALSE(publisher.hasSubscribers());
    add(b);
    EXPECT_EQ(heard(2), (Calls{"b 131.2"}));
}

TEST_F(PublisherTest, RemovingOneThatIsNotSubscribedHereChangesNothing) {
    add(a);
    remove(b);
    Publisher other;
    other.subscriberAdd(&b.subscriber, false);
    remove(b);
    EXPECT_EQ(b.subscriber.publisher(), &other);
    EXPECT_EQ(publisher.subscriberCount(), 1u);
    EXPECT_EQ(other.subscriberCount(), 1u);
}

TEST_F(PublisherTest, SubscribingElsewhereLeavesTheFormerPublisher) {
    Publisher other;
    other.subscriberAdd(&a.subscriber, false);
    add(a);
    publish(other, 131, 1);
    EXPECT_EQ(calls, Calls{});
    EXPECT_FALSE(other.hasSubscribers());
    EXPECT_EQ(heard(2), (Calls{"a 131.2"}));
}

TEST_F(PublisherTest, SubscriberKnowsItsPublisher) {
    EXPECT_FALSE(a.subscriber.subscribed());
    add(a);
    EXPECT_TRUE(a.subscriber.subscribed());
    EXPECT_EQ(a.subscriber.publisher(), &publisher);
    remove(a);
    EXPECT_FALSE(a.subscriber.subscribed());
    EXPECT_EQ(a.subscriber.publisher(), nullptr);
}

TEST_F(PublisherTest, SubscriberThatGoesLeavesItsPublisher) {
    add(a);
    {
        Reactor passing(calls, "passing");
        add(passing);
        add(b);
    }
    EXPECT_EQ(heard(1), (Calls{"a 131.1", "b 131.1"}));
    EXPECT_EQ(publisher.subscriberCount(), 2u);
}

TEST_F(PublisherTest, PublisherThatGoesLeavesItsSubscribersUnsubscribed) {
    auto passing = std::make_unique<Publisher>();
    passing->subscriberAdd(&a.subscriber, false);
    passing->subscriberAdd(&b.subscriber, false);
    passing.reset();
    EXPECT_FALSE(a.subscriber.subscribed());
    EXPECT_FALSE(b.subscriber.subscribed());
    add(a);
    EXPECT_EQ(heard(1), (Calls{"a 131.1"}));
}

TEST_F(PublisherTest, WithoutMemoryASubscriberStaysWhereItWas) {
    Publisher other;
    other.subscriberAdd(&a.subscriber, false);
    for (bool const atFront : {false, true}) {
        Support::FailingAllocations const none(0);
        EXPECT_THROW(add(a, atFront), std::bad_alloc);
    }
    EXPECT_EQ(a.subscriber.publisher(), &other);
    EXPECT_FALSE(publisher.hasSubscribers());
    publish(other, 131, 1);
    EXPECT_EQ(calls, (Calls{"a 131.1"}));
}

TEST(KeysEqual, ComparesWhatThePointersPointTo) {
    U32 const seven = 7;
    U32 const alsoSeven = 7;
    U32 const eight = 8;
    EXPECT_TRUE(Pelo::keysEqual<U32>(&seven, &alsoSeven));
    EXPECT_FALSE(Pelo::keysEqual<U32>(&seven, &eight));
}

TEST_F(PublisherTest, ManySubscribersAreEachToldOnce) {
    std::vector<std::unique_ptr<Reactor>> many;
    Calls expected;
    for (int i = 0; i < 1000; ++i) {
        many.push_back(std::make_unique<Reactor>(calls, std::to_string(i)));
        add(*many.back());
        expected.push_back(std::to_string(i) + " 131.5");
    }
    EXPECT_EQ(heard(5), expected);
    many.clear();
    EXPECT_EQ(publisher.subscriberCount(), 0u);
}

} // namespace
