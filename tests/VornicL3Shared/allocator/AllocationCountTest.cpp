// How many pieces of memory requests and releases take: those in which the members of the records
// stand, and no others.

#include "VornicL3Shared/support/World.h"
#include "qor/TraceHandle.h"
#include "support/Allocations.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using Support::CountedAllocations;
using Test::Vport;
using Test::World;
using VornicCentral::EdgeVport;

constexpr U32 entries = 65535;

/// A world of two clients, and the virtual ports that they will request. As in an agent, trace
/// lines are off and ring records are written; the first request takes what their call sites need
/// once.
struct RequestingWorld : World {
    explicit RequestingWorld(U32 ports) : World({.tableSize = entries, .reallocation = true}) {
        client("bgp");
        client("mlag");
        start();
        Qor::TraceHandle::find("VornicVpIndexAllocator")->levelsMaskIs(0);
        for (U32 at = 0; at < ports; ++at) {
            vports.push_back({{Netzo::IntfId("Ethernet" + std::to_string(at / 4000)),
                               Bridging::VlanId(static_cast<U16>(at % 4000 + 1))}});
        }
        Vport<EdgeVport> const first = Test::edge("Ethernet99:1");
        request("bgp", first);
        request("mlag", first);
        withdraw("mlag", first);
        withdraw("bgp", first);
    }

    U32 requestAll(char const* name) {
        auto& requests = config(name);
        CountedAllocations const allocations;
        for (auto const& vport : vports) {
            requests.is<EdgeVport>(vport.key, true);
        }
        return allocations.count();
    }
    U32 withdrawAll(char const* name) {
        auto& requests = config(name);
        CountedAllocations const allocations;
        for (auto const& vport : vports) {
            requests.del<EdgeVport>(vport.key);
        }
        return allocations.count();
    }

    std::vector<Vport<EdgeVport>> vports;
};

/// Config, status and reference list each hold an array of members, which grows by a half, and an
/// index of two arrays, which doubles.
TEST(AllocationCount, NewRequestsTakeOnlyTheStorageOfTheirMembers) {
    RequestingWorld world(10000);
    U32 const allocations = world.requestAll("bgp");
    EXPECT_GT(allocations, 0u);
    EXPECT_LE(allocations, 3u * (20 + 2 * 12));
}

TEST(AllocationCount, RequestsTakeNothingWhereThereWereAsManyBefore) {
    RequestingWorld world(1000);
    world.requestAll("bgp");
    EXPECT_EQ(world.withdrawAll("bgp"), 0u);
    EXPECT_EQ(world.requestAll("bgp"), 0u);
}

TEST(AllocationCount, UpToFourClientsShareAVirtualPortWithoutStorageOfItsOwn) {
    RequestingWorld world(1000);
    world.requestAll("bgp");
    world.requestAll("mlag");
    EXPECT_EQ(world.withdrawAll("mlag"), 0u);
    EXPECT_EQ(world.requestAll("mlag"), 0u);
}

} // namespace
