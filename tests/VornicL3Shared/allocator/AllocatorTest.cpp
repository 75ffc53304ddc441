// The allocator of one client as an object: construction, first sweeps, its reactor.

#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"

#include <gtest/gtest.h>

namespace {

using Pelo::Ptr;
using Test::edge;
using Test::efilter;
using Test::Lines;
using Test::mlag;
using Test::remote;
using Test::vlan;
using Test::World;
using VornicCentral::VpIndexAllocator;

/// A running state machine without clients, and the records of a client that only the allocators
/// that a test builds know.
class Allocator : public testing::Test {
protected:
    Allocator() {
        world.start();
        world.capture.forget();
    }

    Ptr<VpIndexAllocator> built(bool vfiForwarding = false) {
        return Pelo::newNode<VpIndexAllocator>(world.sm.get(), config, status, world.references,
                                               vfiForwarding);
    }
    Ptr<VpIndexAllocator> made() {
        return VornicCentral::vpIndexAllocatorFactory(world.sm.get(), config, status,
                                                      world.references, false);
    }
    template <class V> void request(V const& vport) {
        config->is<typename V::Kind>(vport.key, true);
    }
    template <class V> bool serves(V const& vport) const {
        return status->has<typename V::Kind>(vport.key);
    }
    U32 subscribers() const { return config->publisher()->subscriberCount(); }

    World world;
    Ptr<VornicCentral::VpIndexConfig> config = VornicCentral::vpIndexConfigFactory("bgp");
    Ptr<VornicCentral::VpIndexStatus> status = VornicCentral::vpIndexStatusFactory("bgp");
};

TEST_F(Allocator, StoresItsArguments) {
    auto const allocator = built(true);
    EXPECT_EQ(allocator->vpIndexAllocatorDirSm(), world.sm.get());
    EXPECT_EQ(allocator->vpIndexConfig(), config.get());
    EXPECT_EQ(allocator->vpIndexStatus(), status);
    EXPECT_EQ(allocator->vpReference(), world.references);
    EXPECT_TRUE(allocator->vfiForwarding());
    EXPECT_TRUE(allocator->initialized());
    EXPECT_EQ(allocator->name(), "bgp");
}

TEST_F(Allocator, HoldsOneUseOfEachRecordAndGivesItBack) {
    auto const uses = [this] {
        return std::vector<U32>{config->useCount(), status->useCount(),
                                world.references->useCount(), world.sm->useCount()};
    };
    auto const before = uses();
    auto allocator = built();
    EXPECT_EQ(uses(), (std::vector<U32>{before[0] + 1, before[1] + 1, before[2] + 1, before[3]}));
    allocator = nullptr;
    EXPECT_EQ(uses(), before);
}

TEST_F(Allocator, WritesTheTableSizeIntoTheStatus) {
    built();
    EXPECT_EQ(status->vpTableSize(), 16u);
}

TEST_F(Allocator, SaysItsNameAndTheSweepsInTheirOrder) {
    built();
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 handleInitialized bgp", "1 handleRemoteVport", "1 handleMlagRemoteVport",
                     "1 handleEdgeVport", "1 handleVlanVport", "1 handleEFilterDisableVport"}));
    EXPECT_EQ(world.capture.ring(),
              (Lines{"1 handleInitialized bgp", "1 handleRemoteVport", "1 handleMlagRemoteVport",
                     "1 handleEdgeVport", "1 handleVlanVport", "1 handleEFilterDisableVport"}));
}

TEST_F(Allocator, ServesTheKindsInTheirOrderAndEachKindInTheOrderOfTheConfig) {
    request(efilter("Ethernet3"));
    request(vlan(20));
    request(vlan(10));
    request(edge("Ethernet1:10"));
    request(mlag("10.0.0.3@3"));
    request(remote("10.0.0.2@2"));
    request(remote("10.0.0.1@1"));
    auto const allocator = built();
    EXPECT_EQ(world.state(),
              "pool 16: 0-7 9-15\n"
              "references: remote{10.0.0.2@2=15[bgp] 10.0.0.1@1=14[bgp]} mlag{10.0.0.3@3=13[bgp]} "
              "edge{Ethernet1:10=12[bgp]} vlan{20=11[bgp] 10=10[bgp]} efilter{Ethernet3=9[bgp]}\n"
              "waiting:\n"
              "boot:\n");
}

TEST_F(Allocator, WithoutConfigHasAnEmptyNameAndNothingToServe) {
    config = nullptr;
    auto const allocator = made();
    EXPECT_EQ(allocator->name(), "");
    EXPECT_TRUE(allocator->initialized());
    EXPECT_EQ(status->vpTableSize(), 16u);
    allocator->hasNotificationActiveIs(false);
    allocator->hasNotificationActiveIs(true);
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(Allocator, ThatCannotServeIsUndone) {
    request(vlan(10));
    auto const before = std::vector<U32>{config->useCount(), world.references->useCount()};
    status = nullptr;
    EXPECT_THROW(built(), Qor::MutatorArgNullPointerException);
    EXPECT_EQ(subscribers(), 0u);
    EXPECT_EQ((std::vector<U32>{config->useCount(), world.references->useCount()}), before);
}

TEST_F(Allocator, ThatFailsWithinItsSweepLeavesNoChangeBehind) {
    request(vlan(10));
    auto const before = config->useCount();
    ::Test::Listener const listener(
        *status, [this](::Test::Notification const&) { request(vlan(20)); }); // left to the sweep
    EXPECT_THROW(world.sm->vpIndexAllocatorIs(world.sm.get(), config, status, nullptr, false),
                 Qor::MutatorArgNullPointerException);
    EXPECT_EQ(subscribers(), 0u);
    EXPECT_EQ(config->useCount(), before);
    world.capture.forget();
    world.client("evpn"); // the next turn
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 handleVpIndexConfig, Name evpn", "1 handleInitialized evpn",
                     "1 handleRemoteVport", "1 handleMlagRemoteVport", "1 handleEdgeVport",
                     "1 handleVlanVport", "1 handleEFilterDisableVport"}));
    EXPECT_FALSE(serves(vlan(20)));
}

TEST_F(Allocator, IsRefusedWithoutAStateMachine) {
    auto const before = VpIndexAllocator::allocationTracker().live();
    auto const refusal = [this](auto const& make) -> std::string {
        try {
            make(nullptr, config, status, world.references, false);
        } catch (Qor::MutatorArgNullPointerException const& thrown) {
            return thrown.type() + "." + thrown.attribute();
        }
        return "not refused";
    };
    EXPECT_EQ(refusal(&VpIndexAllocator::VpIndexAllocatorIs),
              "VpIndexAllocatorIs.vpIndexAllocatorDirSm");
    EXPECT_EQ(refusal(&VornicCentral::vpIndexAllocatorFactory),
              "VpIndexAllocatorIs.vpIndexAllocatorDirSm");
    EXPECT_EQ(subscribers(), 0u);
    EXPECT_EQ(VpIndexAllocator::allocationTracker().live(), before);
}

TEST_F(Allocator, SubscribesInItsConstructor) {
    auto const allocator = built();
    EXPECT_EQ(subscribers(), 1u);
    EXPECT_FALSE(allocator->nodeFlag(Pelo::NodeFlag::notificationActive));
    request(vlan(10));
    EXPECT_TRUE(serves(vlan(10)));
}

TEST_F(Allocator, FromItsConstructorAloneCanBeSwitchedOff) {
    auto const allocator = built();
    allocator->hasNotificationActiveIs(false);
    EXPECT_EQ(subscribers(), 0u);
    request(vlan(10));
    EXPECT_FALSE(serves(vlan(10)));
}

TEST_F(Allocator, FromTheFactoryHasActiveNotifications) {
    auto const allocator = made();
    EXPECT_EQ(subscribers(), 1u);
    EXPECT_TRUE(allocator->nodeFlag(Pelo::NodeFlag::notificationActive));
}

TEST_F(Allocator, ReactsAfterItsSubscriptionWasSwitchedOffAndOn) {
    auto const allocator = made();
    allocator->hasNotificationActiveIs(false);
    EXPECT_EQ(subscribers(), 0u);
    request(vlan(10));
    EXPECT_FALSE(serves(vlan(10)));
    allocator->hasNotificationActiveIs(true);
    allocator->hasNotificationActiveIs(true);
    EXPECT_EQ(subscribers(), 1u);
    request(vlan(20));
    EXPECT_FALSE(serves(vlan(10)));
    EXPECT_TRUE(serves(vlan(20)));
}

TEST_F(Allocator, IgnoresNotificationsWhileItsReactorsAreZombies) {
    auto const allocator = made();
    allocator->qorDoZombieReactors(true);
    request(vlan(10));
    EXPECT_FALSE(serves(vlan(10)));
    allocator->qorDoZombieReactors(false);
    request(vlan(20));
    EXPECT_FALSE(serves(vlan(10)));
    EXPECT_TRUE(serves(vlan(20)));
}

TEST_F(Allocator, UnsubscribesWhenItIsDestroyed) {
    made();
    EXPECT_EQ(subscribers(), 0u);
    request(vlan(10));
    EXPECT_FALSE(serves(vlan(10)));
}

/// Notifications made by hand, as the publisher of a config would.
class AllocatorDispatch : public Allocator {
protected:
    template <class V> void dispatch(Pelo::FieldId field, V const& vport) {
        Pelo::Subscriber subscriber(allocator.get(), &VpIndexAllocator::vpIndexConfigDispatch);
        VpIndexAllocator::vpIndexConfigDispatch(config->publisher(), &subscriber, field, &vport.key,
                                                nullptr);
    }
    /// The entries of the level 1 traces so far.
    Lines entries() {
        Lines lines;
        for (auto const& line : world.capture.traces()) {
            if (line.starts_with("1 ")) {
                lines.push_back(line);
            }
        }
        return lines;
    }

    Ptr<VpIndexAllocator> allocator = [this] {
        auto made = this->made();
        world.capture.forget();
        return made;
    }();
};

TEST_F(AllocatorDispatch, CallsTheHandlerOfTheCollectionThatChanged) {
    dispatch(258, remote("10.0.0.1@1"));
    dispatch(259, mlag("10.0.0.1@1"));
    dispatch(260, edge("Ethernet1:10"));
    dispatch(261, vlan(10));
    dispatch(262, efilter("Ethernet3"));
    EXPECT_EQ(
        entries(),
        (Lines{"1 handleRemoteVport Vtep: 10.0.0.1@1", "1 handleRemoteVportCommon vtep: 10.0.0.1",
               "1 handleMlagRemoteVport mlagVtep: 10.0.0.1@1",
               "1 handleRemoteVportCommon mlag  vtep: 10.0.0.1",
               "1 handleEdgeVport pvKey: Ethernet1:10", "1 handleVlanVport vlan: 10",
               "1 handleEFilterDisableVport intf: Ethernet3"}));
}

TEST_F(AllocatorDispatch, IgnoresEveryOtherField) {
    for (Pelo::FieldId const field : {0u, 130u, 154u, 257u, 263u, 264u, 65535u}) {
        dispatch(field, vlan(10));
    }
    EXPECT_EQ(entries(), Lines{});
}

TEST_F(AllocatorDispatch, IgnoresEverythingWhileItIsAZombie) {
    allocator->qorDoZombieReactors(true);
    allocator->qorDoZombieReactors(true);
    dispatch(261, vlan(10));
    EXPECT_EQ(entries(), Lines{});
    allocator->qorDoZombieReactors(false);
    dispatch(261, vlan(10));
    EXPECT_EQ(entries(), Lines{"1 handleVlanVport vlan: 10"});
}

} // namespace
