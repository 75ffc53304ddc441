#include "agent/RunVpagent.h"

#include <gtest/gtest.h>

#include <string>

namespace VpAgentTest {
namespace {

TEST(Verify, PassesWithItsTracesBeforeTheResult) {
    EXPECT_EQ(runJson("start table-size=64\nverify\n", 0, {"--trace", "1,5"}),
              R"({"trace": 1, "text": "handleInitialized"}
{"trace": 1, "text": "reconcile"}
{"ok": "start", "line": 1}
{"trace": 1, "text": "verify"}
{"trace": 5, "text": "verify verify vp indices match across statuses"}
{"ok": "verify", "line": 2, "passed": true}
)");
}

TEST(Verify, ReportsAFailedCheckAndTheAgentGoesOn) {
    EXPECT_EQ(
        runJson("put reference vlan 7 20\nstart table-size=64\nverify\nclear-stale\nverify\n", 1),
        R"json({"ok": "put", "line": 1}
{"ok": "start", "line": 2}
{"ok": "verify", "line": 3, "passed": false, "assertion": "reference.references()", "function": "void VornicCentral::VpIndexAllocatorDirSm::verify() const"}
{"ok": "clear-stale", "line": 4}
{"ok": "verify", "line": 5, "passed": true}
)json");
}

TEST(Verify, FailsWhileAKeyWaitsAndSaysThatThisIsNoDamage) {
    Outcome const outcome = runVpagent(
        {}, "client add a\nstart table-size=9\nrequest a vlan 7\nrequest a vlan 8\nverify\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out,
              R"(verify: FAILED: ( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()
  in void VornicCentral::VpIndexAllocatorDirSm::verify() const
  2 references and the system's 8 make 10, but 9 indices are in use.
  The check counts every reference as an index in use, also one that has none: 1 reference without index here.
  All others agree, so this is no damage: the check passes once no reference is without index.
)");
}

TEST(Verify, DoesNotSayThatRealDamageIsNone) {
    Outcome const outcome = runVpagent(
        {}, "client add a\nstart table-size=64\nrequest a vlan 7\ncall allocVpIndex true\n"
            "verify\n");
    EXPECT_EQ(outcome.status, 1);
    EXPECT_EQ(outcome.out,
              R"(62
verify: FAILED: ( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()
  in void VornicCentral::VpIndexAllocatorDirSm::verify() const
  1 reference and the system's 8 make 9, but 10 indices are in use.
  An index is in use that no reference holds, or a reference holds one that is marked free.
)");
}

TEST(Verify, ChecksEveryClient) {
    std::string const start = "client add a\nstart table-size=64\nrequest a vlan 7\n";
    auto const failureOf = [&](std::string const& damage) {
        std::string const out = runJson(start + damage + "\nverify\n", 1);
        std::string const line = out.substr(out.rfind('\n', out.size() - 2) + 1);
        return line.substr(0, line.size() - 1);
    };
    EXPECT_EQ(
        failureOf("drop status a vlan 7"),
        R"json({"ok": "verify", "line": 5, "passed": false, "assertion": "vpIndexStatus()->vlanVportHas( vlan )", "function": "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const"})json");
    EXPECT_EQ(
        failureOf("put status a vlan 9 9"),
        R"json({"ok": "verify", "line": 5, "passed": false, "assertion": "vpIndexConfig()->vlanVportHas( vlan )", "function": "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const"})json");
    EXPECT_EQ(
        failureOf("put status a vlan 7 62"),
        R"json({"ok": "verify", "line": 5, "passed": false, "assertion": "vpIndexAllocatorDirSm()->vpBitmap()->isBitSet( vpIndex )", "function": "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const"})json");
    EXPECT_EQ(
        failureOf("put reference vlan 7 63 b"),
        R"json({"ok": "verify", "line": 5, "passed": false, "assertion": "reference.referenceHas( name() )", "function": "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const"})json");
}

TEST(Verify, LeavesTheExitStatusOfAFailedCommand) {
    EXPECT_EQ(
        runVpagent({"--keep-going"}, "put reference vlan 7 20\nstart\nverify\nnonsense\n").status,
        2);
}

} // namespace
} // namespace VpAgentTest
