// What operations do that are called while start-up has not finished.

#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <string>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::vlan;

/// Builds the state machine in storage of its own, so that a reactor can reach it while its
/// constructor still runs: `during` is called at each change of a record that start-up writes.
class BeforeInitialized : public testing::Test {
protected:
    using During = std::function<void(VpIndexAllocatorDirSm&)>;

    /// The record is the reference list, in which start-up recovers the one entry of the boot
    /// status.
    void startAndCall(bool reallocation, During const& during) {
        world.boot->vlanVportIs(vlan(5).key, VirtualPort(12));
        startAndCall(*world.references, reallocation, during);
    }
    void startAndCall(Qor::Entity const& watched, bool reallocation, During const& during) {
        auto* const place = std::allocator<VpIndexAllocatorDirSm>().allocate(1);
        ::Test::Listener listener(watched, [&](::Test::Notification const&) {
            world.capture.forget();
            during(*place);
            traces = world.capture.traces();
        });
        std::construct_at(place, world.references, world.waiting, world.configDir, world.statusDir,
                          world.settings.tableSize, world.boot, reallocation, false,
                          Pelo::Ptr<VxlanCapabilities const>());
        initializedAtTheEnd = place->initialized();
        std::destroy_at(place);
        std::allocator<VpIndexAllocatorDirSm>().deallocate(place, 1);
    }

    ::Test::World world;
    Lines traces;
    bool initializedAtTheEnd = false;
};

TEST_F(BeforeInitialized, IsNotInitializedWhileTheFirstClientIsServed) {
    world.client("bgp");
    world.request("bgp", vlan(100));
    std::string seen;
    startAndCall(world.status("bgp"), false, [&](VpIndexAllocatorDirSm& sm) {
        seen += std::to_string(world.indexOf("bgp", vlan(100))) + (sm.initialized() ? "!" : " ");
    });
    EXPECT_EQ(seen, "65535 65535 15 "); // the table size, the counter and the key are written
    EXPECT_TRUE(initializedAtTheEnd);
}

TEST_F(BeforeInitialized, VerifyOnlyTracesItsName) {
    startAndCall(true, [](VpIndexAllocatorDirSm& sm) { sm.verify(); });
    EXPECT_EQ(traces, Lines{"1 verify"});
}

TEST_F(BeforeInitialized, AnIndexIsFreedBeforeItIsOfferedToWaitingKeys) {
    startAndCall(true, [](VpIndexAllocatorDirSm& sm) { sm.recycleOrFreeVpIndex(12); });
    EXPECT_EQ(traces, (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 12",
                             "5 freeVpIndex index freed is: 12"}));
}

TEST_F(BeforeInitialized, AWaitingKeyTakesTheFreedIndexAllTheSame) {
    world.settings.tableSize = 9;
    world.client("bgp");
    world.request("bgp", vlan(1));
    world.request("bgp", vlan(2)); // waits once bgp is served
    world.client("evpn");
    startAndCall(world.status("evpn"), true,
                 [](VpIndexAllocatorDirSm& sm) { sm.recycleOrFreeVpIndex(8); });
    EXPECT_EQ(traces, (Lines{"1 recycleOrFreeVpIndex", "5 freeVpIndex index freed is: 8",
                             "7 recycleOrFreeVpIndex Recycling vpIndex : 8 to "
                             "vpIndexAllocator(bgp)->vpIndexStatus()->vlanVport(2)",
                             "1 handleInvalidVlanVport vlan: 2",
                             "5 handleInvalidVlanVport vport addition/modification for: 8",
                             "5 handleInvalidVlanVport vport deleted : 8"}));
    EXPECT_EQ(world.state(), "pool none\n"
                             "config bgp: vlan{1 2}\n"
                             "config evpn:\n"
                             "status bgp: vlan{1=8 2=8} requests=1 failures=1 frees=0 size=9\n"
                             "status evpn: requests=0 failures=0 frees=0 size=9\n"
                             "references: vlan{1=8[bgp] 2=8[bgp]}\n"
                             "waiting:\n"
                             "boot:\n");
}

} // namespace
