// The service and its holder: installing, replacing and removing implementations.

#include "VornicL3Shared/L3McastGroupApi.h"

#include "VornicL3Shared/multicast/Multicast.h"
#include "VornicL3Shared/support/Listener.h"

#include <gtest/gtest.h>

#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace {

using Test::Listener;
using Test::Notification;
using Test::SampleApi;
using VornicL3::L3McastGroupApi;
using VornicL3::L3McastGroupApiHolder;
using ApiPtr = Pelo::Ptr<L3McastGroupApi>;
using Notes = std::vector<std::string>;

std::string nameOf(ApiPtr const& api) {
    return api == nullptr ? "none" : dynamic_cast<SampleApi const&>(*api).name();
}

/// Notes each notification with the former and the installed implementation, "258 none -> one", and
/// each end of an implementation, "one gone".
class ApiHolder : public testing::Test {
protected:
    std::string noteOf(Notification const& told) const {
        return std::to_string(told.field) + (told.key == nullptr ? " " : " key ") +
               nameOf(*static_cast<ApiPtr const*>(told.value)) + " -> " +
               nameOf(holder->l3McastGroupApi());
    }
    ApiPtr sample(char const* name) { return Pelo::newNode<SampleApi>(notes, name); }
    Notes take() { return std::exchange(notes, {}); }

    Notes notes;
    Pelo::Ptr<L3McastGroupApiHolder> holder = VornicL3::l3McastGroupApiHolderFactory("holder");
    Listener listener{*holder, [this](Notification const& told) { notes.push_back(noteOf(told)); }};
};

TEST_F(ApiHolder, IsBuiltEmptyUnderItsNameWithoutSubscribers) {
    for (auto const& built : {VornicL3::l3McastGroupApiHolderFactory("shared"),
                              L3McastGroupApiHolder::L3McastGroupApiHolderIs("shared")}) {
        EXPECT_EQ(built->name(), "shared");
        EXPECT_EQ(built->nameString(), "shared");
        EXPECT_EQ(built->l3McastGroupApi(), nullptr);
        EXPECT_FALSE(built->publisher()->hasSubscribers());
    }
}

TEST_F(ApiHolder, BelongsToItsCreatorAndIsCountedByItsType) {
    auto const& tracker = L3McastGroupApiHolder::allocationTracker();
    U64 const live = tracker.live();
    auto built = VornicL3::l3McastGroupApiHolderFactory("shared");
    EXPECT_EQ(built->useCount(), 1u);
    EXPECT_EQ(tracker.live(), live + 1);
    EXPECT_EQ(tracker.objectSize(), sizeof(L3McastGroupApiHolder));
    built = nullptr;
    EXPECT_EQ(tracker.live(), live);
}

TEST_F(ApiHolder, IsSharedUnderItsName) {
    EXPECT_EQ(L3McastGroupApiHolder::sharedEntityName(), "l3McastGroupApi");
}

TEST_F(ApiHolder, GivesWhatIsInstalled) {
    ApiPtr const one = sample("one");
    holder->l3McastGroupApiIs(one);
    EXPECT_EQ(holder->l3McastGroupApi(), one);
    EXPECT_EQ(one->useCount(), 2u);
    holder->l3McastGroupApi()->updateL2Bitmaps(Devbus::FapId(7), true);
    holder->l3McastGroupApi()->updateL2Bitmaps(Devbus::FapId(8), false);
    holder->l3McastGroupApi()->updateAllL2Bitmaps();
    EXPECT_EQ(take(),
              (Notes{"258 none -> one", "one update 7 post", "one update 8", "one update all"}));
}

TEST_F(ApiHolder, PublishesTheSameImplementationOnce) {
    ApiPtr const one = sample("one");
    holder->l3McastGroupApiIs(one);
    holder->l3McastGroupApiIs(one);
    holder->l3McastGroupApiIs(holder->l3McastGroupApi());
    EXPECT_EQ(take(), Notes{"258 none -> one"});
    EXPECT_EQ(one->useCount(), 2u);
}

TEST_F(ApiHolder, PublishesNothingForNullWhenNoneIsInstalled) {
    holder->l3McastGroupApiIs(nullptr);
    EXPECT_EQ(take(), Notes{});
}

TEST_F(ApiHolder, GivesTheFormerImplementationBackAfterTheNotification) {
    holder->l3McastGroupApiIs(sample("one"));
    holder->l3McastGroupApiIs(sample("two"));
    EXPECT_EQ(take(), (Notes{"258 none -> one", "258 one -> two", "one gone"}));
}

TEST_F(ApiHolder, GivesARemovedImplementationBackAfterTheNotification) {
    holder->l3McastGroupApiIs(sample("one"));
    take();
    holder->l3McastGroupApiIs(nullptr);
    EXPECT_EQ(take(), (Notes{"258 one -> none", "one gone"}));
    EXPECT_EQ(holder->l3McastGroupApi(), nullptr);
}

TEST_F(ApiHolder, TellsEverySubscriberBeforeItGivesTheFormerOneBack) {
    holder->l3McastGroupApiIs(sample("one"));
    take();
    Listener second(*holder, [this](Notification const& told) {
        auto const& former = *static_cast<ApiPtr const*>(told.value);
        notes.push_back("second still finds " + nameOf(former));
        former->updateAllL2Bitmaps();
    });
    holder->l3McastGroupApiIs(nullptr);
    EXPECT_EQ(take(),
              (Notes{"258 one -> none", "second still finds one", "one update all", "one gone"}));
}

TEST_F(ApiHolder, DoesNotEndAnImplementationThatIsHeldElsewhere) {
    ApiPtr const one = sample("one");
    holder->l3McastGroupApiIs(one);
    holder->l3McastGroupApiIs(nullptr);
    EXPECT_EQ(one->useCount(), 1u);
    EXPECT_EQ(take(), (Notes{"258 none -> one", "258 one -> none"}));
}

TEST_F(ApiHolder, GivesTheImplementationBackWhenItGoesAndTellsNobody) {
    holder->l3McastGroupApiIs(sample("one"));
    take();
    holder = nullptr;
    EXPECT_EQ(take(), Notes{"one gone"});
}

TEST_F(ApiHolder, MayBeGivenAnotherImplementationByASubscriber) {
    ApiPtr const two = sample("two");
    Listener replaces(*holder, [&](Notification const&) { holder->l3McastGroupApiIs(two); });
    Notes late;
    Listener last(*holder, [&](Notification const& told) { late.push_back(noteOf(told)); });
    holder->l3McastGroupApiIs(sample("one"));
    EXPECT_EQ(take(), (Notes{"258 none -> one", "258 one -> two", "one gone"}));
    EXPECT_EQ(late, (Notes{"258 one -> two", "258 none -> two"}));
    EXPECT_EQ(two->useCount(), 2u);
}

TEST_F(ApiHolder, MayLoseItsLastUseToASubscriber) {
    holder->l3McastGroupApiIs(sample("one"));
    take();
    U64 const live = L3McastGroupApiHolder::allocationTracker().live();
    Listener gives(*holder, [&](Notification const&) {
        holder = nullptr;
        notes.emplace_back("holder gone");
    });
    L3McastGroupApiHolder& borrowed = *holder;
    borrowed.l3McastGroupApiIs(sample("two"));
    EXPECT_EQ(take(), (Notes{"258 one -> two", "holder gone", "one gone", "two gone"}));
    EXPECT_EQ(L3McastGroupApiHolder::allocationTracker().live(), live - 1);
}

TEST(L3McastGroupApi, IsAbstractAndHasNoPublisher) {
    static_assert(std::is_abstract_v<L3McastGroupApi>);
    static_assert(std::is_base_of_v<Pelo::Node, L3McastGroupApi>);
    Notes notes;
    ApiPtr const api = Pelo::newNode<SampleApi>(notes);
    EXPECT_EQ(api->publisher(), nullptr);
}

} // namespace
