#include "qor/Entity.h"

#include "pelo/Slab.h"
#include "qor/HashMap2018.h"
#include "runtime/pelo/Reactor.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Pelo::String;
using Support::Calls;
using Support::Reactor;

/// An entity with one attribute and one collection.
class Tank final : public Qor::Entity, public Pelo::SlabAllocated<Tank> {
public:
    using Levels = Qor::HashMap2018<int, int>;

    explicit Tank(String const& name) : Entity(name) {}

    void capacityIs(int capacity) {
        capacity_ = capacity;
        publishAttribute(130, &capacity_);
    }
    void levelIs(int gauge, int level) {
        if (level_.memberIs(gauge, level) != Levels::Change::none) {
            publishMember(131, gauge, &level);
        }
    }
    void levelDel(int gauge) {
        if (level_.deleteMember(gauge)) {
            publishMember(131, gauge, nullptr);
        }
    }
    Levels const& level() const { return level_; }
    bool heard() const { return hasSubscribers(); }

private:
    int capacity_ = 0;
    Levels level_;
};

TEST(Entity, HasTheNameThatItWasBuiltWith) {
    auto const tank = Pelo::newNode<Tank>("diesel");
    EXPECT_EQ(tank->name(), "diesel");
    EXPECT_EQ(tank->nameString(), "diesel");
    EXPECT_EQ(tank->useCount(), 1u);
}

TEST(Entity, HasAPublisherOfItsOwnAlsoWhenItIsConstant) {
    auto const tank = Pelo::newNode<Tank>("diesel");
    auto const other = Pelo::newNode<Tank>("water");
    Pelo::Ptr<Tank const> const constant = tank;
    EXPECT_NE(tank->publisher(), nullptr);
    EXPECT_EQ(constant->publisher(), tank->publisher());
    EXPECT_NE(tank->publisher(), other->publisher());
}

TEST(Entity, PublishesAttributesAndMembersAfterTheChange) {
    Calls calls;
    auto const tank = Pelo::newNode<Tank>("diesel");
    std::vector<U32> counts;
    Reactor gauge(calls, "gauge", [&] { counts.push_back(tank->level().memberCount()); });
    EXPECT_FALSE(tank->heard());
    tank->levelIs(1, 5);
    tank->publisher()->subscriberAdd(&gauge.subscriber, false);
    EXPECT_TRUE(tank->heard());
    tank->capacityIs(100);
    tank->levelIs(1, 5);
    tank->levelIs(1, 6);
    tank->levelIs(2, 7);
    tank->levelDel(1);
    tank->levelDel(1);
    EXPECT_EQ(calls, (Calls{"gauge 130=100", "gauge 131.1=6", "gauge 131.2=7", "gauge 131.1"}));
    EXPECT_EQ(counts, (std::vector<U32>{1, 1, 2, 1}));
}

TEST(Entity, LeavesItsSubscribersUnsubscribedWhenItGoes) {
    Calls calls;
    Reactor gauge(calls, "gauge");
    auto tank = Pelo::newNode<Tank>("diesel");
    tank->publisher()->subscriberAdd(&gauge.subscriber, false);
    tank = nullptr;
    EXPECT_FALSE(gauge.subscriber.subscribed());
    EXPECT_EQ(Tank::allocationTracker().live(), 0u);
}

TEST(Entity, MayGoWhileItPublishes) {
    Calls calls;
    auto tank = Pelo::newNode<Tank>("diesel");
    Reactor breaker(calls, "breaker", [&] { tank = nullptr; });
    Reactor late(calls, "late");
    tank->publisher()->subscriberAdd(&breaker.subscriber, false);
    tank->publisher()->subscriberAdd(&late.subscriber, false);
    tank->levelIs(1, 5);
    EXPECT_EQ(calls, (Calls{"breaker 131.1=5"}));
    EXPECT_FALSE(late.subscriber.subscribed());
}

TEST(Entity, TakesAParentWithoutDoingAnything) {
    auto const tank = Pelo::newNode<Tank>("diesel");
    auto const site = Pelo::newNode<Tank>("site");
    tank->handleParent(site.get());
    EXPECT_EQ(site->useCount(), 1u);
    EXPECT_EQ(tank->name(), "diesel");
}

} // namespace
