#include "agent/State.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <iostream>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

TEST(ImportCommand, MakesTheClientAndItsRequests) {
    TemporaryFolder const folder;
    std::string const file = folder.write(
        "leaf.7.json", R"({"VLAN_MEMBER": {"Vlan100|Ethernet0": {}, "Vlan5|Ethernet0": {}},
                           "MCLAG_DOMAIN": {"1": {"peer_ip": "10.0.0.9", "peer_link": "Et9"}}})");
    EXPECT_EQ(
        runJson("import " + file + "\nimport " + file + " other\n"),
        R"({"ok": "import", "line": 1, "client": "leaf.7", "requests": {"remoteVport": 0, "mlagRemoteVport": 1, "edgeVport": 2, "vlanVport": 0, "eFilterDisableVport": 1}}
{"ok": "import", "line": 2, "client": "other", "requests": {"remoteVport": 0, "mlagRemoteVport": 1, "edgeVport": 2, "vlanVport": 0, "eFilterDisableVport": 1}}
)");
    Json const state = stateAfter("start table-size=64\nimport " + file + " a");
    EXPECT_EQ(brief(state.at("references")),
              R"({"mlagRemoteVport":{"10.0.0.9@1":{"vpIndex":63,"clients":["a"]}},)"
              R"("edgeVport":{"Ethernet0:100":{"vpIndex":62,"clients":["a"]},)"
              R"("Ethernet0:5":{"vpIndex":61,"clients":["a"]}},)"
              R"("eFilterDisableVport":{"Et9":{"vpIndex":60,"clients":["a"]}}})");
}

TEST(ImportCommand, AddsToAClientThatIsThere) {
    TemporaryFolder const folder;
    std::string const file = folder.write("x.json", R"({"VLAN_MEMBER|Vlan7|Et1": {}})");
    EXPECT_EQ(brief(stateAfter("client add a\nrequest a vlan 3\nimport " + file + " a")
                        .at("config")
                        .at("a")),
              R"({"edgeVport":["Et1:7"],"vlanVport":["3"]})");
    EXPECT_EQ(
        brief(stateAfter("client add a\nrequest a vlan 3\nclient remove a\nimport " + file + " a")
                  .at("config")
                  .at("a")),
        R"({"edgeVport":["Et1:7"],"vlanVport":["3"]})");
}

TEST(ImportCommand, DoesAllOrNothing) {
    TemporaryFolder const folder;
    std::string const file =
        folder.write("x.json", R"({"VLAN_MEMBER": {"Vlan7|Et1": {}, "Vlan0|Et1": {}}})");
    EXPECT_EQ(runJson("client add a\nimport " + file + " a\nimport " + file + "\ndump\n", 2,
                      {"--keep-going"}),
              R"json({"ok": "client", "line": 1}
{"error": "VLAN_MEMBER|Vlan0|Et1: VLAN \"Vlan0\", expected Vlan1 to Vlan4094 (column 8)", "line": 2}
{"error": "VLAN_MEMBER|Vlan0|Et1: VLAN \"Vlan0\", expected Vlan1 to Vlan4094 (column 8)", "line": 3}
{"ok": "dump", "line": 4, "state": {"agent": {"running": false}, "pool": null, "config": {"a": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], "vlanVport": [], "eFilterDisableVport": []}}, "status": {"a": {"vpTableSize": 0, "vpAllocRequests": 0, "vpAllocFailures": 0, "vpFreeRequests": 0, "remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}}, "references": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}, "waiting": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], "vlanVport": [], "eFilterDisableVport": []}, "boot": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}}}
)json");
}

TEST(ImportCommand, RefusesAVniThatCountsRemoteVtepsAndDoesNotListThem) {
    TemporaryFolder const folder;
    for (auto const& [content, where] : std::vector<std::pair<std::string, std::string>>{
             {R"({"vni": 101, "numRemoteVteps": 3})", ""},
             {R"([{"vni": 101, "numRemoteVteps": 3}])", "[0]: "},
             {R"({"101": {"vni": 101, "numRemoteVteps": 3}})", R"(\"101\": )"},
             {R"({"7": {"vni": 7, "numRemoteVteps": 0}, "101": {"vni": 101, "numRemoteVteps": 3}})",
              R"(\"101\": )"}}) {
        EXPECT_EQ(runJson("import " + folder.write("x.json", content) + " a\ndump\n", 2),
                  "{\"error\": \"" + where +
                      "VNI: numRemoteVteps 3 without remoteVteps, expected the list of them "
                      "(column 8)\", \"line\": 1}\n");
    }
    for (char const* const none : {"0", "\"n/a\""}) {
        std::string const vni = std::string(R"({"vni": 101, "numRemoteVteps": )") + none + '}';
        for (std::string const& content : {vni, "{\"101\": " + vni + '}'}) {
            std::string const file = folder.write("x.json", content);
            EXPECT_EQ(runVpagent({}, "import " + file + " a\n").out,
                      "import: client a: nothing to request\n");
        }
    }
}

TEST(ImportCommand, RefusesTheStateFileItself) {
    namespace fs = std::filesystem;
    TemporaryFolder const folder;
    auto const path = [&](char const* name) { return (folder.path() / name).string(); };
    folder.write("state", "");
    fs::create_symlink("state", path("link"));
    fs::create_hard_link(path("state"), path("hard"));
    folder.write("other", "{}");
    std::string script = "client add a\n";
    std::string expected = R"({"ok": "client", "line": 1})"
                           "\n";
    int line = 1;
    for (char const* const name :
         {"state", "link", "hard", "state-wal", "state-journal", "state-shm", "../state-wal"}) {
        std::string const file =
            name[0] == '.'
                ? (folder.path() / "." / ".." / folder.path().filename() / (name + 3)).string()
                : path(name);
        script += "import " + file + " x\n";
        expected += "{\"error\": \"cannot read \\\"" + file +
                    "\\\" (it belongs to the state file in use), expected a readable file "
                    "(column 8)\", \"line\": " +
                    std::to_string(++line) + "}\n";
    }
    EXPECT_EQ(runJson(script, 2, {"--keep-going", "--state", path("state")}), expected);
    EXPECT_EQ(
        runJson("import " + path("other") + "\n", 0, {"--state", path("state")}).substr(0, 15),
        R"({"ok": "import")");
}

TEST(ImportCommand, RefusesAFileThatOpensButCannotBeRead) {
    EXPECT_EQ(
        runJson("import /proc/self/mem z\nimport / z\necho on\n", 2, {"--keep-going"}),
        R"json({"error": "cannot read \"/proc/self/mem\" (Input/output error), expected a readable file (column 8)", "line": 1}
{"error": "\"/\" is a folder, expected a file (column 8)", "line": 2}
{"ok": "echo", "line": 3, "text": "on"}
)json");
}

/// Files that real network operating systems wrote, where they are at hand: they lie beside the
/// project.
class RealFile : public testing::Test {
protected:
    static std::filesystem::path folder() {
        return std::filesystem::path(Support::sourceFolder()) / ".." / "shared" / "data";
    }

    /// The line that imports a file prints, and the requests of the client that it makes.
    static std::string imported(std::string const& file, std::string const& client) {
        std::string const command = "import " + (folder() / file).string() + "\n";
        std::string const line = runJson(command);
        return line + brief(stateAfter(command).at("config").at(client));
    }

    /// False, with a word, when the files are not there.
    static bool atHand() {
        bool const there = std::filesystem::exists(folder());
        if (!there) {
            std::cout << "no files of real systems beside the project, nothing imported\n";
        }
        return there;
    }
};

TEST_F(RealFile, OfALeafWithPortChannels) {
    if (!atHand()) {
        return;
    }
    EXPECT_EQ(
        imported("config_db/leaf-a.json", "leaf-a"),
        R"({"ok": "import", "line": 1, "client": "leaf-a", "requests": {"remoteVport": 0, "mlagRemoteVport": 0, "edgeVport": 7, "vlanVport": 4, "eFilterDisableVport": 0}}
{"edgeVport":["Ethernet4:1000","Ethernet8:1000","Ethernet12:1000","Ethernet16:1000","Ethernet24:2000","Ethernet28:2000","PortChannel1001:4000"],"vlanVport":["100","101","102","200"]})");
}

TEST_F(RealFile, OfALeafWithBackplanePorts) {
    if (!atHand()) {
        return;
    }
    EXPECT_EQ(
        imported("config_db/leaf-b.json", "leaf-b"),
        R"({"ok": "import", "line": 1, "client": "leaf-b", "requests": {"remoteVport": 0, "mlagRemoteVport": 0, "edgeVport": 4, "vlanVport": 2, "eFilterDisableVport": 0}}
{"edgeVport":["Ethernet4:1000","Ethernet16:1000","PortChannel1002:1000","Ethernet0:2000"],"vlanVport":["100","200"]})");
}

TEST_F(RealFile, WithNestedTables) {
    if (!atHand()) {
        return;
    }
    EXPECT_EQ(
        imported("config_db/nested-tables.json", "nested-tables"),
        R"({"ok": "import", "line": 1, "client": "nested-tables", "requests": {"remoteVport": 0, "mlagRemoteVport": 0, "edgeVport": 19, "vlanVport": 0, "eFilterDisableVport": 0}}
{"edgeVport":["Ethernet12:1000","Ethernet16:1000","Ethernet20:1000","Ethernet24:1000","Ethernet28:1000","Ethernet32:1000","Ethernet36:1000","Ethernet40:1000","Ethernet44:1000","Ethernet48:1000","Ethernet52:1000","Ethernet56:1000","Ethernet60:1000","Ethernet64:1000","Ethernet68:1000","Ethernet72:1000","Ethernet76:1000","Ethernet4:2000","Ethernet8:2000"]})");
}

TEST_F(RealFile, OfVnisWithOneRemoteVtep) {
    if (!atHand()) {
        return;
    }
    std::string const counts =
        R"("requests": {"remoteVport": 1, "mlagRemoteVport": 0, "edgeVport": 0, "vlanVport": 0, "eFilterDisableVport": 0}})";
    EXPECT_EQ(imported("evpn_vni/vni-1.json", "vni-1"),
              R"({"ok": "import", "line": 1, "client": "vni-1", )" + counts +
                  "\n{\"remoteVport\":[\"10.30.30.30@101\"]}");
    EXPECT_EQ(imported("evpn_vni/vni-2.json", "vni-2"),
              R"({"ok": "import", "line": 1, "client": "vni-2", )" + counts +
                  "\n{\"remoteVport\":[\"10:10:10::10@101\"]}");
    EXPECT_EQ(imported("evpn_vni/vni-3.json", "vni-3"),
              R"({"ok": "import", "line": 1, "client": "vni-3", )" + counts +
                  "\n{\"remoteVport\":[\"10.30.30.30@101\"]}");
}

TEST_F(RealFile, IsKnownToTheseTests) {
    if (!atHand()) {
        return;
    }
    std::set<std::string> files;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder())) {
        if (entry.path().extension() == ".json") {
            files.insert(entry.path().filename());
        }
    }
    EXPECT_EQ(files, (std::set<std::string>{"leaf-a.json", "leaf-b.json", "nested-tables.json",
                                            "vni-1.json", "vni-2.json", "vni-3.json"}));
}

} // namespace
} // namespace VpAgentTest
