#include "agent/RunVpagent.h"
#include "support/FileBytes.h"

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

TEST(Program, AnswersEachCommandWithOneLine) {
    EXPECT_EQ(runJson("# a comment\n"
                      "client add bgp\n"
                      "\n"
                      "start table-size=64\n"
                      "request bgp vlan 7 # another\n"
                      "echo a  \"b  c\"\n"
                      "call isDefaultVp 7\n"
                      "call allocVpIndex false\n"
                      "call freeVpIndex 8\n"
                      "quit\n"
                      "echo never\n"),
              "{\"ok\": \"client\", \"line\": 2}\n"
              "{\"ok\": \"start\", \"line\": 4}\n"
              "{\"ok\": \"request\", \"line\": 5}\n"
              "{\"ok\": \"echo\", \"line\": 6, \"text\": \"a b  c\"}\n"
              "{\"ok\": \"call\", \"line\": 7, \"result\": true}\n"
              "{\"ok\": \"call\", \"line\": 8, \"result\": 8}\n"
              "{\"ok\": \"call\", \"line\": 9}\n"
              "{\"ok\": \"quit\", \"line\": 10}\n");
}

TEST(Program, ShowsTracesBeforeTheCommandThatCausedThem) {
    EXPECT_EQ(runJson("client add bgp\n"
                      "start table-size=64\n"
                      "request bgp edge Ethernet1/1:100\n",
                      0, {"--trace", "1,5"}),
              R"({"ok": "client", "line": 1}
{"trace": 1, "text": "handleInitialized"}
{"trace": 1, "text": "reconcile"}
{"trace": 5, "text": "reconcile clean up status for: bgp"}
{"trace": 1, "text": "handleVpIndexConfig, Name bgp"}
{"trace": 1, "text": "handleInitialized bgp"}
{"trace": 1, "text": "handleRemoteVport"}
{"trace": 1, "text": "handleMlagRemoteVport"}
{"trace": 1, "text": "handleEdgeVport"}
{"trace": 1, "text": "handleVlanVport"}
{"trace": 1, "text": "handleEFilterDisableVport"}
{"ok": "start", "line": 2}
{"trace": 1, "text": "handleEdgeVport pvKey: Ethernet1/1:100"}
{"trace": 5, "text": "handleEdgeVport vport addition for: bgp"}
{"trace": 5, "text": "handleEdgeVport allocating vp index for pvKey: Ethernet1/1:100"}
{"trace": 5, "text": "allocVpIndex index allocated is: 63"}
{"trace": 5, "text": "handleEdgeVport allocated vpIndex: 63"}
{"trace": 5, "text": "handleEdgeVport pvKey: Ethernet1/1:100 vPort: 63"}
{"trace": 1, "text": "handleInvalidEdgeVport pvKey: Ethernet1/1:100"}
{"trace": 5, "text": "handleInvalidEdgeVport vport addition/modification for: 63"}
{"trace": 5, "text": "handleInvalidEdgeVport vport deleted : 63"}
{"ok": "request", "line": 3}
)");
}

TEST(Program, ShowsOnlyTheTraceLevelsThatAreAskedFor) {
    std::string const script = "client add a\nstart table-size=9\nrequest a vlan 1\n"
                               "client add b\nrequest b vlan 2\nwithdraw a vlan 1\n";
    EXPECT_EQ(runJson(script, 0, {"--trace", "7"}),
              R"json({"ok": "client", "line": 1}
{"ok": "start", "line": 2}
{"ok": "request", "line": 3}
{"ok": "client", "line": 4}
{"log": "VORNIC_VIRTUALPORT_RESOURCE_FULL", "severity": 3, "text": "Hardware resources are insufficient to add virtual port for vxlan vlan 2 svp"}
{"ok": "request", "line": 5}
{"trace": 7, "text": "recycleOrFreeVpIndex Recycling vpIndex : 8 to vpIndexAllocator(b)->vpIndexStatus()->vlanVport(2)"}
{"log": "VORNIC_VIRTUALPORT_RESOURCE_NORMAL", "severity": 3, "text": "Hardware resources are available to add virtual port for vxlan vlan 2 svp"}
{"ok": "withdraw", "line": 6}
)json");
    std::string const all = runJson(script, 0, {"--trace", "all"});
    EXPECT_EQ(all, runJson(script, 0, {"--trace", "1,5,7"}));
}

TEST(Program, StopsAtTheFirstCommandThatFails) {
    EXPECT_EQ(runJson("client add a\nclient add a\nclient add b\n", 2),
              "{\"ok\": \"client\", \"line\": 1}\n"
              "{\"error\": \"client \\\"a\\\" is there already, expected a new name (column 12)\", "
              "\"line\": 2}\n");
}

TEST(Program, KeepsGoingWhenItIsTold) {
    EXPECT_EQ(runJson("client add a\nclient add a\nclient add b\n", 2, {"--keep-going"}),
              "{\"ok\": \"client\", \"line\": 1}\n"
              "{\"error\": \"client \\\"a\\\" is there already, expected a new name (column 12)\", "
              "\"line\": 2}\n"
              "{\"ok\": \"client\", \"line\": 3}\n");
}

TEST(Program, MarksTheFaultForPeople) {
    Outcome const outcome =
        runVpagent({"--keep-going"}, "client add a\nrequest a vlan 4095\nrequest a\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "-:2: bad vlan key \"4095\", expected a VLAN from 1 to 4094\n"
                           "    request a vlan 4095\n"
                           "                   ^~~~\n"
                           "-:3: a word is missing, expected request NAME VPORT\n"
                           "    request a\n"
                           "              ^\n");
}

TEST(Program, PrintsNoControlCharacterOfItsInput) {
    Outcome const outcome = runVpagent({}, "echo \x1b[31mred\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.err, "-:1: a control character (0x1B), expected printable text\n"
                           "    echo \\x1B[31mred\n"
                           "         ^~~~\n");
}

TEST(Program, ReadsItsScriptsInTurn) {
    TemporaryFolder const folder;
    std::string const first = folder.write("first.vp", "echo one\n\necho two"); // no line end
    std::string const second = folder.write("second.vp", "echo three\n");
    Outcome const outcome = runVpagent({"--json", first, "-", second}, "echo input\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "{\"ok\": \"echo\", \"line\": 1, \"text\": \"one\"}\n"
                           "{\"ok\": \"echo\", \"line\": 3, \"text\": \"two\"}\n"
                           "{\"ok\": \"echo\", \"line\": 1, \"text\": \"input\"}\n"
                           "{\"ok\": \"echo\", \"line\": 1, \"text\": \"three\"}\n");
}

TEST(Program, NamesTheScriptOfAFault) {
    TemporaryFolder const folder;
    std::string const script = folder.write("bad.vp", "echo one\nnonsense\n");
    Outcome const outcome = runVpagent({script});
    EXPECT_EQ(outcome.out, "one\n");
    EXPECT_EQ(outcome.err.substr(0, script.size() + 30),
              script + ":2: unknown command \"nonsense\"");
}

TEST(Program, RunsNothingWhenAScriptIsUnreadable) {
    TemporaryFolder const folder;
    std::string const script = folder.write("good.vp", "echo one\n");
    std::string const missing = (folder.path() / "missing.vp").string();
    Outcome const outcome = runVpagent({script, missing});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "");
    EXPECT_EQ(outcome.err, "vpagent: cannot read \"" + missing +
                               "\" (No such file or directory), expected a readable script\n");
    EXPECT_EQ(runVpagent({folder.path().string()}).status, 2);
}

TEST(Program, ReadsLongLines) {
    std::string const text(200000, 'x');
    EXPECT_EQ(runVpagent({}, "echo " + text + "\necho short\n").out, text + "\nshort\n");
}

TEST(Program, AnswersBeforeItWaitsForTheNextCommand) {
    Driven program({"--json"});
    program.write("echo one\n");
    EXPECT_EQ(program.readLine(), "{\"ok\": \"echo\", \"line\": 1, \"text\": \"one\"}");
    program.write("echo two\necho");
    EXPECT_EQ(program.readLine(), "{\"ok\": \"echo\", \"line\": 2, \"text\": \"two\"}");
    program.write(" three\n");
    EXPECT_EQ(program.readLine(), "{\"ok\": \"echo\", \"line\": 3, \"text\": \"three\"}");
}

TEST(Program, IsAbortedByAFailedAssertion) {
    // A boot entry with index 0 is not among the reserved ones that are dropped, and bit 0 is set
    // already.
    Outcome const outcome = runVpagent({"--json"}, "put boot vlan 1 0\nstart\necho never\n");
    EXPECT_EQ(outcome.status, -SIGABRT);
    EXPECT_EQ(outcome.out, "{\"ok\": \"put\", \"line\": 1}\n");
    std::string const unit = "/src/VornicL3Shared/VornicL3VpIndexAllocator:";
    EXPECT_EQ(outcome.err.substr(0, unit.size()), unit);
    EXPECT_EQ(outcome.err.substr(outcome.err.find(' ')),
              " void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap(U32): Assertion "
              "'!vpBitmap()->isBitSet( vpIndex )' failed.\n");
}

TEST(Program, EndsInAnErrorWhenItsOutputIsLost) {
    EXPECT_EQ(runVpagent({"--json"}, "echo one\n").status, 0);
    TemporaryFolder const folder;
    std::string const shell =
        "exec " + vpagentProgram() + " --json > /dev/full < " + folder.write("s.vp", "echo one\n");
    int const status = std::system(shell.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 2);
}

TEST(Options, AreDefaultsOfStart) {
    EXPECT_EQ(
        runVpagent({"--table-size", "100", "--reallocation", "off", "--vfi-forwarding=on",
                    "--remote-low", "on"},
                   "start\ndump\nstop\nstart table-size=8\ndump\n")
            .out,
        R"({"agent": {"running": true, "initialized": true, "tableSize": 100, "reallocation": false, "vfiForwarding": true, "remoteLow": true, "allocators": []}, "pool": {"size": 100, "used": 8, "runs": [[0, 7]]}, "config": {}, "status": {}, "references": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}, "waiting": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], "vlanVport": [], "eFilterDisableVport": []}, "boot": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}}
{"agent": {"running": true, "initialized": true, "tableSize": 8, "reallocation": false, "vfiForwarding": true, "remoteLow": true, "allocators": []}, "pool": {"size": 8, "used": 8, "runs": [[0, 7]]}, "config": {}, "status": {}, "references": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}, "waiting": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], "vlanVport": [], "eFilterDisableVport": []}, "boot": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}}
)");
}

TEST(Options, AreRefusedWhenTheyAreWrong) {
    using Words = std::vector<std::string>;
    for (Words const& words : {Words{"--nonsense"},
                               Words{"--table-size", "65536"},
                               Words{"--table-size", "-1"},
                               Words{"--table-size", "0x10"},
                               Words{"--table-size", "10k"},
                               Words{"--table-size", ""},
                               Words{"--table-size"},
                               Words{"--table-size", "1", "--table-size", "2"},
                               Words{"--reallocation", "yes"},
                               Words{"--reallocation"},
                               Words{"--remote-low", "ON"},
                               Words{"--vfi-forwarding", "1"},
                               Words{"--trace", "64"},
                               Words{"--trace", "1,"},
                               Words{"--trace", ",1"},
                               Words{"--trace", "1 5"},
                               Words{"--trace", "-1"},
                               Words{"--trace", "ALL"},
                               Words{"--json=3"},
                               Words{"--keep-going=no"}}) {
        Outcome const outcome = runVpagent(words, "echo never\n");
        EXPECT_EQ(outcome.status, 2) << testing::PrintToString(words);
        EXPECT_EQ(outcome.out, "");
        EXPECT_NE(outcome.err, "");
    }
}

TEST(Options, TakeScriptNamesInBrackets) {
    TemporaryFolder const folder;
    folder.write("x", "echo without\n");
    folder.write("[x]", "echo brackets\n");
    folder.write("[x,y]", "echo list\n");
    folder.write("{}", "echo braces\n");
    auto const runs = [&folder](std::string const& scripts) {
        std::string const out = (folder.path() / "out").string();
        std::string const command = "cd " + folder.path().string() + " && exec " +
                                    vpagentProgram() + " " + scripts + " > out < /dev/null";
        EXPECT_EQ(std::system(command.c_str()), 0) << scripts;
        return Support::bytesOf(out);
    };
    EXPECT_EQ(runs("'[x]'"), "brackets\n");
    EXPECT_EQ(runs("'{}'"), "braces\n");
    EXPECT_EQ(runs("'[x]' x '[x,y]' --keep-going -- '{}'"), "brackets\nwithout\nlist\nbraces\n");
    EXPECT_EQ(runs("--state '[s]' x"), "without\n");
    EXPECT_TRUE(std::filesystem::exists(folder.path() / "[s]"));
}

TEST(Options, ExplainThemselves) {
    Outcome const help = runVpagent({"--help"});
    EXPECT_EQ(help.status, 0);
    for (char const* const option : {"--json", "--trace", "--table-size", "--reallocation",
                                     "--vfi-forwarding", "--remote-low", "--keep-going"}) {
        EXPECT_NE(help.out.find(option), std::string::npos) << option;
    }
    Outcome const version = runVpagent({"--version"});
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.substr(0, 8), "vpagent ");
}

} // namespace
} // namespace VpAgentTest
