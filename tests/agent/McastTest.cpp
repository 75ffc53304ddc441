// The commands of the multicast entities: what they report, and in which order.

#include "agent/State.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

TEST(Mcast, ReportsEachNotificationBeforeItsCommandIsDone) {
    EXPECT_EQ(runJson(R"(mcast create
mcast higig 1 Ethernet2 Ethernet1
mcast higig 2
mcast higig 1 "port, 7"
mcast higig-del 1
mcast backplane Bp1
mcast backplane
mcast install one
mcast install two
mcast remove
)"),
              R"({"ok": "mcast", "line": 1}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": null, "value": ["Ethernet1", "Ethernet2"]}
{"ok": "mcast", "line": 2}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 2, "previous": null, "value": []}
{"ok": "mcast", "line": 3}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": ["Ethernet1", "Ethernet2"], "value": ["port, 7"]}
{"ok": "mcast", "line": 4}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": ["port, 7"], "value": null}
{"ok": "mcast", "line": 5}
{"notification": "l3/mcast/higig/allowedBackplaneIntf", "field": 258, "attribute": "intfs", "previous": [], "value": ["Bp1"]}
{"ok": "mcast", "line": 6}
{"notification": "l3/mcast/higig/allowedBackplaneIntf", "field": 258, "attribute": "intfs", "previous": ["Bp1"], "value": []}
{"ok": "mcast", "line": 7}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": null, "value": "one"}
{"ok": "mcast", "line": 8}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": "one", "value": "two"}
{"released": "one"}
{"ok": "mcast", "line": 9}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": "two", "value": null}
{"released": "two"}
{"ok": "mcast", "line": 10}
)");
}

TEST(Mcast, ReportsEventsToPeopleAsLines) {
    EXPECT_EQ(runVpagent({}, R"(mcast create
mcast higig 255 Ethernet2 "port, 7"
mcast higig-del 255
mcast backplane Bp1
mcast install "group api"
mcast update 7 true
mcast update 8 false
mcast update-all
mcast remove
)")
                  .out,
              R"(l3/mcast/higig/hwStatus: 258 higigIntfs[255]: none -> [Ethernet2, "port, 7"]
l3/mcast/higig/hwStatus: 258 higigIntfs[255]: [Ethernet2, "port, 7"] -> none
l3/mcast/higig/allowedBackplaneIntf: 258 intfs: [] -> [Bp1]
l3McastGroupApi: 258 l3McastGroupApi: none -> group api
group api: updateL2Bitmaps(7, true)
group api: updateL2Bitmaps(8, false)
group api: updateAllL2Bitmaps()
l3McastGroupApi: 258 l3McastGroupApi: group api -> none
group api: released
)");
}

TEST(Mcast, CallsTheInstalledGroupApi) {
    EXPECT_EQ(runJson("mcast create\nmcast install one\nmcast update 7 true\n"
                      "mcast update 0 false\nmcast update-all\n"
                      "call holder/l3McastGroupApi/updateL2Bitmaps 9 true\n"),
              R"({"ok": "mcast", "line": 1}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": null, "value": "one"}
{"ok": "mcast", "line": 2}
{"called": "one", "operation": "updateL2Bitmaps", "fapId": 7, "post": true}
{"ok": "mcast", "line": 3}
{"called": "one", "operation": "updateL2Bitmaps", "fapId": 0, "post": false}
{"ok": "mcast", "line": 4}
{"called": "one", "operation": "updateAllL2Bitmaps"}
{"ok": "mcast", "line": 5}
{"called": "one", "operation": "updateL2Bitmaps", "fapId": 9, "post": true}
{"ok": "call", "line": 6}
)");
}

TEST(Mcast, ReportsNothingWhereNothingChanges) {
    EXPECT_EQ(runJson("mcast create\nmcast higig 1 a b\nmcast higig 1 b a\nmcast higig-del 2\n"
                      "mcast backplane\nmcast remove\nmcast install one\nmcast install one\n"),
              R"({"ok": "mcast", "line": 1}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": null, "value": ["a", "b"]}
{"ok": "mcast", "line": 2}
{"ok": "mcast", "line": 3}
{"ok": "mcast", "line": 4}
{"ok": "mcast", "line": 5}
{"ok": "mcast", "line": 6}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": null, "value": "one"}
{"ok": "mcast", "line": 7}
{"ok": "mcast", "line": 8}
)");
}

TEST(Mcast, ClearsChipByChip) {
    EXPECT_EQ(runJson("mcast create\nmcast higig 9 a\nmcast higig 3\nmcast higig-clear\n"
                      "mcast higig-clear\n"),
              R"({"ok": "mcast", "line": 1}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 9, "previous": null, "value": ["a"]}
{"ok": "mcast", "line": 2}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 3, "previous": null, "value": []}
{"ok": "mcast", "line": 3}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 9, "previous": ["a"], "value": null}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 3, "previous": [], "value": null}
{"ok": "mcast", "line": 4}
{"ok": "mcast", "line": 5}
)");
}

TEST(Mcast, LetsTheGroupApiGoWithItsHolderAndStartsAnew) {
    EXPECT_EQ(runJson("mcast create\nmcast higig 1 a\nmcast install one\nmcast destroy\n"
                      "mcast show\nmcast create\nmcast show\nmcast install one\n"),
              R"({"ok": "mcast", "line": 1}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": null, "value": ["a"]}
{"ok": "mcast", "line": 2}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": null, "value": "one"}
{"ok": "mcast", "line": 3}
{"released": "one"}
{"ok": "mcast", "line": 4}
{"ok": "mcast", "line": 5, "multicast": null}
{"ok": "mcast", "line": 6}
{"ok": "mcast", "line": 7, "multicast": {"l3McastGroupApi": null, "higigIntfs": {}, "intfs": [], "l3IpmcLocalDb": {"allowedBackplaneIntf": "backplane", "hwHigigIntfs": "higig"}}}
{"notification": "l3McastGroupApi", "field": 258, "attribute": "l3McastGroupApi", "previous": null, "value": "one"}
{"ok": "mcast", "line": 8}
)");
}

std::string const filled = "mcast create\nmcast higig 12 Ethernet2 Ethernet1\nmcast higig 3\n"
                           "mcast backplane Bp1 Bp2\nmcast install one\n";

/// The last line of the output of a script.
std::string lastLine(std::string const& out) {
    return out.substr(out.rfind('\n', out.size() - 2) + 1); // npos + 1 is 0
}

TEST(Mcast, ShowsTheEntitiesAsJson) {
    EXPECT_EQ(lastLine(runJson(filled + "mcast show\n")),
              R"({"ok": "mcast", "line": 6, "multicast": {"l3McastGroupApi": "one", )"
              R"("higigIntfs": {"12": ["Ethernet1", "Ethernet2"], "3": []}, )"
              R"("intfs": ["Bp1", "Bp2"], "l3IpmcLocalDb": )"
              R"({"allowedBackplaneIntf": "backplane", "hwHigigIntfs": "higig"}}})"
              "\n");
}

TEST(Mcast, ShowsTheEntitiesToPeople) {
    std::string const out = runVpagent({}, filled + "mcast show\n").out;
    EXPECT_EQ(out.substr(out.find("MULTICAST")), R"(MULTICAST, in memory only
  SHARED AS                            HOLDS
  l3McastGroupApi                      one
  l3/mcast/higig/allowedBackplaneIntf  [Bp1, Bp2]
  l3/mcast/higig/hwStatus              2 chips
  FAP  HIGIG INTERFACES
   12  [Ethernet1, Ethernet2]
    3  []
  the local database refers to backplane and higig
)");
    EXPECT_EQ(runVpagent({}, "mcast create\nmcast show\n").out, R"(MULTICAST, in memory only
  SHARED AS                            HOLDS
  l3McastGroupApi                      no group API
  l3/mcast/higig/allowedBackplaneIntf  []
  l3/mcast/higig/hwStatus              0 chips
  the local database refers to backplane and higig
)");
    EXPECT_EQ(runVpagent({}, "mcast show\n").out,
              "MULTICAST, in memory only\n  none: 'mcast create' makes it\n");
}

using Texts = std::vector<std::string>;

/// The errors of commands behind a script; each must leave the entities as they were, and report
/// nothing else.
Texts errorsOf(std::string const& before, Texts const& commands) {
    std::string script = before + "mcast show\n";
    for (std::string const& command : commands) {
        script += command + "\nmcast show\n";
    }
    std::string const out = runJson(script, 2, {"--keep-going"});
    std::vector<Json> lines;
    for (std::size_t at = 0; at < out.size(); at = out.find('\n', at) + 1) {
        lines.push_back(Json::parse(out.substr(at, out.find('\n', at) - at)));
    }
    std::size_t at = lines.size() - 2 * commands.size() - 1;
    Json const shown = lines.at(at).at("multicast");
    Texts errors;
    while (++at < lines.size()) {
        errors.push_back(lines[at].value("error", "no error"));
        EXPECT_EQ(lines[++at].at("multicast"), shown) << errors.back();
    }
    return errors;
}

TEST(Mcast, IsRefusedWhileThereAreNoEntities) {
    std::string const why = "there are no multicast entities, expected 'mcast create' before ";
    Texts expected(9, why + "(column 1)");
    expected.push_back(why + "(column 9)");
    EXPECT_EQ(
        errorsOf("", {"mcast destroy", "mcast higig 1 a", "mcast higig-del 1", "mcast higig-clear",
                      "mcast backplane a", "mcast install one", "mcast remove",
                      "mcast update 1 true", "mcast update-all", "inspect higig"}),
        expected);
}

TEST(Mcast, IsRefusedTwiceAndWithoutAGroupApi) {
    EXPECT_EQ(
        errorsOf("mcast create\n", {"mcast create", "mcast update 1 true", "mcast update-all"}),
        (Texts{"the multicast entities are there already, expected 'mcast destroy' before "
               "(column 1)",
               "no group API is installed, expected 'mcast install' before (column 1)",
               "no group API is installed, expected 'mcast install' before (column 1)"}));
}

TEST(Mcast, IsRefusedForBadWords) {
    EXPECT_EQ(
        errorsOf(filled, {"mcast higig 256 a", "mcast higig", "mcast higig 1 a \"\"",
                          "mcast higig-del", "mcast higig-del 12 a", "mcast backplane \"\"",
                          "mcast install \"\"", "mcast install", "mcast update 1",
                          "mcast update x true", "mcast update 1 yes", "mcast nothing"}),
        (Texts{"bad chip \"256\", expected a number from 0 to 255 (column 15)",
               "a word is missing, expected mcast higig FAP [INTF...] (column 12)",
               "bad interface \"\", expected an interface name (column 17)",
               "a word is missing, expected mcast higig-del FAP (column 16)",
               "\"a\" is one word too many, expected mcast higig-del FAP (column 20)",
               "bad interface \"\", expected an interface name (column 17)",
               "bad name \"\", expected a name of 1 to 255 bytes (column 15)",
               "a word is missing, expected mcast install NAME (column 14)",
               "a word is missing, expected mcast update FAP true|false (column 15)",
               "bad chip \"x\", expected a number from 0 to 255 (column 14)",
               "bad value \"yes\", expected true or false (column 16)",
               "unknown command \"mcast nothing\", expected mcast create, mcast higig, "
               "mcast higig-del, mcast higig-clear, mcast backplane, mcast install, mcast remove, "
               "mcast update, mcast update-all, mcast show or mcast destroy (column 7)"}));
}

TEST(Mcast, CanBeInspected) {
    EXPECT_EQ(lastLine(runJson(filled + "inspect ipmc/allowedBackplaneIntf\n")),
              R"({"ok": "inspect", "line": 6, "object": {"path": "ipmc/allowedBackplaneIntf", )"
              R"("type": "VornicL3::BumAllowedBackplaneIntf", "constant": true, "attributes": [)"
              R"({"number": 154, "name": "nameString", "type": "Pelo::String", )"
              R"("value": "backplane"}, {"number": 258, "name": "intfs", )"
              R"("type": "Interface::IntfSet", "value": "[Bp1, Bp2]"}, )"
              R"({"number": 259, "name": "path", "type": "Pelo::String", )"
              R"("value": "l3/mcast/higig/allowedBackplaneIntf"}], )"
              R"("collections": [], "operations": []}})"
              "\n");
    std::string const out = runVpagent({}, filled + R"(inspect higig/higigIntfs/12
inspect backplane/path
inspect holder/sharedEntityName
)")
                                .out;
    EXPECT_EQ(out.substr(out.find("higig/higigIntfs/12")),
              R"(higig/higigIntfs/12: Interface::IntfSet
  [Ethernet1, Ethernet2]
backplane/path: Pelo::String
  l3/mcast/higig/allowedBackplaneIntf
holder/sharedEntityName: Pelo::String
  l3McastGroupApi
)");
}

TEST(Mcast, IsKeptByNoStateFile) {
    TemporaryFolder const folder;
    std::vector<std::string> const options{"--state", (folder.path() / "state").string()};
    EXPECT_EQ(runJson("begin\nmcast create\nmcast higig 1 a\ncommit\nclient add x\n", 0, options),
              R"({"ok": "begin", "line": 1}
{"ok": "mcast", "line": 2, "pending": true}
{"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs", "key": 1, "previous": null, "value": ["a"]}
{"ok": "mcast", "line": 3, "pending": true}
{"ok": "commit", "line": 4}
{"ok": "client", "line": 5}
)");
    EXPECT_EQ(runJson("mcast show\n", 0, options),
              "{\"ok\": \"mcast\", \"line\": 1, \"multicast\": null}\n");
}

} // namespace
} // namespace VpAgentTest
