#include "Limits.h"
#include "agent/MeasuredRun.h"
#include "agent/State.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>

namespace VpAgentTest {
namespace {

namespace Limits = VpAgent::Limits;
using testing::HasSubstr;

/// Far less than what the readers could be given, far more than what they keep of it. The build
/// with sanitizers needs more than 100 MiB for nothing.
long const littleMemory = memoryIsPadded() ? 400 : 40;

/// The run refused its input, with these words, before it took much of anything.
void expectBounded(Measured const& run, std::string const& words, long most = littleMemory) {
    EXPECT_EQ(run.outcome.status, 2);
    EXPECT_THAT(run.outcome.out + run.outcome.err, HasSubstr(words));
    EXPECT_LT(run.seconds, littleTime());
    EXPECT_LT(run.peakMebibytes, most);
    std::cout << run.seconds << " s, " << run.peakMebibytes << " MiB: " << words << '\n';
}

class InputLimits : public testing::Test {
protected:
    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    TemporaryFolder folder_;
};

std::string echo(std::size_t length) { return "echo " + std::string(length - 5, 'x'); }

TEST_F(InputLimits, ALineOfTheLongestLengthIsTakenAndNoLongerOne) {
    std::string const message = " has more than 1048576 bytes), expected a readable script\n";
    for (char const* const end : {"", "\n"}) {
        Outcome const taken = runVpagent({}, "echo on\n" + echo(Limits::line) + end);
        EXPECT_EQ(taken.status, 0);
        EXPECT_EQ(taken.out.size(), std::string("on\n").size() + Limits::line - 5 + 1);
        Outcome const refused = runVpagent({}, "echo on\n" + echo(Limits::line + 1) + end);
        EXPECT_EQ(refused.status, 2);
        EXPECT_EQ(refused.out, "on\n");
        EXPECT_EQ(refused.err, "vpagent: cannot read standard input (line 2" + message);
    }
    std::string const script = folder_.write("script.vp", echo(Limits::line + 1));
    EXPECT_EQ(runVpagent({"--keep-going", script}).err,
              "vpagent: cannot read \"" + script + "\" (line 1" + message);
}

TEST_F(InputLimits, ALineWithoutEndIsRefusedSoon) {
    std::string const words = "(line 1 has more than 1048576 bytes)";
    expectBounded(measuredRun({"/dev/zero"}), words);
    expectBounded(measuredRun({"--json", "--keep-going"}, "/dev/zero"), words);
    makeSparse(path("sparse"), std::uintmax_t{10} << 30);
    expectBounded(measuredRun({path("sparse")}), words);
}

TEST_F(InputLimits, EndlessShortLinesNeedNoMoreMemoryThanAFew) {
    std::string script;
    for (int line = 0; line < 50000; ++line) {
        script += "nonsense with a bad word and an error\n";
    }
    Measured const run = measuredRun({"--keep-going", folder_.write("script.vp", script)});
    EXPECT_EQ(run.outcome.status, 2);
    EXPECT_LT(run.peakMebibytes, littleMemory);
}

/// The errors of a script that carries on.
std::string errorsOf(std::string const& script) { return runVpagent({"--keep-going"}, script).err; }

/// The longest line that standard error shows for a command with this word at its end.
std::size_t longestErrorLine(std::string const& command, std::string const& word) {
    std::istringstream lines(
        errorsOf("client add a\nstart table-size=9\nmcast create\n" + command + word + '\n'));
    std::size_t longest = 0;
    for (std::string line; std::getline(lines, line);) {
        longest = std::max(longest, line.size());
    }
    EXPECT_NE(longest, 0) << command;
    return longest;
}

TEST_F(InputLimits, AnErrorRepeatsNoMoreOfALineThanOfAnyText) {
    std::size_t const rest = 1024; // what is said around it
    for (char const* const command : {"",
                                      "client ",
                                      "client add ",
                                      "show clients ",
                                      "put reference vlan 7 9 a ",
                                      "put waiting efilter ",
                                      "import ",
                                      "inspect ",
                                      "inspect nope/",
                                      "inspect configs/",
                                      "inspect references/vlanVport/",
                                      "call ",
                                      "call-client a ",
                                      "call isDefaultVp ",
                                      "mcast higig 1 ",
                                      "ring dump /no/",
                                      "show ring --from ",
                                      "start ",
                                      "help x y ",
                                      "request a vlan ",
                                      "request a vlan 7 ",
                                      "quit "}) {
        EXPECT_LE(longestErrorLine(command, std::string(900000, 'a')), Limits::quote + rest)
            << command;
        EXPECT_LE(longestErrorLine(command, std::string(900000, '\x1B')), 4 * Limits::quote + rest)
            << command;
    }
}

TEST_F(InputLimits, AnErrorRepeatsALongLineAroundThePlace) {
    std::string const half(Limits::quote / 2, 'x');
    std::string const indent = "    ...";
    EXPECT_EQ(errorsOf("echo y" + half + "\x1B" + half + "z\n"),
              "-:1: a control character (0x1B), expected printable text\n" + indent + half +
                  "\\x1B" + half.substr(1) + "...\n" + std::string(7 + half.size(), ' ') +
                  "^~~~\n");
    std::string const euro = "\xE2\x82\xAC"; // cut within neither of them
    EXPECT_EQ(errorsOf("dump " + euro + half.substr(2) + "\x01" + half.substr(3) + euro + '\n'),
              "-:1: a control character (0x01), expected printable text\n" + indent + euro +
                  half.substr(2) + "\\x01" + half.substr(3) + "...\n" +
                  std::string(7 + 1 + half.size() - 2, ' ') + "^~~~\n");
}

TEST_F(InputLimits, AsManyClientsAsThereMayBe) {
    std::string const last = std::to_string(Limits::clients);
    std::string script;
    for (std::size_t client = 1; client <= Limits::clients; ++client) {
        script += "client add c" + std::to_string(client) + '\n';
    }
    std::string const file = folder_.write("one.json", R"({"VLAN_MEMBER|Vlan7|Et1": {}})");
    std::string const message = ": too many clients, expected at most 4096\n";
    EXPECT_EQ(errorsOf(script + "client remove c1\nclient add c1\nimport " + file + " c1\n"), "");
    EXPECT_EQ(errorsOf(script + "client remove c1\nclient add x\n"),
              "-:4098" + message + "    client add x\n               ^\n");
    EXPECT_THAT(errorsOf(script + "import " + file + " x\n"), HasSubstr("-:4097" + message));
    EXPECT_EQ(errorsOf(script + "client retire c1\nclient add x\n"), "");
}

TEST_F(InputLimits, AReferenceIsGivenAsManyNamesAsThereMayBeClients) {
    std::string names;
    for (std::size_t client = 1; client <= Limits::clients; ++client) {
        names += " c" + std::to_string(client);
    }
    EXPECT_EQ(errorsOf("put reference vlan 7 9" + names + '\n'), "");
    EXPECT_THAT(errorsOf("put reference vlan 7 9" + names + " x\n"),
                HasSubstr("-:1: too many names, expected at most 4096\n"));
}

TEST_F(InputLimits, AKeyIsAsLongAsItMayBe) {
    std::string const longest(Limits::keyText, 'x');
    std::string const message = ", expected a key of at most 4096 bytes\n";
    EXPECT_EQ(errorsOf("client add a\nrequest a efilter " + longest + "\nput boot edge " +
                       longest.substr(5) + ":4094 7\n"),
              "");
    EXPECT_THAT(errorsOf("client add a\nrequest a efilter x" + longest + '\n'), HasSubstr(message));
    EXPECT_THAT(errorsOf("put waiting edge " + longest + ":1\n"), HasSubstr(message));
    EXPECT_THAT(errorsOf("put waiting vlan 1" + longest + "\n"), HasSubstr(message));
    EXPECT_THAT(errorsOf("mcast create\nmcast backplane x" + longest + '\n'), HasSubstr(message));
    auto const import = [&](std::string const& interface) {
        return errorsOf(
            "import " +
            folder_.write("a.json", R"({"VLAN_MEMBER|Vlan7|)" + interface + R"(": {}})") + '\n');
    };
    EXPECT_EQ(import(longest.substr(2)), "");
    EXPECT_THAT(import(longest.substr(1)), HasSubstr(message));
}

TEST_F(InputLimits, AMulticastSetHasAsManyInterfacesAsItMayHave) {
    std::string intfs;
    for (std::size_t intf = 0; intf < Limits::interfaces; ++intf) {
        intfs += " e" + std::to_string(intf);
    }
    EXPECT_EQ(errorsOf("mcast create\nmcast higig 1" + intfs + '\n'), "");
    EXPECT_THAT(errorsOf("mcast create\nmcast backplane" + intfs + " x\n"),
                HasSubstr("-:2: too many interfaces, expected at most 4096\n"));
}

TEST_F(InputLimits, ARingIsLookedForInAFileOfTheLargestSize) {
    EXPECT_EQ(runVpagent({}, "start table-size=8\nring dump " + path("ring") + '\n').status, 0);
    std::filesystem::resize_file(path("ring"), Limits::ringFile);
    EXPECT_EQ(runVpagent({}, "show ring --from " + path("ring") + '\n').err, "");
    std::filesystem::resize_file(path("ring"), Limits::ringFile + 1);
    std::string const script = folder_.write("script.vp", "show ring --from " + path("ring"));
    expectBounded(measuredRun({script}), "(more than 4294967296 bytes), expected a readable file");
}

} // namespace
} // namespace VpAgentTest
