// The operations that the state machine and the allocators offer by name.

#include "VornicL3Shared/support/World.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace {

using Test::Lines;
using Test::vlan;
using Test::World;
using Texts = std::vector<std::string_view>;

/// A running state machine with the client bgp, which requests VLAN 100.
class CallByName : public testing::Test {
protected:
    CallByName() {
        world.client("bgp");
        world.request("bgp", vlan(100));
        world.start();
        world.capture.forget();
    }

    /// Calls an operation: its result as text, nothing, or why it was refused.
    std::string call(std::string_view operation, Texts const& arguments = {}) {
        return outcome(Qor::callByName(*world.sm, operation, arguments));
    }
    std::string callClient(std::string_view operation, Texts const& arguments = {}) {
        return outcome(Qor::callByName(world.allocator("bgp"), operation, arguments));
    }
    static std::string outcome(Qor::CallResult const& result) {
        return result.refusal ? "expected " + result.refusal->error.expected : result.value.text();
    }

    World world;
};

TEST_F(CallByName, ReachesEveryOperationOfTheStateMachine) {
    EXPECT_EQ(call("allocVpIndex", {"true"}), "14");
    EXPECT_EQ(call("allocVpIndex", {"false"}), "8");
    EXPECT_EQ(call("freeVpIndex", {"14"}), "");
    EXPECT_EQ(call("setVpBitmap", {"12"}), "");
    EXPECT_EQ(world.pool(), "16: 0-8 12 15");
    EXPECT_EQ(call("recycleOrFreeVpIndex", {"12"}), "");
    EXPECT_EQ(call("recycleOrFreeVpIndex", {"8"}), "");
    EXPECT_EQ(world.pool(), "16: 0-7 15");
    EXPECT_EQ(call("isDefaultVp", {"7"}), "true");
    EXPECT_EQ(call("isDefaultVp", {"8"}), "false");
    EXPECT_EQ(call("verify"), "");
    EXPECT_EQ(call("clearStaleEntries"), "");
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(CallByName, ReachesTheMutatorsOfTheStateMachine) {
    EXPECT_EQ(call("vpBitmapIs", {"0", "16", "clear"}), "Bask::Bitmap");
    EXPECT_EQ(call("vpIndexAllocatorDel", {"bgp"}), "VornicCentral::VpIndexAllocator");
    EXPECT_FALSE(world.sm->vpIndexAllocatorHas("bgp"));
    EXPECT_EQ(call("vpIndexAllocatorDel", {"bgp"}), "null");
    EXPECT_EQ(call("handleVpIndexConfig", {"bgp"}), "");
    EXPECT_EQ(call("vpIndexAllocatorDelAll"), "");
    EXPECT_EQ(world.sm->vpIndexAllocator().memberCount(), 0u);
    EXPECT_EQ(call("vpBitmapDel"), "Bask::Bitmap");
    EXPECT_EQ(world.sm->vpBitmap(), nullptr);
}

TEST_F(CallByName, RefusesMutatorsThatTheStateMachineDoesNotHave) {
    std::string const none = call("nothing");
    EXPECT_EQ(call("vpTableSizeIs", {"8"}), none);
    EXPECT_EQ(call("vpBitmapDelAll"), none);
    EXPECT_EQ(call("verifyIs"), none);
    EXPECT_EQ(call("Is"), none);
    EXPECT_EQ(call("vpBitmapIs", {"0", "16"}),
              "expected argument initialBitState: Bask::HBitmap::BitState");
    Qor::CallResult const constant =
        Qor::callByName(std::as_const(*world.sm), "isDefaultVp", Texts{"1"});
    EXPECT_EQ(outcome(constant), "true");
    EXPECT_THROW(Qor::callByName(std::as_const(*world.sm), "vpBitmapDel", Texts{}),
                 Qor::ConstEntityException);
    EXPECT_NE(world.sm->vpBitmap(), nullptr);
}

TEST_F(CallByName, ReachesTheHandlersOfTheStateMachine) {
    call("handleVpIndexConfig", {"bgp"});
    call("handleInvalidRemoteVport", {"10.0.0.2@17"});
    call("handleInvalidMlagRemoteVport", {"10.0.0.2@17"});
    call("handleInvalidEdgeVport", {"Ethernet1/1:100"});
    call("handleInvalidVlanVport", {"100"});
    call("handleInvalidEFilterDisableVport", {"Ethernet7"});
    EXPECT_EQ(world.capture.traces(), (Lines{
                                          "1 handleVpIndexConfig, Name bgp",
                                          "1 handleInvalidRemoteVport vtep: 10.0.0.2",
                                          "1 handleInvalidMlagRemoteVport vtep: 10.0.0.2",
                                          "1 handleInvalidEdgeVport pvKey: Ethernet1/1:100",
                                          "1 handleInvalidVlanVport vlan: 100",
                                          "1 handleInvalidEFilterDisableVport intf: Ethernet7",
                                      }));
}

TEST_F(CallByName, ReachesTheStepsOfTheStart) {
    world.stop();
    world.configDir = VornicCentral::vpIndexConfigDirFactory("config");
    world.references = VornicCentral::vpReferenceListFactory("references");
    world.start();
    world.sm->vpBitmapDel();
    world.capture.forget();
    EXPECT_EQ(call("handleInitialized"), "");
    EXPECT_EQ(call("reconcile"), "");
    EXPECT_EQ(world.capture.traces(), (Lines{"1 handleInitialized", "1 reconcile", "1 reconcile"}));
    EXPECT_EQ(world.pool(), "16: 0-7");
}

TEST_F(CallByName, ReachesTheHandlersOfAnAllocator) {
    for (auto const& [operation, key] :
         {std::pair("handleRemoteVport", "10.0.0.2@17"),
          std::pair("handleMlagRemoteVport", "10.0.0.2@17"),
          std::pair("handleEdgeVport", "Ethernet1/1:100"), std::pair("handleVlanVport", "100"),
          std::pair("handleEFilterDisableVport", "Ethernet7")}) {
        world.capture.forget();
        EXPECT_EQ(callClient(operation, {key}), "");
        EXPECT_EQ(world.capture.traces().front().substr(0, 2 + std::string_view(operation).size()),
                  "1 " + std::string(operation));
    }
    EXPECT_EQ(world.indexOf("bgp", vlan(100)), 15);
}

TEST_F(CallByName, ReachesTheChecksOfAnAllocator) {
    for (std::string_view const operation :
         {"verify", "verifyRemoteVpIndex", "verifyMlagRemoteVpIndex", "verifyEdgeVpIndex",
          "verifyVlanVpIndex", "verifyEFilterDisableVpIndex"}) {
        world.capture.forget();
        EXPECT_EQ(callClient(operation), "");
        EXPECT_EQ(world.capture.traces().front(), "1 " + std::string(operation) + " bgp");
    }
}

TEST_F(CallByName, CanCallTheChecksOnConstants) {
    VornicCentral::VpIndexAllocatorDirSm const& constant = *world.sm;
    EXPECT_EQ(outcome(Qor::callByName(constant, "verify", Texts{})), "");
    EXPECT_EQ(outcome(Qor::callByName(constant, "isDefaultVp", Texts{"3"})), "true");
}

TEST_F(CallByName, RefusesWhatDoesNotFitAndDoesNothing) {
    std::string const before = world.state();
    EXPECT_EQ(call("allocVpIndex"), "expected argument indexPreferenceHigh: bool");
    EXPECT_EQ(call("verify", {"now"}), "expected no more arguments: ()");
    EXPECT_NE(call("allocVpIndex", {"high"}), "");
    EXPECT_NE(call("freeVpIndex", {"4294967296"}), "");
    EXPECT_NE(call("vpTableSize"), "16");
    EXPECT_EQ(world.state(), before);
    EXPECT_EQ(world.capture.traces(), Lines{});
}

} // namespace
