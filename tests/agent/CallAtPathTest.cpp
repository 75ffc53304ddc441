#include "agent/State.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

std::string const running = "client add a\nclient add \"b/c 100%\"\nstart table-size=64\n"
                            "request a vlan 7\n";

TEST(CallAtPath, CallsTheOperationOfTheEntity) {
    EXPECT_EQ(runJson(running + "call machine/allocVpIndex true\n"
                                "call machine/isDefaultVp 3\n"
                                "call machine/vpIndexAllocator/a/handleVlanVport 7\n"
                                "call machine/vpIndexAllocator/a/verify\n"
                                "call machine/vpBitmap/isBitSet 62\n"
                                "call \"machine/vpIndexAllocator/b%2Fc 100%25/verify\"\n"),
              R"({"ok": "client", "line": 1}
{"ok": "client", "line": 2}
{"ok": "start", "line": 3}
{"ok": "request", "line": 4}
{"ok": "call", "line": 5, "result": 62}
{"ok": "call", "line": 6, "result": true}
{"ok": "call", "line": 7}
{"ok": "call", "line": 8}
{"ok": "call", "line": 9, "result": true}
{"ok": "call", "line": 10}
)");
}

TEST(CallAtPath, ChangesTheEntityItself) {
    EXPECT_EQ(stateAfter(running + "call machine/vpBitmap/setBit 20").at("pool").dump(),
              R"({"size":64,"used":10,"runs":[[0,7],[20,20],[63,63]]})");
}

TEST(CallAtPath, CallsTheEntityThatHasTheNameNow) {
    std::string const again = "client retire a\nclient add a\nrequest a vlan 8\n";
    EXPECT_EQ(runJson(running + again + "call machine/vpIndexAllocator/a/verify\n").find("error"),
              std::string::npos);
}

TEST(CallAtPath, IsRefusedWithoutEffect) {
    std::string const operations =
        "handleRemoteVport, handleMlagRemoteVport, handleEdgeVport, handleVlanVport, "
        "handleEFilterDisableVport, verify, verifyRemoteVpIndex, verifyMlagRemoteVpIndex, "
        "verifyEdgeVpIndex, verifyVlanVpIndex, verifyEFilterDisableVpIndex";
    for (auto const& [command, why] : std::vector<std::pair<std::string, std::string>>{
             {"call machine/vpIndexAllocator/a/nonsense",
              "bad operation \"nonsense\", expected an operation of VornicCentral::"
              "VpIndexAllocator: " +
                  operations + " (column 33)"},
             {"call machine/vpIndexAllocator/a/",
              "bad operation \"\", expected an operation of VornicCentral::VpIndexAllocator: " +
                  operations + " (column 33)"},
             {"call machine/vpIndexAllocator/x/verify",
              "no key \"x\" in vpIndexAllocator, expected a or b%2Fc 100%25 (column 31)"},
             {"call machine/vpIndexAllocator/verify",
              "\"machine/vpIndexAllocator\" is no entity, expected one whose operations can be "
              "called (column 6)"},
             {"call machine/vpTableSize/verify",
              "\"machine/vpTableSize\" is no entity, expected one whose operations can be called "
              "(column 6)"},
             {"call references/verify", "bad operation \"verify\", expected an operation of "
                                        "VornicCentral::VpReferenceList, which has none (column "
                                        "17)"},
             {"call configs/vpIndexConfigDel a",
              "bad operation \"vpIndexConfigDel\", expected an operation of "
              "VornicCentral::VpIndexConfigDir, which has none (column 14)"},
             {"call /verify", "unknown root \"\", expected machine, references, waiting, boot, "
                              "configs, statuses, holder, higig, backplane or ipmc (column 6)"},
             {"call machine/isDefaultVp", "an argument is missing, expected argument vpIndex: U32 "
                                          "(column 25)"},
             {"call machine/isDefaultVp x",
              "bad argument \"x\", expected a number from 0 to 4294967295 (argument vpIndex) "
              "(column 26)"},
             {"call machine/isDefaultVp 1 2",
              "bad argument \"2\", expected no more arguments: (vpIndex: U32) (column 28)"},
             {"call machine/%/verify",
              "a percent sign in a path, expected %2F for a slash or %25 for a percent sign "
              "(column 14)"}}) {
        EXPECT_EQ(errorOf(running, command), why) << command;
    }
    EXPECT_EQ(errorOf("client add a\n", "call machine/verify"),
              "the state machine is not running, expected 'start' before (column 6)");
}

/// What a call changes is on disk when it is acknowledged, like what any other command changes.
TEST(CallAtPath, IsKeptInTheStateFile) {
    TemporaryFolder const folder;
    std::string const file = (folder.path() / "state").string();
    auto const run = [&](std::string const& script) {
        return runJson(script, 0, {"--state", file});
    };
    std::string const before =
        run("client add a\nstart table-size=64\nrequest a vlan 7\ndrop status a vlan 7\n"
            "drop reference vlan 7\ncall machine/vpIndexAllocator/a/handleVlanVport 7\n"
            "put reference vlan 9 65535 a\ndrop waiting vlan 9\n"
            "call machine/handleInvalidVlanVport 9\nbegin\n"
            "call machine/vpIndexAllocator/a/verifyEdgeVpIndex\ncommit\nstop\ndump\n");
    EXPECT_NE(before.find(R"({"ok": "call", "line": 11, "pending": true})"), std::string::npos);
    std::size_t const last = before.rfind("{\"ok\": \"dump\"");
    Json const state = Json::parse(before.substr(last)).at("state");
    EXPECT_EQ(state.at("status").at("a").at("vlanVport").dump(), R"({"7":62})");
    EXPECT_EQ(brief(state.at("references")), R"({"vlanVport":{"7":{"vpIndex":62,"clients":["a"]},)"
                                             R"("9":{"vpIndex":65535,"clients":["a"]}}})");
    EXPECT_EQ(brief(state.at("waiting")), R"({"vlanVport":["9"]})");
    EXPECT_EQ(Json::parse(run("dump\n")).at("state"), state);
}

} // namespace
} // namespace VpAgentTest
