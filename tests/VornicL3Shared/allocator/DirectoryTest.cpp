// The directories of configs and statuses: what their mutators change and publish.

#include "VornicL3Shared/support/Directories.h"
#include "VornicL3Shared/support/Listener.h"

#include <gtest/gtest.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace {

using Test::ConfigDirectory;
using Test::Listener;
using Test::Notification;
using Test::StatusDirectory;
using Notes = std::vector<std::string>;

struct SideName {
    template <class Side> static std::string GetName(int) { return Side::name; }
};

/// A directory of one side, two records, and a listener that notes each notification with the names
/// that the directory holds then: "131 bgp set {bgp}", "131 bgp gone {}".
template <class S> class Directory : public testing::Test {
protected:
    using Side = S;
    using Dir = typename S::Dir;
    using Record = typename S::Record;
    using Iterator = typename Dir::Entries::Iterator;

    std::string names() const {
        std::string text;
        for (Iterator it(S::entries(*dir)); it; it.advance()) {
            text += (text.empty() ? "" : " ") + std::string(it.key().view());
        }
        return text;
    }

    std::string noteOf(Notification const& told) const {
        auto const* const value = static_cast<Pelo::Ptr<Record> const*>(told.value);
        auto const& key = *static_cast<Pelo::String const*>(told.key);
        std::string const what = value == nullptr    ? " gone"
                                 : *value == one     ? " set"
                                 : *value == another ? " set anew"
                                                     : " set to something else";
        return std::to_string(told.field) + " " + std::string(key.view()) + what + " {" + names() +
               "}";
    }

    void is(char const* key, Pelo::Ptr<Record> const& record) { S::is(*dir, key, record); }
    Pelo::Ptr<Record> del(char const* key) { return S::del(*dir, key); }
    Notes take() { return std::exchange(notes, {}); }

    Pelo::Ptr<Dir> dir = S::factory("directory");
    Pelo::Ptr<Record> const one = Pelo::newNode<Record>("bgp");
    Pelo::Ptr<Record> const another = Pelo::newNode<Record>("bgp");
    Notes notes;
    Listener listener{*dir, [this](Notification const& told) { notes.push_back(noteOf(told)); }};
};
using Sides = testing::Types<ConfigDirectory, StatusDirectory>;
TYPED_TEST_SUITE(Directory, Sides, SideName);

TYPED_TEST(Directory, IsBuiltEmptyUnderItsNameWithoutSubscribers) {
    for (auto const& built : {TypeParam::creator("requests"), TypeParam::factory("requests")}) {
        EXPECT_EQ(built->name(), "requests");
        EXPECT_EQ(TypeParam::entries(*built).memberCount(), 0u);
        EXPECT_FALSE(built->publisher()->hasSubscribers());
    }
}

TYPED_TEST(Directory, BelongsToItsCreatorAndIsCountedByItsType) {
    auto const& tracker = TypeParam::Dir::allocationTracker();
    U64 const before = tracker.live();
    auto built = TypeParam::creator("requests");
    EXPECT_EQ(built->useCount(), 1u);
    EXPECT_EQ(tracker.live(), before + 1);
    built = nullptr;
    EXPECT_EQ(tracker.live(), before);
}

TYPED_TEST(Directory, BeginsWithRoomForOneEntry) {
    EXPECT_GT(TypeParam::entries(*this->dir).storageSize(), 0u);
}

TYPED_TEST(Directory, FindsWhatWasSetUnderAName) {
    this->is("bgp", this->one);
    EXPECT_TRUE(TypeParam::has(*this->dir, "bgp"));
    EXPECT_EQ(TypeParam::entry(*this->dir, "bgp"), this->one);
    EXPECT_FALSE(TypeParam::has(*this->dir, "mlag"));
    EXPECT_EQ(TypeParam::entry(*this->dir, "mlag"), nullptr);
}

TYPED_TEST(Directory, SettingANewNameIsTold) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    EXPECT_EQ(this->take(), (Notes{"131 bgp set {bgp}", "131 mlag set anew {bgp mlag}"}));
}

TYPED_TEST(Directory, SettingTheSamePointerTwiceIsToldOnce) {
    this->is("bgp", this->one);
    this->is("bgp", this->one);
    EXPECT_EQ(this->take(), Notes{"131 bgp set {bgp}"});
}

TYPED_TEST(Directory, SettingAnEqualButDistinctObjectIsToldAgain) {
    this->is("bgp", this->one);
    this->is("bgp", this->another);
    EXPECT_EQ(this->take(), (Notes{"131 bgp set {bgp}", "131 bgp set anew {bgp}"}));
    EXPECT_EQ(TypeParam::entry(*this->dir, "bgp"), this->another);
}

TYPED_TEST(Directory, AnEntryThatIsReplacedKeepsItsPlace) {
    this->is("bgp", this->one);
    this->is("mlag", this->one);
    this->is("bgp", this->another);
    EXPECT_EQ(this->names(), "bgp mlag");
}

TYPED_TEST(Directory, SettingNullRemovesTheEntryAndIsTold) {
    this->is("bgp", this->one);
    this->take();
    this->is("bgp", nullptr);
    EXPECT_EQ(this->take(), Notes{"131 bgp gone {}"});
    EXPECT_FALSE(TypeParam::has(*this->dir, "bgp"));
}

TYPED_TEST(Directory, SettingNullForAnAbsentNameDoesNothing) {
    this->is("bgp", nullptr);
    EXPECT_EQ(this->take(), Notes{});
    EXPECT_FALSE(TypeParam::has(*this->dir, "bgp"));
}

TYPED_TEST(Directory, DeletingANameGivesTheRemovedPointerAndIsTold) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    this->take();
    EXPECT_EQ(this->del("bgp"), this->one);
    EXPECT_EQ(this->take(), Notes{"131 bgp gone {mlag}"});
}

TYPED_TEST(Directory, DeletingAnAbsentNameGivesNullAndIsNotTold) {
    EXPECT_EQ(this->del("bgp"), nullptr);
    EXPECT_EQ(this->take(), Notes{});
}

TYPED_TEST(Directory, EmptyingWithSubscribersIsToldOncePerName) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    this->is("host", this->one);
    this->take();
    TypeParam::delAll(*this->dir);
    EXPECT_EQ(this->take(),
              (Notes{"131 bgp gone {mlag host}", "131 mlag gone {host}", "131 host gone {}"}));
}

TYPED_TEST(Directory, EmptyingEndsAlsoWhenAHandlerPutsEachKeyBack) {
    this->is("bgp", this->one);
    this->is("mlag", this->one);
    int patience = 10; // so that the test ends whatever happens
    Listener const putsBack(*this->dir, [&](Notification const& told) {
        if (told.value == nullptr && patience-- > 0) {
            TypeParam::is(*this->dir, *static_cast<Pelo::String const*>(told.key), this->another);
        }
    });
    this->take();
    TypeParam::delAll(*this->dir);
    EXPECT_EQ(this->take(), (Notes{"131 bgp gone {mlag}", "131 bgp set anew {mlag bgp}", //
                                   "131 mlag gone {bgp}", "131 mlag set anew {bgp mlag}"}));
}

TYPED_TEST(Directory, EmptyingWithoutSubscribersIsToldNobody) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    this->take();
    this->listener.leave();
    TypeParam::delAll(*this->dir);
    EXPECT_EQ(this->names(), "");
    EXPECT_EQ(this->take(), Notes{});
}

TYPED_TEST(Directory, HoldsOneUseOfEachRecord) {
    this->is("bgp", this->one);
    EXPECT_EQ(this->one->useCount(), 2u);
    this->is("mlag", this->one);
    EXPECT_EQ(this->one->useCount(), 3u);
    this->is("bgp", this->another);
    EXPECT_EQ(this->one->useCount(), 2u);
    EXPECT_EQ(this->another->useCount(), 2u);
    TypeParam::delAll(*this->dir);
    EXPECT_EQ(this->one->useCount(), 1u);
    EXPECT_EQ(this->another->useCount(), 1u);
}

TYPED_TEST(Directory, GivesItsRecordsBackWhenItIsDestroyed) {
    this->is("bgp", this->one);
    this->dir = nullptr;
    EXPECT_EQ(this->one->useCount(), 1u);
}

TYPED_TEST(Directory, RemovingAnEntryDoesNotDestroyARecordThatIsHeldElsewhere) {
    this->is("bgp", this->one);
    this->del("bgp");
    EXPECT_EQ(this->one->name(), "bgp");
    EXPECT_EQ(this->one->useCount(), 1u);
}

TYPED_TEST(Directory, AHandlerMayChangeTheDirectoryAgain) {
    Listener changes(*this->dir, [&](Notification const& told) {
        if (*static_cast<Pelo::String const*>(told.key) == "bgp" && told.value != nullptr) {
            this->del("bgp");
            this->is("mlag", this->another);
        }
    });
    this->is("bgp", this->one);
    EXPECT_EQ(this->take(),
              (Notes{"131 bgp set {bgp}", "131 bgp gone {}", "131 mlag set anew {mlag}"}));
    EXPECT_EQ(changes.fields(), (std::vector<Pelo::FieldId>{131, 131, 131}));
}

TYPED_TEST(Directory, AHandlerMayDeleteOthersWhileTheDirectoryIsEmptied) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    this->is("host", this->one);
    this->is("evpn", this->one);
    this->take();
    Listener deletes(*this->dir, [&](Notification const& told) {
        if (*static_cast<Pelo::String const*>(told.key) == "bgp") {
            this->del("mlag"); // the one that would be next
            this->del("evpn");
        }
    });
    TypeParam::delAll(*this->dir);
    EXPECT_EQ(this->take(), (Notes{"131 bgp gone {mlag host evpn}", "131 mlag gone {host evpn}",
                                   "131 evpn gone {host}", "131 host gone {}"}));
    EXPECT_EQ(deletes.fields(), (std::vector<Pelo::FieldId>{131, 131, 131, 131}));
}

/// A handler gives back the last use of the directory, and somebody subscribes after it.
template <class S> class DirectoryGivenBack : public Directory<S> {
protected:
    DirectoryGivenBack() {
        this->is("bgp", this->one);
        this->is("mlag", this->another);
        this->take();
        gives.emplace(*this->dir, [this](Notification const&) { this->dir = nullptr; });
        notTold.emplace(*this->dir);
    }
    /// The directory is gone, and its records with it; only those who subscribed before the handler
    /// were told, and only once.
    void expectGone(char const* note) {
        EXPECT_EQ(this->take(), Notes{note});
        EXPECT_EQ(notTold->fields(), std::vector<Pelo::FieldId>{});
        EXPECT_EQ(S::Dir::allocationTracker().live(), before - 1);
        EXPECT_EQ(this->one->useCount(), 1u);
        EXPECT_EQ(this->another->useCount(), 1u);
    }

    U64 const before = S::Dir::allocationTracker().live();
    std::optional<Listener> gives;
    std::optional<Listener> notTold;
};
TYPED_TEST_SUITE(DirectoryGivenBack, Sides, SideName);

TYPED_TEST(DirectoryGivenBack, WhileANameIsSet) {
    this->is("host", this->one);
    this->expectGone("131 host set {bgp mlag host}");
}

TYPED_TEST(DirectoryGivenBack, WhileANameIsDeleted) {
    EXPECT_EQ(this->del("bgp"), this->one);
    this->expectGone("131 bgp gone {mlag}");
}

TYPED_TEST(DirectoryGivenBack, WhileItIsEmptied) {
    TypeParam::delAll(*this->dir);
    this->expectGone("131 bgp gone {mlag}");
}

TYPED_TEST(Directory, AWalkMayDeleteTheNameUnderTheIterator) {
    this->is("bgp", this->one);
    this->is("mlag", this->another);
    std::string visited;
    for (typename TestFixture::Iterator it(TypeParam::entries(*this->dir)); it; it.advance()) {
        visited += std::string(it.key().view()) + " ";
        TypeParam::del(*this->dir, it.key());
    }
    EXPECT_EQ(visited, "bgp mlag ");
    EXPECT_EQ(this->names(), "");
}

TYPED_TEST(Directory, AnEntryMaySetAnotherNameToItsOwnPointer) {
    this->is("bgp", this->one);
    typename TestFixture::Iterator const it(TypeParam::entries(*this->dir));
    TypeParam::is(*this->dir, "mlag", it.value());
    TypeParam::is(*this->dir, it.key(), nullptr);
    EXPECT_EQ(this->names(), "mlag");
    EXPECT_EQ(TypeParam::entry(*this->dir, "mlag"), this->one);
}

} // namespace
