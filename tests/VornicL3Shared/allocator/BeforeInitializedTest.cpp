// What operations do that are called while start-up has not finished.

#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <memory>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::vlan;

/// Builds the state machine in storage of its own, so that a reactor can reach it while its
/// constructor still runs: `during` is called when start-up writes the reference of the one entry
/// of the boot status.
class BeforeInitialized : public testing::Test {
protected:
    void startAndCall(bool reallocation,
                      std::function<void(VpIndexAllocatorDirSm&)> const& during) {
        world.boot->vlanVportIs(vlan(5).key, VirtualPort(12));
        auto* const place = std::allocator<VpIndexAllocatorDirSm>().allocate(1);
        ::Test::Listener listener(*world.references, [&](::Test::Notification const&) {
            world.capture.forget();
            during(*place);
            traces = world.capture.traces();
        });
        std::construct_at(place, world.references, world.waiting, world.configDir, world.statusDir,
                          16u, world.boot, reallocation, false,
                          Pelo::Ptr<VxlanCapabilities const>());
        std::destroy_at(place);
        std::allocator<VpIndexAllocatorDirSm>().deallocate(place, 1);
    }

    ::Test::World world;
    Lines traces;
};

TEST_F(BeforeInitialized, VerifyOnlyTracesItsName) {
    startAndCall(true, [](VpIndexAllocatorDirSm& sm) { sm.verify(); });
    EXPECT_EQ(traces, Lines{"1 verify"});
}

TEST_F(BeforeInitialized, AnIndexIsFreedBeforeItIsOfferedToWaitingKeys) {
    startAndCall(true, [](VpIndexAllocatorDirSm& sm) { sm.recycleOrFreeVpIndex(12); });
    EXPECT_EQ(traces, (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 12",
                             "5 freeVpIndex index freed is: 12"}));
}

} // namespace
