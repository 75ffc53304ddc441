// The allocators of the directory state machine: found or made, refused, removed.

#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::vlan;
using Test::World;

/// A state machine without clients, and the arguments of an allocator for "bgp".
class AllocatorCollection : public testing::Test {
protected:
    AllocatorCollection() {
        world.start();
        stateMachine = world.sm.get();
    }

    Pelo::Ptr<VpIndexAllocator> make() {
        return world.sm->vpIndexAllocatorIs(stateMachine, config, status, references,
                                            vfiForwarding);
    }
    /// What `make` throws, as "TYPE.ARGUMENT".
    template <class Thrown> std::string refusal() {
        try {
            make();
        } catch (Thrown const& thrown) {
            return thrown.type() + "." + thrown.attribute();
        }
        return "not refused";
    }
    using Other = Qor::MutatorReinstantiatingException;

    World world;
    VpIndexAllocatorDirSm* stateMachine = nullptr;
    Pelo::Ptr<VpIndexConfig> config = vpIndexConfigFactory("bgp");
    Pelo::Ptr<VpIndexStatus> status = vpIndexStatusFactory("bgp");
    Pelo::Ptr<VpReferenceList> references = world.references;
    bool vfiForwarding = false;
};

TEST_F(AllocatorCollection, MakesAnAllocatorAndKeepsItUnderTheNameOfTheConfig) {
    vfiForwarding = true;
    auto const allocator = make();
    EXPECT_EQ(world.sm->vpIndexAllocator("bgp"), allocator);
    EXPECT_TRUE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(world.sm->vpIndexAllocator().memberCount(), 1u);
    EXPECT_EQ(allocator->vpIndexAllocatorDirSm(), stateMachine);
    EXPECT_EQ(allocator->vpIndexConfig(), config);
    EXPECT_EQ(allocator->vpIndexStatus(), status);
    EXPECT_EQ(allocator->vpReference(), references);
    EXPECT_TRUE(allocator->vfiForwarding());
}

TEST_F(AllocatorCollection, ServesWhatIsRequestedBeforeTheAllocatorIsGiven) {
    config->vlanVportIs(Bridging::VlanId(100), true);
    make();
    EXPECT_EQ(status->vlanVport(Bridging::VlanId(100)), VirtualPort(15));
}

TEST_F(AllocatorCollection, GivesTheSameAllocatorForTheSameArguments) {
    auto const allocator = make();
    world.capture.forget();
    EXPECT_EQ(make(), allocator);
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(allocator->useCount(), 2u);
}

TEST_F(AllocatorCollection, DoesNotNeedAStatusOrAReferenceListForAClientWithoutRequests) {
    status = nullptr;
    references = nullptr;
    EXPECT_EQ(make()->name(), "bgp");
}

TEST_F(AllocatorCollection, HasNoneForANameThatIsNotThere) {
    EXPECT_EQ(world.sm->vpIndexAllocator("bgp"), nullptr);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
}

TEST_F(AllocatorCollection, RefusesANullConfig) {
    config = nullptr;
    EXPECT_EQ(refusal<Qor::MutatorArgNullPointerException>(), "vpIndexAllocatorIs.vpIndexConfig");
    EXPECT_EQ(world.sm->vpIndexAllocator().memberCount(), 0u);
}

TEST_F(AllocatorCollection, RefusesANullStateMachineForANewName) {
    stateMachine = nullptr;
    EXPECT_EQ(refusal<Qor::MutatorArgNullPointerException>(),
              "VpIndexAllocatorIs.vpIndexAllocatorDirSm");
    EXPECT_EQ(world.sm->vpIndexAllocator().memberCount(), 0u);
    EXPECT_FALSE(config->publisher()->hasSubscribers());
    EXPECT_EQ(config->useCount(), 1u);
    stateMachine = world.sm.get();
    auto const allocator = make();
    EXPECT_EQ(world.sm->vpIndexAllocator("bgp"), allocator);
}

TEST_F(AllocatorCollection, RefusesTheFirstArgumentThatDiffersInTheirOrder) {
    auto const allocator = make();
    auto const vpIndexConfig = config;
    stateMachine = nullptr;
    config = vpIndexConfigFactory("bgp");
    status = vpIndexStatusFactory("bgp");
    references = vpReferenceListFactory("references");
    vfiForwarding = true;
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vpIndexAllocatorDirSm");
    stateMachine = allocator->vpIndexAllocatorDirSm();
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vpIndexConfig");
    config = vpIndexConfig;
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vpIndexStatus");
    status = allocator->vpIndexStatus();
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vpReference");
    references = allocator->vpReference();
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vfiForwarding");
    vfiForwarding = false;
    EXPECT_EQ(refusal<Other>(), "not refused");
}

TEST_F(AllocatorCollection, RefusesAnArgumentThatDiffersAlone) {
    auto const allocator = make();
    auto const refusalWith = [&](auto& argument, auto other) {
        std::swap(argument, other);
        std::string const refused = refusal<Other>();
        std::swap(argument, other);
        return refused;
    };
    VpIndexAllocatorDirSm* const none = nullptr;
    EXPECT_EQ(refusalWith(stateMachine, none), "VpIndexAllocator.vpIndexAllocatorDirSm");
    EXPECT_EQ(refusalWith(config, vpIndexConfigFactory("bgp")), "VpIndexAllocator.vpIndexConfig");
    EXPECT_EQ(refusalWith(status, vpIndexStatusFactory("bgp")), "VpIndexAllocator.vpIndexStatus");
    EXPECT_EQ(refusalWith(references, vpReferenceListFactory("references")),
              "VpIndexAllocator.vpReference");
    EXPECT_EQ(refusalWith(vfiForwarding, true), "VpIndexAllocator.vfiForwarding");
    EXPECT_EQ(make(), allocator);
}

TEST_F(AllocatorCollection, KeepsTheExistingAllocatorWhenItRefuses) {
    auto const allocator = make();
    status = vpIndexStatusFactory("bgp");
    EXPECT_EQ(refusal<Other>(), "VpIndexAllocator.vpIndexStatus");
    EXPECT_EQ(world.sm->vpIndexAllocator("bgp"), allocator);
    EXPECT_EQ(status->useCount(), 1u);
    EXPECT_EQ(config->publisher()->subscriberCount(), 1u);
}

TEST_F(AllocatorCollection, KeepsNoAllocatorThatCouldNotServe) {
    config->vlanVportIs(Bridging::VlanId(100), true);
    references = nullptr;
    U64 const before = VpIndexAllocator::allocationTracker().live();
    EXPECT_THROW(make(), Qor::MutatorArgNullPointerException);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(VpIndexAllocator::allocationTracker().live(), before);
    EXPECT_FALSE(config->publisher()->hasSubscribers());
    EXPECT_EQ(config->useCount(), 1u);
    EXPECT_EQ(status->useCount(), 1u);
}

TEST_F(AllocatorCollection, GivesTheAllocatorThatItRemoves) {
    auto const allocator = make();
    EXPECT_EQ(world.sm->vpIndexAllocatorDel("bgp"), allocator);
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(allocator->useCount(), 1u);
    EXPECT_EQ(world.sm->vpIndexAllocatorDel("bgp"), nullptr);
}

TEST_F(AllocatorCollection, ARemovedAllocatorThatNobodyHoldsReactsNoMore) {
    make();
    world.sm->vpIndexAllocatorDel("bgp");
    EXPECT_FALSE(config->publisher()->hasSubscribers());
    EXPECT_EQ(config->useCount(), 1u);
    EXPECT_EQ(status->useCount(), 1u);
}

TEST_F(AllocatorCollection, ARemovedAllocatorThatSomebodyHoldsGoesOnUntilItIsSwitchedOff) {
    world.client("bgp");
    auto const held = world.sm->vpIndexAllocatorDel("bgp");
    world.request("bgp", vlan(100));
    held->hasNotificationActiveIs(false);
    world.request("bgp", vlan(200));
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(world.state(), "pool 16: 0-7 15\n"
                             "config bgp: vlan{100 200}\n"
                             "status bgp: vlan{100=15} requests=1 failures=0 frees=0 size=16\n"
                             "references: vlan{100=15[bgp]}\n"
                             "waiting:\n"
                             "boot:\n");
}

TEST_F(AllocatorCollection, ARemovedAllocatorLeavesItsStatusAndItsIndices) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    std::string const before = world.state();
    world.sm->vpIndexAllocatorDel("bgp");
    EXPECT_EQ(world.state(), before);
}

TEST_F(AllocatorCollection, MakesANewAllocatorForANameWhoseAllocatorWasRemoved) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    std::string const before = world.state();
    world.sm->vpIndexAllocatorDel("bgp");
    world.sm->handleVpIndexConfig("bgp");
    EXPECT_TRUE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(world.state(), before);
}

TEST_F(AllocatorCollection, CanBeEmptied) {
    world.client("bgp");
    world.client("mlag");
    world.sm->vpIndexAllocatorDelAll();
    EXPECT_EQ(world.sm->vpIndexAllocator().memberCount(), 0u);
    EXPECT_FALSE(world.config("bgp").publisher()->hasSubscribers());
    EXPECT_FALSE(world.config("mlag").publisher()->hasSubscribers());
}

} // namespace
