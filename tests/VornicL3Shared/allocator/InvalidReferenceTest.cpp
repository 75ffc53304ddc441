// The waiting keys follow the reference list.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/References.h"

#include <map>

namespace {

using namespace VornicCentral;
using Test::Lines;

/// What tells the kinds apart in the handler's traces.
struct Words {
    std::string handler;
    std::string key;       ///< of key 1, in the trace line
    std::string secondKey; ///< of key 2
    std::string ringKey;   ///< of key 1, in the ring buffer
    std::string tag;       ///< before "vport"
};

template <class Kind> Words const& words() {
    static std::map<std::string, Words> const all{
        {"remote",
         {"handleInvalidRemoteVport", " vtep: 10.0.0.1", " vtep: 10.0.0.2", " vtep: 10.0.0.1",
          " "}},
        {"mlag",
         {"handleInvalidMlagRemoteVport", " vtep: 10.0.0.1", " vtep: 10.0.0.2", " vtep: 10.0.0.1",
          " mlag "}},
        {"edge",
         {"handleInvalidEdgeVport", " pvKey: Ethernet1/1:100", " pvKey: Ethernet1/2:100",
          " port: Et1/1 vlan: 100", " "}},
        {"vlan", {"handleInvalidVlanVport", " vlan: 101", " vlan: 102", " vlan: 101", " "}},
        {"efilter",
         {"handleInvalidEFilterDisableVport", " intf: Ethernet2/1", " intf: Ethernet2/2",
          " intf: Et2/1", " "}}};
    return all.at(Kind::word);
}

/// No clients; the reference list is written by hand.
template <class Kind> class InvalidReference : public ::Test::KindTest<Kind> {
protected:
    InvalidReference() { this->start({.tableSize = 16, .reallocation = true}, {}); }

    void write(U16 vpIndex, U32 number = 1) {
        this->world.references->template is<Kind>(::Test::numbered<Kind>(number).key,
                                                  ::Test::referenceOf(vpIndex, {"bgp"}));
    }
    /// Puts a key into the list by hand.
    void makeWait(U32 number) {
        this->world.waiting->template is<Kind>(::Test::numbered<Kind>(number).key, true);
    }
    void remove() { this->world.references->template del<Kind>(key); }
    bool waits() const { return this->world.waiting->template has<Kind>(key); }
    void withoutReallocation() { this->start({.tableSize = 16, .reallocation = false}, {}); }
    void handleKey() {
        auto& sm = *this->world.sm;
        if constexpr (std::is_same_v<Kind, RemoteVport>) {
            sm.handleInvalidRemoteVport(key);
        } else if constexpr (std::is_same_v<Kind, MlagRemoteVport>) {
            sm.handleInvalidMlagRemoteVport(key);
        } else if constexpr (std::is_same_v<Kind, EdgeVport>) {
            sm.handleInvalidEdgeVport(key);
        } else if constexpr (std::is_same_v<Kind, VlanVport>) {
            sm.handleInvalidVlanVport(key);
        } else {
            sm.handleInvalidEFilterDisableVport(key);
        }
    }
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

TYPED_TEST(InvalidReference, WithoutReallocationAStaleEntryOfTheVeryKeyStays) {
    this->withoutReallocation();
    this->makeWait(1);
    this->write(12);
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=12[bgp]}\n"
                                          "waiting: <kind>{<1>}\n"
                                          "boot:\n"));
    this->handleKey();
    this->fullPass();
    this->remove();
    this->handleKey();
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references:\n"
                                          "waiting: <kind>{<1>}\n"
                                          "boot:\n"));
}

TYPED_TEST(InvalidReference, WithoutReallocationAFullPassVisitsNoKey) {
    auto const& word = words<TypeParam>();
    this->withoutReallocation();
    this->write(65535);
    this->write(12, 2);
    this->makeWait(2);
    this->world.capture.forget();
    this->fullPass();
    EXPECT_EQ(this->world.capture.traces(), Lines{"1 " + word.handler});
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<1>=65535[bgp] <2>=12[bgp]}\n"
                                          "waiting: <kind>{<2>}\n"
                                          "boot:\n"));
}

TYPED_TEST(InvalidReference, AFullPassVisitsEveryKeyInOrderAndLeavesKeysWithoutReferenceAlone) {
    auto const& word = words<TypeParam>();
    this->write(65535, 2);
    this->write(12, 1);
    this->world.waiting->template delAll<TypeParam>();
    this->makeWait(1);
    this->makeWait(3); // without reference
    this->world.capture.forget();
    this->fullPass();
    EXPECT_EQ(this->world.capture.traces(),
              (Lines{"1 " + word.handler, "1 " + word.handler + word.secondKey,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 65535",
                     "5 " + word.handler + word.tag + "vport added : 65535",
                     "1 " + word.handler + word.key,
                     "5 " + word.handler + word.tag + "vport addition/modification for: 12",
                     "5 " + word.handler + word.tag + "vport deleted : 12"}));
    EXPECT_EQ(this->state(), this->filled("pool 16: 0-7\n"
                                          "references: <kind>{<2>=65535[bgp] <1>=12[bgp]}\n"
                                          "waiting: <kind>{<3> <2>}\n"
                                          "boot:\n"));
}

TYPED_TEST(InvalidReference, HandledAgainChangesAndPublishesNothing) {
    ::Test::Listener references(*this->world.references);
    ::Test::Listener waiting(*this->world.waiting);
    auto const handleAgain = [&] {
        std::string const before = this->state();
        references.fields();
        waiting.fields();
        this->handleKey();
        this->fullPass();
        EXPECT_EQ(this->state(), before);
        EXPECT_EQ(references.fields(), std::vector<Pelo::FieldId>{});
        EXPECT_EQ(waiting.fields(), std::vector<Pelo::FieldId>{});
    };
    this->write(65535);
    handleAgain();
    this->write(12);
    handleAgain();
    this->remove();
    handleAgain();
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

TYPED_TEST(InvalidReference, KeyedHandlersWithoutAReferenceListDoNothing) {
    auto const& word = words<TypeParam>();
    this->world.references = nullptr;
    this->world.start();
    this->world.waiting->template is<TypeParam>(this->key, true); // stale, and stays
    this->world.capture.forget();
    this->handleKey();
    EXPECT_EQ(this->world.capture.traces(), Lines{"1 " + word.handler + word.key});
    this->fullPass();
    EXPECT_EQ(this->world.capture.traces(), Lines{"1 " + word.handler});
    EXPECT_EQ(this->world.waiting->memberCount(), 1u);
    EXPECT_TRUE(this->waits());
}

TYPED_TEST(InvalidReference, WithoutAListOfWaitingKeysNothingIsKept) {
    auto const& word = words<TypeParam>();
    auto const waiting = this->world.waiting;
    this->world.waiting = nullptr;
    this->world.start();
    this->world.capture.forget();
    this->write(65535);
    this->write(12);
    this->remove();
    Lines const noticed(3, "1 " + word.handler + word.key);
    EXPECT_EQ(this->world.capture.traces(), noticed);
    EXPECT_EQ(waiting->memberCount(), 0u);
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
