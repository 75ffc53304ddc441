#include "agent/RunVpagent.h"
#include "agent/State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>

namespace VpAgentTest {
namespace {

using testing::HasSubstr;

class StateOption : public testing::Test {
protected:
    std::string path() const { return (folder_.path() / "state").string(); }

    /// Runs a script on the state file.
    std::string run(std::string_view script) const {
        return runJson(script, 0, {"--state", path()});
    }

    TemporaryFolder folder_;
};

TEST_F(StateOption, KeepsTheDatabaseAndStartsStopped) {
    run("client add bgp\nstart table-size=9\nrequest bgp vlan 7\nrequest bgp vlan 8\n"
        "client add gone\nrequest gone edge Et1:4\nclient remove gone\n");
    EXPECT_EQ(run("dump\n"),
              R"({"ok": "dump", "line": 1, "state": {"agent": {"running": false}, "pool": null, )"
              R"("config": {"bgp": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], )"
              R"("vlanVport": ["7", "8"], "eFilterDisableVport": []}}, )"
              R"("status": {"bgp": {"vpTableSize": 9, "vpAllocRequests": 1, "vpAllocFailures": 1, )"
              R"("vpFreeRequests": 0, "remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, )"
              R"("vlanVport": {"7": 8, "8": 65535}, "eFilterDisableVport": {}}, )"
              R"("gone": {"vpTableSize": 9, "vpAllocRequests": 0, "vpAllocFailures": 1, )"
              R"("vpFreeRequests": 0, "remoteVport": {}, "mlagRemoteVport": {}, )"
              R"("edgeVport": {"Et1:4": 65535}, "vlanVport": {}, "eFilterDisableVport": {}}}, )"
              R"("references": {"remoteVport": {}, "mlagRemoteVport": {}, )"
              R"("edgeVport": {"Et1:4": {"vpIndex": 65535, "clients": ["gone"]}}, )"
              R"("vlanVport": {"7": {"vpIndex": 8, "clients": ["bgp"]}, )"
              R"("8": {"vpIndex": 65535, "clients": ["bgp"]}}, "eFilterDisableVport": {}}, )"
              R"("waiting": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": ["Et1:4"], )"
              R"("vlanVport": ["8"], "eFilterDisableVport": []}, )"
              R"("boot": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, )"
              R"("vlanVport": {}, "eFilterDisableVport": {}}}})"
              "\n");
    Json const state = Json::parse(run("client add gone\ndump\n").substr(28)).at("state");
    EXPECT_EQ(brief(state.at("config").at("gone")), R"({"edgeVport":["Et1:4"]})");
}

TEST_F(StateOption, LeavesOneFileBehind) {
    run("client add a\n");
    std::string names;
    for (auto const& entry : std::filesystem::directory_iterator(folder_.path())) {
        names += entry.path().filename().string() + ' ';
    }
    EXPECT_EQ(names, "state ");
}

TEST_F(StateOption, KeepsWhatWasDoneBeforeAFailedCommand) {
    runJson("client add a\nclient add a\nclient add b\n", 2, {"--state", path()});
    EXPECT_THAT(run("dump\n"), HasSubstr("\"config\": {\"a\": "));
    runJson("client add b\nnonsense\nclient add c\n", 2, {"--keep-going", "--state", path()});
    EXPECT_THAT(run("show clients\n"), testing::AllOf(HasSubstr("b "), HasSubstr("c ")));
}

TEST_F(StateOption, IsNotMadeWhenAScriptCannotBeRead) {
    Outcome const outcome = runVpagent({"--state", path(), "/nonexistent.vp"});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_FALSE(std::filesystem::exists(path()));
}

TEST_F(StateOption, NamesTheFileThatIsRefused) {
    std::string const script = folder_.write("script.vp", "client add a\n");
    for (auto const& [file, why] : std::vector<std::pair<std::string, std::string>>{
             {script, "it is not an SQLite database, expected one that vpagent made"},
             {folder_.path().string(), "it is a folder, expected a file, or none yet"},
             {folder_.path().string() + "/", "it is a folder, expected a file, or none yet"},
             {path() + "/", "a name is missing at its end, expected the name of a file"},
             {script + "/", "a name is missing at its end, expected the name of a file"},
             {"", "a name is missing at its end, expected the name of a file"},
             {script + "/state", "no file can be made in its folder (Not a directory), "
                                 "expected a folder that may be written"},
             {"/dev/null", "it is not a regular file, expected one, or none yet"},
             {"/nonexistent/state",
              "no file can be made in its folder (No such file or directory), "
              "expected a folder that may be written"}}) {
        Outcome const outcome = runVpagent({"--state", file}, "client add a\n");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.out, "");
        EXPECT_EQ(outcome.err,
                  "vpagent: cannot use the state file \"" + file + "\": " + why + "\n");
    }
}

TEST_F(StateOption, IsNoScript) {
    run("client add a\n");
    for (std::string const& script : {path(), path() + "-wal"}) {
        Outcome const outcome = runVpagent({"--state", path(), script}, "");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_EQ(outcome.err, "vpagent: cannot read \"" + script +
                                   "\" (it belongs to the state file in use), expected a readable "
                                   "script\n");
    }
}

TEST_F(StateOption, LeavesAFileOfTheJournalsNameAlone) {
    std::string const refusal =
        "vpagent: cannot use the state file \"" + path() +
        "\": \"state-journal\" beside it does not belong to it and would be "
        "lost, expected no such file\n";
    std::string const journal = folder_.write("state-journal", "the notes of a day\n");
    auto const expectRefused = [&] {
        EXPECT_EQ(runVpagent({"--state", path()}, "").err, refusal);
        EXPECT_EQ(std::filesystem::file_size(journal), 19u);
    };
    expectRefused();
    EXPECT_FALSE(std::filesystem::exists(path()));
    folder_.write("state", "");
    expectRefused();
    std::filesystem::remove(path());
    std::filesystem::remove(journal);
    run("client add a\n");
    folder_.write("state-journal", "the notes of a day\n");
    expectRefused();
    folder_.write("state-journal", ""); // as a run may leave it that was cut off
    EXPECT_THAT(run("dump\n"), HasSubstr("\"a\": "));
}

TEST_F(StateOption, FollowsALinkToItsFile) {
    std::filesystem::path const link = folder_.path() / "link";
    run("client add a\n");
    std::filesystem::create_symlink("state", link);
    runJson("client add b\n", 0, {"--state", link.string()});
    EXPECT_THAT(run("dump\n"), HasSubstr("\"b\": "));
    EXPECT_TRUE(std::filesystem::is_symlink(link));
}

TEST_F(StateOption, IsGivenOnce) {
    Outcome const outcome = runVpagent({"--state", path(), "--state", path()}, "");
    EXPECT_EQ(outcome.status, 2);
}

std::string const unitScript =
    "client add a\nbegin\nrequest a vlan 7\necho x\nbegin\nrequest b vlan "
    "7\ncommit\nrequest a vlan 8\ncommit\n";

std::string const unitOutput =
    "{\"ok\": \"client\", \"line\": 1}\n"
    "{\"ok\": \"begin\", \"line\": 2}\n"
    "{\"ok\": \"request\", \"line\": 3, \"pending\": true}\n"
    "{\"ok\": \"echo\", \"line\": 4, \"pending\": true, \"text\": \"x\"}\n"
    "{\"error\": \"a unit has begun already, expected 'commit' before (column 1)\", \"line\": 5}\n"
    "{\"error\": \"no client \\\"b\\\", expected one that 'client add' or 'import' made (column "
    "9)\", "
    "\"line\": 6}\n"
    "{\"ok\": \"commit\", \"line\": 7}\n"
    "{\"ok\": \"request\", \"line\": 8}\n"
    "{\"error\": \"no unit has begun, expected 'begin' before (column 1)\", \"line\": 9}\n";

TEST_F(StateOption, MarksTheCommandsOfAUnitAsPending) {
    EXPECT_EQ(runJson(unitScript, 2, {"--keep-going", "--state", path()}), unitOutput);
    EXPECT_THAT(run("dump\n"), HasSubstr("\"vlanVport\": [\"7\", \"8\"]"));
}

TEST(Unit, IsTakenWithoutAStateFileToo) {
    EXPECT_EQ(runJson(unitScript, 2, {"--keep-going"}), unitOutput);
}

TEST_F(StateOption, QuitInAUnitDropsIt) {
    run("client add a\nbegin\nclient add b\nquit\n");
    EXPECT_THAT(run("dump\n"), testing::Not(HasSubstr("\"b\": ")));
}

TEST_F(StateOption, AUnitMayReachFromOneScriptToTheNext) {
    std::string const first = folder_.write("first.vp", "begin\nclient add a\n");
    std::string const second = folder_.write("second.vp", "client add b\ncommit\n");
    EXPECT_EQ(runVpagent({"--state", path(), first, second}).status, 0);
    EXPECT_THAT(run("dump\n"), testing::AllOf(HasSubstr("\"a\": "), HasSubstr("\"b\": ")));
}

} // namespace
} // namespace VpAgentTest
