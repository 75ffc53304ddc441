#include "agent/KeptAgent.h"
#include "agent/State.h"
#include "text/Utf8.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

#include <algorithm>
#include <sstream>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

/// What a terminal obeys: it clears the screen, takes another title, answers as if somebody typed.
Texts const controls{"\x1B[2J",
                     "\x1B]0;title\x07",
                     "\x1B[6n",
                     "\x1BP1$r0m\x1B\\",
                     "a\x08\x08\x08root",
                     "a\rb",
                     "a\tb\x0B\x0C",
                     "\x7F",
                     "\x01",
                     "\xC2\x9B"
                     "31m",
                     "\xC2\x90q\xC2\x9C",
                     "\x9B"
                     "2J",
                     "\xFF\xFE",
                     "\xE2\x80"};

/// What looks like another text, or like none. Names may hold it, terminals are not given it.
Texts const invisible{"x\xE2\x80\xAE"
                      "gnp.exe",
                      "x\xE2\x81\xA6y\xE2\x81\xA9",
                      "x\xE2\x80\x8By",
                      "x\xE2\x80\x8D",
                      "\xEF\xBB\xBFx",
                      "x\xE2\x80\xA8y",
                      "x\xC2\xADy",
                      "x\xF3\xA0\x81\x81",
                      "\xD8\x9C"};

/// No byte of the text is anything but a line end or a part of a character that can be seen.
void expectSafe(std::string const& text) {
    for (std::size_t at = 0; at < text.size();) {
        VpAgent::Utf8Character const character = VpAgent::utf8At(text, at);
        bool const safe = character.length != 0 &&
                          (text[at] == '\n' || !VpAgent::isInvisible(character.codePoint));
        ASSERT_TRUE(safe) << "byte " << at << " of: "
                          << testing::PrintToString(text.substr(at < 200 ? 0 : at - 200, 400));
        at += character.length;
    }
}

void expectSafe(Outcome const& outcome) {
    EXPECT_GE(outcome.status, 0);
    expectSafe(outcome.out);
    expectSafe(outcome.err);
}

/// Runs a script in both forms; every line of the one for programs is JSON.
void expectSafeRun(std::string const& script, Texts arguments = {}) {
    SCOPED_TRACE(testing::PrintToString(script.substr(0, 300)));
    arguments.insert(arguments.end(), {"--keep-going", "--trace", "all"});
    expectSafe(runVpagent(arguments, script));
    arguments.emplace_back("--json");
    Outcome const outcome = runVpagent(arguments, script);
    expectSafe(outcome);
    std::istringstream lines(outcome.out);
    for (std::string line; std::getline(lines, line);) {
        EXPECT_TRUE(Json::accept(line)) << line;
    }
}

std::string quoted(std::string const& text) { return '"' + text + '"'; }

/// Commands that repeat a text: as a name, a key, a path, an argument, or in an error.
std::string allCommandsWith(std::string const& text) {
    std::string const word = quoted(text);
    std::string script = "mcast create\nclient add " + word + "\nrequest " + word + " efilter " +
                         word + "\nrequest " + word + " edge " + quoted(text + ":7") +
                         "\nstart table-size=9\nrequest " + word + " vlan 8\nrequest " + word +
                         " vlan 9\n";
    for (char const* const before : {"",
                                     "client add ",
                                     "client remove x",
                                     "show ",
                                     "show clients ",
                                     "show references ",
                                     "put reference vlan 7 9 ",
                                     "put status ",
                                     "put waiting efilter ",
                                     "put boot edge ",
                                     "import ",
                                     "inspect ",
                                     "inspect references/",
                                     "inspect configs/vpIndexConfig/",
                                     "call ",
                                     "call machine/",
                                     "call handleEdgeVport ",
                                     "call-client ",
                                     "mcast higig 1 ",
                                     "mcast backplane ",
                                     "mcast install ",
                                     "mcast higig ",
                                     "message off ",
                                     "ring dump /no/",
                                     "show ring --from ",
                                     "show ring --ctf /no/",
                                     "start ",
                                     "restart table-size=",
                                     "help ",
                                     "echo ",
                                     "withdraw ",
                                     "request x ",
                                     "request x vlan "}) {
        script += before + word + '\n';
        script += before + text + '\n';
    }
    return script + "inspect " + quoted("configs/vpIndexConfig/" + text) + "\ncall-client " + word +
           " nonsense\nshow\nshow clients\nshow references " + word +
           "\nshow waiting\nshow counters\n"
           "show log\nshow ring\nmcast show\ninspect configs\ninspect statuses\ninspect "
           "references\n"
           "inspect waiting\ninspect machine\ninspect higig\nmessage\nverify\ndump\n# " +
           text + "\nmcast destroy\nclient retire " + word + '\n';
}

/// All of them in one.
std::string joined(Texts const& texts) {
    std::string all;
    for (std::string const& text : texts) {
        all += text;
    }
    return all;
}

TEST(ControlCharacters, OfAScriptReachNoTerminal) {
    std::string script;
    for (Texts const& texts : {controls, invisible}) {
        for (std::string const& text : texts) {
            script += "stop\n" + allCommandsWith(text);
        }
    }
    expectSafeRun(script);
}

TEST(ControlCharacters, OfArgumentsReachNoTerminal) {
    for (std::string const& text : {joined(controls), joined(invisible)}) {
        for (Texts const& arguments :
             {Texts{text}, Texts{"--" + text}, Texts{"-" + text}, Texts{"--trace", text},
              Texts{"--table-size=" + text}, Texts{"--reallocation", text}, Texts{"--json=" + text},
              Texts{"--state", "/no/" + text}, Texts{"/no/" + text}}) {
            expectSafe(runVpagent(arguments));
        }
    }
}

TEST(ControlCharacters, OfFileNamesReachNoTerminal) {
    for (std::string name : {joined(controls), joined(invisible)}) {
        std::replace(name.begin(), name.end(), '/', '-');
        TemporaryFolder const folder;
        std::string const script = folder.write(name + ".vp", "nonsense\nimport x\n");
        expectSafe(runVpagent({"--keep-going", script}));
        std::string const other = folder.write(name + ".json", "no JSON");
        expectSafe(runVpagent({"--state", other}));
        expectSafeRun("import " + quoted(other) + "\nshow ring --from " + quoted(other) +
                      "\nring dump " + quoted(other) + '\n');
        fs::create_directory(folder.path() / name);
        expectSafe(runVpagent({(folder.path() / name).string()}));
        expectSafe(runVpagent({"--state", (folder.path() / name).string()}));
    }
}

TEST(ControlCharacters, OfImportedFilesReachNoTerminal) {
    TemporaryFolder const folder;
    std::string script;
    int count = 0;
    for (char const* const text : {"\\u001b[2J", "\\u009b31m", "\\u007f", "\\u0000", "\\u202egnp",
                                   "\\n\\r", "\xC2\x9B", "x\\u200b"}) {
        std::string const word = quoted(text);
        for (std::string const& file :
             Texts{"{" + word + ": 1}", "{\"VLAN_MEMBER\": {" + word + ": {}}}",
                   "{\"VLAN_MEMBER\": {\"Vlan7|" + std::string(text) + "\": {}}}",
                   "{\"VLAN_MEMBER|" + std::string(text) + "\": " + word + "}",
                   "{\"MCLAG_DOMAIN\": {\"7\": {\"peer_ip\": " + word + "}}}",
                   "{\"MCLAG_DOMAIN\": {\"7\": {\"peer_ip\": \"1.2.3.4\", \"peer_link\": " + word +
                       "}}}",
                   "{\"VXLAN_TUNNEL_MAP|x\": {\"vlan\": " + word + "}}",
                   "{\"VXLAN_REMOTE_VNI|Vlan7|1.2.3.4\": {\"vni\": " + word + "}}",
                   "{" + word + ": {\"vni\": 7, \"remoteVteps\": [{\"ip\": " + word + "}]}}",
                   "{\"VLAN_MEMBER\": {" + word + ": {}, " + word + ": {}}}", "{" + word + ": "}) {
            std::string const name = std::to_string(++count) + ".json";
            script += "import " + folder.write(name, file) + " a\n";
        }
    }
    expectSafeRun(script + "dump\nshow\n");
}

TEST(ControlCharacters, OfARingBufferFromElsewhereReachNoTerminal) {
    TemporaryFolder const folder;
    std::string const ring = (folder.path() / "ring").string();
    std::string const script =
        "client add leaf-leaf\nstart table-size=9\nrequest leaf-leaf vlan 7\n"
        "put status leaf-leaf vlan 9 7\nrestart\nring dump " +
        ring + '\n';
    EXPECT_EQ(runVpagent({}, script).status, 0);
    std::string bytes = bytesOf(ring);
    for (std::string_view const old : {"leaf-leaf", "reconcile"}) {
        for (std::size_t at = bytes.find(old); at != std::string::npos; at = bytes.find(old, at)) {
            bytes.replace(at, 9, "\x1B]0;\x07\xC2\x9B\x7F\n");
        }
    }
    folder.write("ring", bytes);
    std::string const show = "show ring --from " + ring;
    std::string const trace = (folder.path() / "ctf").string();
    expectSafeRun(show + "\nshow ring --all --from " + ring + "\nshow ring --from " + ring +
                  " --ctf " + trace + '\n');
    EXPECT_NE(runVpagent({}, show).out.find("\\x1B]0;"), std::string::npos);
}

TEST(ControlCharacters, OfAStateFileFromElsewhereReachNoTerminal) {
    TemporaryFolder const folder;
    std::string const path = (folder.path() / "state").string();
    EXPECT_EQ(runVpagent({"--state", path}, "client add a\nrequest a efilter Et1\n").status, 0);
    std::string const good = bytesOf(path);
    for (char const* const change :
         {"UPDATE client SET name = char(27) || ']0;' || char(7)",
          "UPDATE config SET key = char(27) || '[2J'", "UPDATE config SET kind = char(155)",
          "PRAGMA writable_schema = 1; UPDATE sqlite_schema SET name = char(27) || '[2J'"
          " WHERE name = 'boot'",
          "PRAGMA writable_schema = 1; UPDATE sqlite_schema SET sql = 'CREATE TABLE ' || char(27)"
          " WHERE name = 'boot'"}) {
        folder.write("state", good);
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(path.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, change, nullptr, nullptr, nullptr), SQLITE_OK);
        sqlite3_close(connection);
        Outcome const outcome = runVpagent({"--state", path}, "dump\n");
        EXPECT_EQ(outcome.status, 2) << change;
        expectSafe(outcome);
    }
}

} // namespace
} // namespace VpAgentTest
