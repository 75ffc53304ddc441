// The local database: what it holds, and for how long.

#include "VornicL3Shared/L3IpmcLocalDb.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace {

using VornicL3::BumAllowedBackplaneIntf;
using VornicL3::L3IpmcLocalDb;
using VornicL3::NonUcastHigigIntfs;

class LocalDb : public testing::Test {
protected:
    Pelo::Ptr<BumAllowedBackplaneIntf> const backplane =
        VornicL3::bumAllowedBackplaneIntfFactory("backplane");
    Pelo::Ptr<NonUcastHigigIntfs> const higig = VornicL3::nonUcastHigigIntfsFactory("higig");
};

TEST_F(LocalDb, RefersToBothSetsWhoeverBuildsIt) {
    for (auto const& db : {VornicL3::l3IpmcLocalDbFactory(backplane, higig),
                           L3IpmcLocalDb::L3IpmcLocalDbIs(backplane, higig)}) {
        EXPECT_EQ(db->allowedBackplaneIntf(), backplane.get());
        EXPECT_EQ(db->hwHigigIntfs(), higig);
    }
}

TEST_F(LocalDb, GivesTheBackplaneSetAsAConstant) {
    auto const db = VornicL3::l3IpmcLocalDbFactory(backplane, higig);
    static_assert(std::is_const_v<std::remove_reference_t<decltype(*db->allowedBackplaneIntf())>>);
    static_assert(!std::is_const_v<std::remove_reference_t<decltype(*db->hwHigigIntfs())>>);
    db->hwHigigIntfs()->higigIntfsIs(Devbus::FapId(1), {Netzo::IntfId("Ethernet1")});
    EXPECT_TRUE(higig->higigIntfsHas(Devbus::FapId(1)));
}

TEST_F(LocalDb, HoldsAUseOfEachAsLongAsItLives) {
    auto db = VornicL3::l3IpmcLocalDbFactory(backplane, higig);
    EXPECT_EQ(backplane->useCount(), 2u);
    EXPECT_EQ(higig->useCount(), 2u);
    auto const another = db;
    db = nullptr;
    EXPECT_EQ(backplane->useCount(), 2u);
    EXPECT_EQ(higig->useCount(), 2u);
}

TEST_F(LocalDb, GivesBothBackWhenItsLastUserGoes) {
    auto const& tracker = L3IpmcLocalDb::allocationTracker();
    U64 const live = tracker.live();
    auto db = VornicL3::l3IpmcLocalDbFactory(backplane, higig);
    EXPECT_EQ(db->useCount(), 1u);
    EXPECT_EQ(tracker.live(), live + 1);
    EXPECT_EQ(tracker.objectSize(), sizeof(L3IpmcLocalDb));
    db = nullptr;
    EXPECT_EQ(tracker.live(), live);
    EXPECT_EQ(backplane->useCount(), 1u);
    EXPECT_EQ(higig->useCount(), 1u);
}

TEST_F(LocalDb, KeepsASetAliveThatNobodyElseHolds) {
    U64 const live = NonUcastHigigIntfs::allocationTracker().live();
    auto db = VornicL3::l3IpmcLocalDbFactory(nullptr, VornicL3::nonUcastHigigIntfsFactory("mine"));
    EXPECT_EQ(db->hwHigigIntfs()->name(), "mine");
    EXPECT_EQ(NonUcastHigigIntfs::allocationTracker().live(), live + 1);
    db = nullptr;
    EXPECT_EQ(NonUcastHigigIntfs::allocationTracker().live(), live);
}

TEST_F(LocalDb, TakesNullForEither) {
    auto const withoutBackplane = VornicL3::l3IpmcLocalDbFactory(nullptr, higig);
    EXPECT_EQ(withoutBackplane->allowedBackplaneIntf(), nullptr);
    EXPECT_EQ(withoutBackplane->hwHigigIntfs(), higig);
    auto const withoutHigig = VornicL3::l3IpmcLocalDbFactory(backplane, nullptr);
    EXPECT_EQ(withoutHigig->allowedBackplaneIntf(), backplane.get());
    EXPECT_EQ(withoutHigig->hwHigigIntfs(), nullptr);
}

TEST_F(LocalDb, HasNoPublisher) {
    EXPECT_EQ(VornicL3::l3IpmcLocalDbFactory(backplane, higig)->publisher(), nullptr);
}

} // namespace
