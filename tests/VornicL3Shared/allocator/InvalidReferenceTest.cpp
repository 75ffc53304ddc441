// The waiting keys follow the reference list.

#include "VornicL3Shared/allocator/KindTest.h"

#include <map>

namespace {

using namespace VornicCentral;
using Test::Lines;

/// What tells the kinds apart in the handler's traces.
struct Words {
    std::string handler;
    std::string key;     ///< of key 1, in the trace line
    std::string ringKey; ///< the same in the ring buffer
    std::string tag;     ///< before "vport"
};

template <class Kind> Words const& words() {
    static std::map<std::string, Words> const all{
        {"remote", {"handleInvalidRemoteVport", " vtep: 10.0.0.1", " vtep: 10.0.0.1", " "}},
        {"mlag", {"handleInvalidMlagRemoteVport", " vtep: 10.0.0.1", " vtep: 10.0.0.1", " mlag "}},
        {"edge",
         {"handleInvalidEdgeVport", " pvKey: Ethernet1/1:100", " port: Et1/1 vlan: 100", " "}},
        {"vlan", {"handleInvalidVlanVport", " vlan: 101", " vlan: 101", " "}},
        {"efilter",
         {"handleInvalidEFilterDisableVport", " intf: Ethernet2/1", " intf: Et2/1", " "}}};
    return all.at(Kind::word);
}

/// No clients; the reference list is written by hand.
template <class Kind> class InvalidReference : public ::Test::KindTest<Kind> {
protected:
    InvalidReference() { this->start({.tableSize = 16, .reallocation = true}, {}); }

    void write(U16 vpIndex) {
        VpReference value{VirtualPort(vpIndex)};
        value.referenceIs("bgp", true);
        this->world.references->template is<Kind>(key, value);
    }
    void remove() { this->world.references->template del<Kind>(key); }
    bool waits() const { return this->world.waiting->template has<Kind>(key); }
    void withoutReallocation() { this->start({.tableSize = 16, .reallocation = false}, {}); }
    void fullPass() {
        auto& sm = *this->world.sm;
        if constexpr (std::is_same_v<Kind, RemoteVport>) {
            sm.handleInvalidRemoteVport();
        } else if constexpr (std::is_same_v<Kind, MlagRemoteVport>) {
            sm.handleInvalidMlagRemoteVport();
        } else if constexpr (std::is_same_v<Kind, EdgeVport>) {
            sm.handleInvalidEdgeVport();
        } else if constexpr (std::is_same_v<Kind, VlanVport>) {
            sm.handleInvalidVlanVport();
        } else {
            sm.handleInvalidEFilterDisableVport();
        }
    }

    typename Kind::Key const key = ::Test::numbered<Kind>(1).key;
};
TYPED_TEST_SUITE(InvalidReference, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(InvalidReference, WithoutAnIndexMakesTheKeyWaitAndAnIndexEndsIt) {
    auto const& word = words<TypeParam>();
    this->write(65535);
    EXPECT_TRUE(this->waits());
    EXPECT_EQ(this->world.capture.traces(),
              (Lines{"1 " + word.handler + word.key,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 65535",
                     "5 " + word.handler + word.tag + "vport added : 65535"}));
    this->write(12);
    EXPECT_FALSE(this->waits());
    EXPECT_EQ(this->world.capture.traces(),
              (Lines{"1 " + word.handler + word.key,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 12",
                     "5 " + word.handler + word.tag + "vport deleted : 12"}));
}

TYPED_TEST(InvalidReference, TheRingTellsTheKeyInItsOwnForm) {
    auto const& word = words<TypeParam>();
    this->write(65535);
    EXPECT_EQ(this->world.capture.ring(),
              (Lines{"1 " + word.handler + word.ringKey,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 65535",
                     "5 " + word.handler + word.tag + "vport added : 65535"}));
}

TYPED_TEST(InvalidReference, RemovedTakesTheKeyOffTheListAlsoWhenItWasNotThere) {
    auto const& word = words<TypeParam>();
    this->write(65535);
    this->world.capture.forget();
    this->remove();
    EXPECT_FALSE(this->waits());
    EXPECT_EQ(
        this->world.capture.traces(),
        (Lines{"1 " + word.handler + word.key, "5 " + word.handler + word.tag + "vport deleted "}));
    this->write(12);
    this->remove();
    EXPECT_FALSE(this->waits());
}

TYPED_TEST(InvalidReference, WithoutReallocationNothingChangesTheList) {
    auto const& word = words<TypeParam>();
    this->withoutReallocation();
    this->world.waiting->template is<TypeParam>(::Test::numbered<TypeParam>(7).key,
                                                true); // stale, and stays
    std::string const waitingBefore = this->world.state();
    this->write(65535);
    this->world.capture.forget();
    this->remove();
    EXPECT_EQ(this->world.capture.traces(), (Lines{"1 " + word.handler + word.key}));
    this->fullPass();
    EXPECT_EQ(this->world.capture.traces(), (Lines{"1 " + word.handler}));
    EXPECT_EQ(this->world.state(), waitingBefore);
}

TYPED_TEST(InvalidReference, AFullPassBringsEveryKeyOfTheKindInLine) {
    auto const& word = words<TypeParam>();
    this->write(65535);
    this->world.waiting->template delAll<TypeParam>();
    this->world.capture.forget();
    this->fullPass();
    EXPECT_TRUE(this->waits());
    EXPECT_EQ(this->world.capture.traces(),
              (Lines{"1 " + word.handler, "1 " + word.handler + word.key,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 65535",
                     "5 " + word.handler + word.tag + "vport added : 65535"}));
}

TYPED_TEST(InvalidReference, AZombieIgnoresTheNotification) {
    this->world.sm->qorDoZombieReactors(true);
    this->write(65535);
    EXPECT_EQ(this->world.capture.traces(), Lines{});
    EXPECT_FALSE(this->waits());
    this->world.sm->qorDoZombieReactors(false);
    this->write(12);
    EXPECT_EQ(this->world.capture.traces().size(), 3u);
}

TYPED_TEST(InvalidReference, OtherKindsAreNotTouched) {
    forEachKind([&](auto kind) {
        using Other = decltype(kind);
        this->world.waiting->template is<Other>(::Test::numbered<Other>(1).key, true);
    });
    this->write(12);
    EXPECT_EQ(this->world.waiting->memberCount(), kindCount - 1);
    EXPECT_FALSE(this->waits());
}

TEST(InvalidReferenceDispatch, OtherFieldsDoNothing) {
    ::Test::World world({.tableSize = 16, .reallocation = true});
    world.start();
    world.references->vlanVportIs(Bridging::VlanId(5), VpReference());
    world.waiting->vlanVportDelAll();
    world.capture.forget();
    Bridging::VlanId const key(5);
    for (Pelo::FieldId const field : {0u, 154u, 257u, 263u, 0xFFFFFFFFu}) {
        world.references->publisher()->publishChangeRecursive(field, &key, nullptr,
                                                              &Pelo::keysEqual<Bridging::VlanId>);
    }
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.waiting->memberCount(), 0u);
}

} // namespace
