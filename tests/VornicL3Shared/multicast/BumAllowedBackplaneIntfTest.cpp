// The backplane interfaces that are allowed: what changes them and what is published.

#include "VornicL3Shared/BumAllowedBackplaneIntf.h"

#include "VornicL3Shared/multicast/Multicast.h"
#include "VornicL3Shared/support/Listener.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using Interface::IntfSet;
using Test::intfs;
using Test::Listener;
using Test::Notification;
using VornicL3::BumAllowedBackplaneIntf;
using Notes = std::vector<std::string>;

/// Notes each notification with the former and the present set: "258 [a] -> [b]".
class BackplaneIntfs : public testing::Test {
protected:
    std::string noteOf(Notification const& told) const {
        return std::to_string(told.field) + (told.key == nullptr ? " " : " key ") +
               static_cast<IntfSet const*>(told.value)->stringValue() + " -> " +
               backplane->intfs().stringValue();
    }
    Notes take() { return std::exchange(notes, {}); }

    Pelo::Ptr<BumAllowedBackplaneIntf> backplane =
        VornicL3::bumAllowedBackplaneIntfFactory("backplane");
    Notes notes;
    Listener listener{*backplane,
                      [this](Notification const& told) { notes.push_back(noteOf(told)); }};
};

TEST_F(BackplaneIntfs, AreBuiltEmptyUnderTheirNameWithoutSubscribers) {
    for (auto const& built : {VornicL3::bumAllowedBackplaneIntfFactory("bum"),
                              BumAllowedBackplaneIntf::BumAllowedBackplaneIntfIs("bum")}) {
        EXPECT_EQ(built->name(), "bum");
        EXPECT_EQ(built->nameString(), "bum");
        EXPECT_EQ(built->intfs(), IntfSet());
        EXPECT_FALSE(built->publisher()->hasSubscribers());
    }
}

TEST_F(BackplaneIntfs, BelongToTheirCreatorAndAreCountedByTheirType) {
    auto const& tracker = BumAllowedBackplaneIntf::allocationTracker();
    U64 const live = tracker.live();
    auto built = VornicL3::bumAllowedBackplaneIntfFactory("bum");
    EXPECT_EQ(built->useCount(), 1u);
    EXPECT_EQ(tracker.live(), live + 1);
    EXPECT_EQ(tracker.objectSize(), sizeof(BumAllowedBackplaneIntf));
    built = nullptr;
    EXPECT_EQ(tracker.live(), live);
}

TEST_F(BackplaneIntfs, AreSharedUnderTheirPath) {
    EXPECT_EQ(BumAllowedBackplaneIntf::path(), "l3/mcast/higig/allowedBackplaneIntf");
}

TEST_F(BackplaneIntfs, ThatChangeArePublishedWithoutKeyAndWithTheFormerSet) {
    backplane->intfsIs(intfs("a b"));
    backplane->intfsIs(intfs("b"));
    backplane->intfsIs(intfs(""));
    EXPECT_EQ(take(), (Notes{"258 [] -> [a, b]", "258 [a, b] -> [b]", "258 [b] -> []"}));
}

TEST_F(BackplaneIntfs, ThatAreEqualAreNotPublished) {
    backplane->intfsIs(intfs(""));
    EXPECT_EQ(take(), Notes{});
    backplane->intfsIs(intfs("a b"));
    take();
    backplane->intfsIs(intfs("b a"));
    backplane->intfsIs(backplane->intfs());
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(backplane->intfs(), intfs("a b"));
}

TEST_F(BackplaneIntfs, GoWithoutANotificationAndLetTheirNamesGo) {
    std::size_t const names = Netzo::IntfId::namesInUse();
    backplane->intfsIs(intfs("only-on-the-backplane"));
    EXPECT_EQ(Netzo::IntfId::namesInUse(), names + 1);
    take();
    backplane = nullptr;
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(Netzo::IntfId::namesInUse(), names);
}

TEST_F(BackplaneIntfs, MayBeSetAgainByASubscriber) {
    Listener settles(*backplane, [&](Notification const&) { backplane->intfsIs(intfs("b")); });
    backplane->intfsIs(intfs("a"));
    EXPECT_EQ(take(), (Notes{"258 [] -> [a]", "258 [a] -> [b]"}));
    EXPECT_EQ(settles.fields(), (std::vector<Pelo::FieldId>{258, 258}));
}

TEST_F(BackplaneIntfs, MayLoseTheirLastUseToASubscriber) {
    U64 const live = BumAllowedBackplaneIntf::allocationTracker().live();
    Listener gives(*backplane, [&](Notification const&) { backplane = nullptr; });
    Listener notTold(*backplane);
    BumAllowedBackplaneIntf& borrowed = *backplane;
    borrowed.intfsIs(intfs("a"));
    EXPECT_EQ(take(), Notes{"258 [] -> [a]"});
    EXPECT_EQ(notTold.fields(), std::vector<Pelo::FieldId>{});
    EXPECT_EQ(BumAllowedBackplaneIntf::allocationTracker().live(), live - 1);
}

} // namespace
