// The Higig interfaces of chips: what the mutators change, return and publish.

#include "VornicL3Shared/NonUcastHigigIntfs.h"

#include "VornicL3Shared/multicast/Multicast.h"
#include "VornicL3Shared/support/Listener.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Devbus::FapId;
using Interface::IntfSet;
using Test::fap;
using Test::intfs;
using Test::Listener;
using Test::Notification;
using VornicL3::NonUcastHigigIntfs;
using Notes = std::vector<std::string>;

/// Notes each notification with what the chip had and what all chips have then:
/// "258 1: [Et1] {1 [Et2]}".
class HigigIntfs : public testing::Test {
protected:
    std::string chips() const {
        std::string text = "{";
        for (NonUcastHigigIntfs::HigigIntfs::Iterator it(higig->higigIntfs()); it; it.advance()) {
            text += (text.size() == 1 ? "" : ", ") + it.key().stringValue() + " " +
                    it.value().stringValue();
        }
        return text + "}";
    }

    std::string noteOf(Notification const& told) const {
        auto const* const former = static_cast<IntfSet const*>(told.value);
        return std::to_string(told.field) + " " +
               static_cast<FapId const*>(told.key)->stringValue() + ": " +
               (former == nullptr ? "none" : former->stringValue()) + " " + chips();
    }

    Notes take() { return std::exchange(notes, {}); }

    /// Chips 1 to 3, in the order 2, 1, 3; nothing of it is noted.
    void three() {
        higig->higigIntfsIs(fap(2), intfs("b"));
        higig->higigIntfsIs(fap(1), intfs("a"));
        higig->higigIntfsIs(fap(3), intfs(""));
        take();
    }

    Pelo::Ptr<NonUcastHigigIntfs> higig = VornicL3::nonUcastHigigIntfsFactory("higig");
    Notes notes;
    std::optional<Listener> listener{
        std::in_place, *higig, [this](Notification const& told) { notes.push_back(noteOf(told)); }};
};

TEST_F(HigigIntfs, AreBuiltEmptyUnderTheirNameWithoutSubscribers) {
    for (auto const& built : {VornicL3::nonUcastHigigIntfsFactory("hw"),
                              NonUcastHigigIntfs::NonUcastHigigIntfsIs("hw")}) {
        EXPECT_EQ(built->name(), "hw");
        EXPECT_EQ(built->nameString(), "hw");
        EXPECT_EQ(built->higigIntfs().memberCount(), 0u);
        EXPECT_FALSE(built->publisher()->hasSubscribers());
    }
}

TEST_F(HigigIntfs, BelongToTheirCreatorAndAreCountedByTheirType) {
    auto const& tracker = NonUcastHigigIntfs::allocationTracker();
    U64 const live = tracker.live();
    U64 const allocated = tracker.allocated();
    auto built = VornicL3::nonUcastHigigIntfsFactory("hw");
    EXPECT_EQ(built->useCount(), 1u);
    EXPECT_EQ(tracker.live(), live + 1);
    EXPECT_EQ(tracker.allocated(), allocated + 1);
    EXPECT_EQ(tracker.objectSize(), sizeof(NonUcastHigigIntfs));
    built = nullptr;
    EXPECT_EQ(tracker.live(), live);
}

TEST_F(HigigIntfs, AreSharedUnderTheirPath) {
    EXPECT_EQ(NonUcastHigigIntfs::path(), "l3/mcast/higig/hwStatus");
}

TEST_F(HigigIntfs, AreFoundByChip) {
    higig->higigIntfsIs(fap(0), intfs("a b"));
    higig->higigIntfsIs(fap(255), intfs(""));
    EXPECT_EQ(higig->higigIntfs(fap(0)), intfs("b a"));
    EXPECT_TRUE(higig->higigIntfsHas(fap(255)));
    EXPECT_EQ(higig->higigIntfs(fap(255)), IntfSet());
    EXPECT_FALSE(higig->higigIntfsHas(fap(1)));
    EXPECT_EQ(higig->higigIntfs(fap(1)), IntfSet());
}

TEST_F(HigigIntfs, OfANewChipArePublishedWithoutAFormerSet) {
    higig->higigIntfsIs(fap(1), intfs("a"));
    higig->higigIntfsIs(fap(2), intfs(""));
    EXPECT_EQ(take(), (Notes{"258 1: none {1 [a]}", "258 2: none {1 [a], 2 []}"}));
}

TEST_F(HigigIntfs, ThatChangeArePublishedWithTheFormerSet) {
    three();
    higig->higigIntfsIs(fap(2), intfs("b c"));
    higig->higigIntfsIs(fap(3), intfs("d"));
    higig->higigIntfsIs(fap(2), intfs(""));
    EXPECT_EQ(take(),
              (Notes{"258 2: [b] {2 [b, c], 1 [a], 3 []}", "258 3: [] {2 [b, c], 1 [a], 3 [d]}",
                     "258 2: [b, c] {2 [], 1 [a], 3 [d]}"}));
}

TEST_F(HigigIntfs, ThatAChipHasAlreadyAreNotPublished) {
    three();
    higig->higigIntfsIs(fap(2), intfs("b"));
    higig->higigIntfsIs(fap(3), intfs(""));
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(chips(), "{2 [b], 1 [a], 3 []}");
}

TEST_F(HigigIntfs, ThatAreDeletedAreReturnedAndPublishedAsFormer) {
    three();
    EXPECT_EQ(higig->higigIntfsDel(fap(2)), intfs("b"));
    EXPECT_EQ(higig->higigIntfsDel(fap(3)), IntfSet());
    EXPECT_EQ(take(), (Notes{"258 2: [b] {1 [a], 3 []}", "258 3: [] {1 [a]}"}));
}

TEST_F(HigigIntfs, OfAnAbsentChipAreEmptyWhenDeletedAndNotPublished) {
    three();
    EXPECT_EQ(higig->higigIntfsDel(fap(4)), IntfSet());
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(chips(), "{2 [b], 1 [a], 3 []}");
}

TEST_F(HigigIntfs, ArePublishedOncePerChipWhenAllAreDeleted) {
    three();
    higig->higigIntfsDelAll();
    EXPECT_EQ(take(), (Notes{"258 2: [b] {1 [a], 3 []}", "258 1: [a] {3 []}", "258 3: [] {}"}));
    higig->higigIntfsDelAll();
    EXPECT_EQ(take(), Notes{});
}

TEST_F(HigigIntfs, AreDeletedInOneStepWhenNobodySubscribes) {
    three();
    listener->leave();
    higig->higigIntfsDelAll();
    EXPECT_EQ(chips(), "{}");
    EXPECT_EQ(higig->higigIntfs().storageSize(), 0u); // single deletions keep the storage
    EXPECT_EQ(take(), Notes{});
}

TEST_F(HigigIntfs, OfAnotherChipMayBeGivenFromTheEntityItself) {
    three();
    higig->higigIntfsIs(fap(4), higig->higigIntfs().lookupNode(fap(2))->value());
    higig->higigIntfsIs(fap(1), higig->higigIntfs().lookupNode(fap(2))->value());
    EXPECT_EQ(chips(), "{2 [b], 1 [b], 3 [], 4 [b]}");
}

TEST_F(HigigIntfs, GoWithoutANotificationAndLetTheirNamesGo) {
    std::size_t const names = Netzo::IntfId::namesInUse();
    higig->higigIntfsIs(fap(1), intfs("only-on-chip-1"));
    EXPECT_EQ(Netzo::IntfId::namesInUse(), names + 1);
    take();
    higig = nullptr;
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(Netzo::IntfId::namesInUse(), names);
}

TEST_F(HigigIntfs, HaveNothingToDoWithAParent) {
    auto const parent = VornicL3::nonUcastHigigIntfsFactory("parent");
    three();
    higig->handleParent(parent.get());
    EXPECT_EQ(take(), Notes{});
    EXPECT_EQ(chips(), "{2 [b], 1 [a], 3 []}");
    EXPECT_EQ(parent->useCount(), 1u);
}

// Changes from within notifications.

TEST_F(HigigIntfs, AreAllRemovedWhateverASubscriberRemovesMeanwhile) {
    three();
    Listener removes(*higig, [&](Notification const& told) {
        if (*static_cast<FapId const*>(told.key) == fap(2)) {
            higig->higigIntfsDel(fap(1));
        }
    });
    higig->higigIntfsDelAll();
    EXPECT_EQ(take(), (Notes{"258 2: [b] {1 [a], 3 []}", "258 1: [a] {3 []}", "258 3: [] {}"}));
}

TEST_F(HigigIntfs, ThatASubscriberAddsWhileAllAreDeletedAreDeletedToo) {
    three();
    Listener adds(*higig, [&](Notification const& told) {
        if (*static_cast<FapId const*>(told.key) == fap(2)) {
            higig->higigIntfsIs(fap(9), intfs("late"));
        }
    });
    higig->higigIntfsDelAll();
    EXPECT_EQ(take(),
              (Notes{"258 2: [b] {1 [a], 3 []}", "258 9: none {1 [a], 3 [], 9 [late]}",
                     "258 1: [a] {3 [], 9 [late]}", "258 3: [] {9 [late]}", "258 9: [late] {}"}));
}

TEST_F(HigigIntfs, ThatASubscriberPutsBackWhileAllAreDeletedStay) {
    three();
    Listener putsBack(*higig, [&](Notification const& told) {
        FapId const chip = *static_cast<FapId const*>(told.key);
        if (!higig->higigIntfsHas(chip)) {
            higig->higigIntfsIs(chip, intfs("back"));
        }
    });
    higig->higigIntfsDelAll();
    EXPECT_EQ(chips(), "{2 [back], 1 [back], 3 [back]}");
    EXPECT_EQ(take().size(), 6u);
}

TEST_F(HigigIntfs, AreAllRemovedWhenTheLastSubscriberLeavesMeanwhile) {
    three();
    Listener leaves(*higig, [&](Notification const&) {
        listener->leave();
        leaves.leave();
    });
    higig->higigIntfsDelAll();
    EXPECT_EQ(chips(), "{}");
    EXPECT_EQ(take(), Notes{"258 2: [b] {1 [a], 3 []}"});
    EXPECT_FALSE(higig->publisher()->hasSubscribers());
}

TEST_F(HigigIntfs, TellOneThatSubscribesMeanwhileOfTheChipsThatFollow) {
    three();
    std::optional<Listener> late;
    Listener brings(*higig, [&](Notification const&) {
        if (!late) {
            late.emplace(*higig);
        }
    });
    higig->higigIntfsDelAll();
    EXPECT_EQ(late->fields(), (std::vector<Pelo::FieldId>{258, 258}));
}

TEST_F(HigigIntfs, MayLoseTheirLastUseWhileAllAreDeleted) {
    three();
    U64 const live = NonUcastHigigIntfs::allocationTracker().live();
    Listener gives(*higig, [&](Notification const&) { higig = nullptr; });
    NonUcastHigigIntfs& borrowed = *higig;
    borrowed.higigIntfsDelAll();
    EXPECT_EQ(take(), Notes{"258 2: [b] {1 [a], 3 []}"});
    EXPECT_EQ(NonUcastHigigIntfs::allocationTracker().live(), live - 1);
}

TEST_F(HigigIntfs, AreReturnedByADeletionThatLosesTheLastUse) {
    three();
    Listener gives(*higig, [&](Notification const&) { higig = nullptr; });
    NonUcastHigigIntfs& borrowed = *higig;
    EXPECT_EQ(borrowed.higigIntfsDel(fap(1)), intfs("a"));
}

TEST_F(HigigIntfs, MayBeSetAgainByASubscriberWhichIsToldInsideTheOtherNotification) {
    Listener sets(*higig,
                  [&](Notification const&) { higig->higigIntfsIs(fap(1), intfs("settled")); });
    Notes late;
    Listener last(*higig, [&](Notification const& told) { late.push_back(noteOf(told)); });
    higig->higigIntfsIs(fap(1), intfs("first"));
    EXPECT_EQ(take(), (Notes{"258 1: none {1 [first]}", "258 1: [first] {1 [settled]}"}));
    EXPECT_EQ(late, (Notes{"258 1: [first] {1 [settled]}", "258 1: none {1 [settled]}"}));
}

} // namespace
