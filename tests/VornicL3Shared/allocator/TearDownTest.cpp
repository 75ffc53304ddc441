// Destruction of the directory state machine, and the undoing of a construction that fails.

#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::vlan;
using Test::World;

/// Two clients with requests; what may be left over is told in one text.
class TearDown : public testing::Test {
protected:
    TearDown() {
        world.client("bgp");
        world.client("mlag");
        world.request("bgp", vlan(100));
        world.request("mlag", vlan(100));
        world.request("mlag", vlan(200));
    }

    /// Uses and reactors of every record, and the objects of the allocator that are alive.
    std::string traceOf() const {
        std::ostringstream out;
        auto const record = [&](char const* name, Qor::Entity const* entity) {
            if (entity != nullptr) {
                out << name << ' ' << entity->useCount() << '/'
                    << entity->publisher()->subscriberCount() << ' ';
            }
        };
        record("references", world.references.get());
        record("waiting", world.waiting.get());
        record("configDir", world.configDir.get());
        record("statusDir", world.statusDir.get());
        record("boot", world.boot.get());
        record("capabilities", capabilities.get());
        for (char const* const name : {"bgp", "mlag"}) {
            record(name, &world.config(name));
            record(name, &world.status(name));
        }
        out << "alive " << VpIndexAllocatorDirSm::allocationTracker().live() << ' '
            << VpIndexAllocator::allocationTracker().live() << ' '
            << Bask::Bitmap::allocationTracker().live();
        return std::move(out).str();
    }

    /// Starts a state machine that cannot start, and gives the exception's words.
    std::string refusal() {
        try {
            vpIndexAllocatorDirSmFactory(world.references, world.waiting, world.configDir,
                                         world.statusDir, 16, world.boot, false, false,
                                         capabilities);
        } catch (Qor::MutatorArgNullPointerException const& thrown) {
            return thrown.type() + "." + thrown.attribute();
        }
        return "started";
    }

    World world;
    Pelo::Ptr<VxlanCapabilities> const capabilities =
        vxlanCapabilitiesFactory("capabilities", false);
};

TEST_F(TearDown, GivesEveryRecordBackAndLeavesNothingBehind) {
    std::string const before = traceOf();
    {
        auto const sm = vpIndexAllocatorDirSmFactory(world.references, world.waiting,
                                                     world.configDir, world.statusDir, 16,
                                                     world.boot, false, false, capabilities);
        EXPECT_NE(traceOf(), before);
    }
    EXPECT_EQ(traceOf(), before);
}

TEST_F(TearDown, LeavesTheRecordsAsTheyAre) {
    world.start();
    std::string const running = world.state();
    world.stop();
    EXPECT_EQ("pool 16: 0-7 14-15" + world.state().substr(std::string("pool none").size()),
              running);
}

TEST_F(TearDown, TracesNothing) {
    world.start();
    world.capture.forget();
    world.stop();
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.capture.ring(), Lines{});
}

TEST_F(TearDown, ReleasesTheBitmap) {
    world.start();
    auto const bitmap = world.sm->vpBitmap();
    EXPECT_EQ(bitmap->useCount(), 2u);
    world.stop();
    EXPECT_EQ(bitmap->useCount(), 1u);
    EXPECT_TRUE(bitmap->isBitSet(15));
}

TEST_F(TearDown, ReleasesAnAllocatorThatIsHeldElsewhereAndSwitchesItOff) {
    world.start();
    auto const allocator = world.sm->vpIndexAllocator("bgp");
    world.stop();
    EXPECT_EQ(allocator->useCount(), 1u);
    EXPECT_FALSE(world.config("bgp").publisher()->hasSubscribers());
    world.capture.forget();
    world.request("bgp", vlan(300));
    EXPECT_EQ(world.capture.traces(), Lines{});
}

TEST_F(TearDown, SwitchesOffAnAllocatorMadeWhileTheReactorsWereOff) {
    world.start();
    world.sm->hasNotificationActiveIs(false);
    world.client("host");
    world.sm->handleVpIndexConfig("host");
    auto const allocator = world.sm->vpIndexAllocator("host");
    EXPECT_TRUE(allocator->nodeFlag(Pelo::NodeFlag::notificationActive));
    world.stop();
    EXPECT_FALSE(world.config("host").publisher()->hasSubscribers());
    EXPECT_FALSE(allocator->nodeFlag(Pelo::NodeFlag::notificationActive));
    world.capture.forget();
    world.request("host", vlan(300));
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.indexOf("host", vlan(300)), 65535);
}

TEST_F(TearDown, SwitchedOffBeforeIsNoDifferent) {
    std::string const before = traceOf();
    world.start();
    world.sm->hasNotificationActiveIs(false);
    world.sm->qorDoZombieReactors(true);
    world.stop();
    EXPECT_EQ(traceOf(), before);
}

TEST_F(TearDown, WithoutABitmapAndAllocatorsIsNoDifferent) {
    std::string const before = traceOf();
    world.start();
    world.sm->vpBitmapDel();
    world.sm->vpIndexAllocatorDelAll();
    world.stop();
    EXPECT_EQ(traceOf(), before);
}

TEST_F(TearDown, ALaterStartFindsTheIndicesOfTheOneBefore) {
    world.start();
    std::string const before = world.state();
    world.start();
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
    EXPECT_EQ(world.indexOf("mlag", vlan(100)), 15);
    EXPECT_EQ(world.indexOf("mlag", vlan(200)), 14);
    EXPECT_EQ(world.state(), before);
}

using FailedStart = TearDown;

TEST_F(FailedStart, WithoutABootStatusToRecoverFromIsUndone) {
    world.boot = nullptr;
    std::string const before = traceOf();
    EXPECT_EQ(refusal(), "reconcile.vxlanBootStatus");
    EXPECT_EQ(traceOf(), before);
    EXPECT_EQ(world.capture.traces(), (Lines{"1 handleInitialized", "1 reconcile"}));
}

TEST_F(FailedStart, WhileTheFirstClientIsServedIsUndone) {
    world.references = nullptr;
    std::string const before = traceOf();
    EXPECT_EQ(refusal(), "handleVlanVport.vpReference");
    EXPECT_EQ(traceOf(), before);
}

TEST_F(FailedStart, WhileALaterClientIsServedUndoesTheAllocatorsBeforeIt) {
    world.withdraw("bgp", vlan(100));
    world.references = nullptr;
    std::string const before = traceOf();
    EXPECT_EQ(refusal(), "handleVlanVport.vpReference");
    EXPECT_EQ(traceOf(), before);
    EXPECT_EQ(world.status("bgp").vpTableSize(), 16u);
}

TEST_F(FailedStart, LeavesNobodyWhoWouldReact) {
    world.references = nullptr;
    refusal();
    world.capture.forget();
    world.request("bgp", vlan(300));
    world.client("host");
    EXPECT_EQ(world.capture.traces(), Lines{});
}

TEST_F(FailedStart, CanBeRepeatedWithWhatWasMissing) {
    auto const boot = world.boot;
    world.boot = nullptr;
    refusal();
    world.boot = boot;
    world.start();
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
    EXPECT_EQ(world.indexOf("mlag", vlan(200)), 14);
}

TEST_F(FailedStart, IsNoneWhenThereAreReferencesToRecoverInstead) {
    world.boot = nullptr;
    world.references->vlanVportIs(Bridging::VlanId(100), VpReference(VirtualPort(12)));
    EXPECT_EQ(refusal(), "started");
}

} // namespace
