#include "agent/State.h"

#include <gtest/gtest.h>

#include <string>

namespace VpAgentTest {
namespace {

TEST(Dump, IsTheWholeState) {
    EXPECT_EQ(runVpagent({},
                         "client add bgp\nstart table-size=64\nrequest bgp edge Ethernet1/1:100\n"
                         "call allocVpIndex false\ndump\n")
                  .out,
              R"(8
{"agent": {"running": true, "initialized": true, "tableSize": 64, "reallocation": true, "vfiForwarding": false, "remoteLow": false, "allocators": ["bgp"]}, "pool": {"size": 64, "used": 10, "runs": [[0, 8], [63, 63]]}, "config": {"bgp": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": ["Ethernet1/1:100"], "vlanVport": [], "eFilterDisableVport": []}}, "status": {"bgp": {"vpTableSize": 64, "vpAllocRequests": 1, "vpAllocFailures": 0, "vpFreeRequests": 0, "remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {"Ethernet1/1:100": 63}, "vlanVport": {}, "eFilterDisableVport": {}}}, "references": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {"Ethernet1/1:100": {"vpIndex": 63, "clients": ["bgp"]}}, "vlanVport": {}, "eFilterDisableVport": {}}, "waiting": {"remoteVport": [], "mlagRemoteVport": [], "edgeVport": [], "vlanVport": [], "eFilterDisableVport": []}, "boot": {"remoteVport": {}, "mlagRemoteVport": {}, "edgeVport": {}, "vlanVport": {}, "eFilterDisableVport": {}}}
)");
}

TEST(Dump, IsWrittenWithoutAStateMachineToo) {
    Json const state = stateAfter("start\nstop");
    EXPECT_EQ(state.at("agent").dump(), R"({"running":false})");
    EXPECT_TRUE(state.at("pool").is_null());
}

TEST(Dump, KeepsTheOrderOfCollections) {
    Json const state = stateAfter("client add z\nclient add a\n"
                                  "request z vlan 9\nrequest z vlan 1\nrequest z vlan 5\n"
                                  "withdraw z vlan 9\nrequest z vlan 1\nrequest z vlan 9\n"
                                  "put boot vlan 3 30\nput boot vlan 2 20\nput boot vlan 3 31\n"
                                  "put reference vlan 4 9 z a\n");
    EXPECT_EQ(
        state.at("config").dump(),
        R"({"z":{"remoteVport":[],"mlagRemoteVport":[],"edgeVport":[],"vlanVport":["1","5","9"],)"
        R"("eFilterDisableVport":[]},"a":{"remoteVport":[],"mlagRemoteVport":[],"edgeVport":[],)"
        R"("vlanVport":[],"eFilterDisableVport":[]}})");
    EXPECT_EQ(brief(state.at("boot")), R"({"vlanVport":{"3":31,"2":20}})");
    EXPECT_EQ(brief(state.at("references")),
              R"({"vlanVport":{"4":{"vpIndex":9,"clients":["z","a"]}}})");
}

TEST(Requests, AreKeptWithoutAStateMachine) {
    Json const state = stateAfter("client add a\nrequest a remote 2001:db8::2@17\nrequest a mlag "
                                  "10.0.0.2@17\nrequest a efilter \"port 7\"\nwithdraw a vlan 7");
    EXPECT_EQ(brief(state.at("config").at("a")),
              R"({"remoteVport":["2001:db8::2@17"],"mlagRemoteVport":["10.0.0.2@17"],)"
              R"("eFilterDisableVport":["port 7"]})");
    EXPECT_EQ(brief(state.at("references")), "{}");
}

TEST(Requests, AreServedWhenTheStateMachineStarts) {
    Json const state = stateAfter("client add a\nrequest a vlan 7\nrequest a remote 10.0.0.2@17\n"
                                  "start table-size=64 remote-low=on");
    EXPECT_EQ(brief(state.at("status").at("a")),
              R"({"vpTableSize":64,"vpAllocRequests":2,"vpAllocFailures":0,"vpFreeRequests":0,)"
              R"("remoteVport":{"10.0.0.2@17":8},"vlanVport":{"7":63}})");
}

TEST(Requests, OfTwoClientsShareAnIndex) {
    Json const state = stateAfter("start table-size=64\nclient add a\nclient add b\n"
                                  "request a vlan 7\nrequest b vlan 7\nwithdraw a vlan 7");
    EXPECT_EQ(brief(state.at("references")),
              R"({"vlanVport":{"7":{"vpIndex":63,"clients":["b"]}}})");
    EXPECT_EQ(brief(state.at("status").at("a")),
              R"({"vpTableSize":64,"vpAllocRequests":1,"vpAllocFailures":0,"vpFreeRequests":1})");
}

TEST(ClientRemove, KeepsRecordStatusAndIndices) {
    std::string const removed =
        "start table-size=64\nclient add a\nrequest a vlan 7\nclient remove a\n";
    Json const state = stateAfter(removed);
    EXPECT_EQ(state.at("config").dump(), "{}");
    EXPECT_EQ(state.at("agent").at("allocators").dump(), R"(["a"])");
    EXPECT_EQ(brief(state.at("references")),
              R"({"vlanVport":{"7":{"vpIndex":63,"clients":["a"]}}})");
    EXPECT_EQ(stateAfter(removed + "request a vlan 8\nwithdraw a vlan 7")
                  .at("references")
                  .at("vlanVport")
                  .dump(),
              R"({"8":{"vpIndex":62,"clients":["a"]}})");
}

TEST(ClientAdd, BringsTheSameRecordBack) {
    Json const state = stateAfter("start table-size=64\nclient add a\nclient add b\n"
                                  "request a vlan 7\nclient remove a\nclient add a\n"
                                  "request a vlan 8");
    EXPECT_EQ(state.at("config").dump(),
              R"({"b":{"remoteVport":[],"mlagRemoteVport":[],"edgeVport":[],"vlanVport":[],)"
              R"("eFilterDisableVport":[]},"a":{"remoteVport":[],"mlagRemoteVport":[],)"
              R"("edgeVport":[],"vlanVport":["7","8"],"eFilterDisableVport":[]}})");
    EXPECT_EQ(
        brief(state.at("references")),
        R"({"vlanVport":{"7":{"vpIndex":63,"clients":["a"]},"8":{"vpIndex":62,"clients":["a"]}}})");
}

TEST(ClientRetire, LeavesNothingBehind) {
    EXPECT_EQ(runJson("start table-size=64\nclient add a\nrequest a vlan 7\n"
                      "request a efilter Et1\nclient retire a\n",
                      0, {"--trace", "1"}),
              R"({"trace": 1, "text": "handleInitialized"}
{"trace": 1, "text": "reconcile"}
{"ok": "start", "line": 1}
{"trace": 1, "text": "handleVpIndexConfig, Name a"}
{"trace": 1, "text": "handleInitialized a"}
{"trace": 1, "text": "handleRemoteVport"}
{"trace": 1, "text": "handleMlagRemoteVport"}
{"trace": 1, "text": "handleEdgeVport"}
{"trace": 1, "text": "handleVlanVport"}
{"trace": 1, "text": "handleEFilterDisableVport"}
{"ok": "client", "line": 2}
{"trace": 1, "text": "handleVlanVport vlan: 7"}
{"trace": 1, "text": "handleInvalidVlanVport vlan: 7"}
{"ok": "request", "line": 3}
{"trace": 1, "text": "handleEFilterDisableVport intf: Et1"}
{"trace": 1, "text": "handleInvalidEFilterDisableVport intf: Et1"}
{"ok": "request", "line": 4}
{"trace": 1, "text": "handleVlanVport vlan: 7"}
{"trace": 1, "text": "handleInvalidVlanVport vlan: 7"}
{"trace": 1, "text": "recycleOrFreeVpIndex"}
{"trace": 1, "text": "handleEFilterDisableVport intf: Et1"}
{"trace": 1, "text": "handleInvalidEFilterDisableVport intf: Et1"}
{"trace": 1, "text": "recycleOrFreeVpIndex"}
{"trace": 1, "text": "handleVpIndexConfig, Name a"}
{"trace": 1, "text": "handleVpIndexConfig, Name a ignore deletes"}
{"ok": "client", "line": 5}
)");
    Json const state =
        stateAfter("start table-size=64\nclient add a\nrequest a vlan 7\nclient retire a");
    EXPECT_EQ(state.at("agent").at("allocators").dump(), "[]");
    EXPECT_EQ(state.at("pool").at("used"), 8);
    EXPECT_EQ(state.at("config").dump(), "{}");
    EXPECT_EQ(state.at("status").dump(), "{}");
    EXPECT_EQ(brief(state.at("references")), "{}");
}

TEST(ClientRetire, TakesAClientThatWasRemoved) {
    Json const state = stateAfter("start table-size=64\nclient add a\nrequest a vlan 7\n"
                                  "client remove a\nclient retire a\nclient add a");
    EXPECT_EQ(brief(state.at("config").at("a")), "{}");
    EXPECT_EQ(brief(state.at("status").at("a")),
              R"({"vpTableSize":64,"vpAllocRequests":0,"vpAllocFailures":0,"vpFreeRequests":0})");
    EXPECT_EQ(state.at("agent").at("allocators").dump(), R"(["a"])");
}

TEST(PutAndDrop, WriteEveryRecordOfEveryKind) {
    std::string const put = "client add a\n"
                            "put reference remote 10.0.0.2@1 9 a\nput reference mlag ::1@2 10\n"
                            "put reference edge Et1:3 11 a b\nput reference vlan 4 12\n"
                            "put reference efilter Et5 65535 b\n"
                            "put status a remote 10.0.0.2@1 9\nput status a efilter Et5 0\n"
                            "put waiting edge Et1:3\nput waiting vlan 4\n"
                            "put boot mlag ::1@2 7\nput boot edge Et1:3 65535\n";
    Json const state = stateAfter(put);
    EXPECT_EQ(brief(state.at("references")),
              R"({"remoteVport":{"10.0.0.2@1":{"vpIndex":9,"clients":["a"]}},)"
              R"("mlagRemoteVport":{"::1@2":{"vpIndex":10,"clients":[]}},)"
              R"("edgeVport":{"Et1:3":{"vpIndex":11,"clients":["a","b"]}},)"
              R"("vlanVport":{"4":{"vpIndex":12,"clients":[]}},)"
              R"("eFilterDisableVport":{"Et5":{"vpIndex":65535,"clients":["b"]}}})");
    EXPECT_EQ(brief(state.at("status").at("a")),
              R"({"vpTableSize":0,"vpAllocRequests":0,"vpAllocFailures":0,"vpFreeRequests":0,)"
              R"("remoteVport":{"10.0.0.2@1":9},"eFilterDisableVport":{"Et5":0}})");
    EXPECT_EQ(brief(state.at("waiting")), R"({"edgeVport":["Et1:3"],"vlanVport":["4"]})");
    EXPECT_EQ(brief(state.at("boot")),
              R"({"mlagRemoteVport":{"::1@2":7},"edgeVport":{"Et1:3":65535}})");

    Json const dropped = stateAfter(put + "drop reference edge Et1:3\ndrop reference vlan 99\n"
                                          "drop status a remote 10.0.0.2@1\ndrop waiting vlan 4\n"
                                          "drop boot mlag ::1@2\n");
    EXPECT_FALSE(dropped.at("references").at("edgeVport").contains("Et1:3"));
    EXPECT_EQ(dropped.at("status").at("a").at("remoteVport").dump(), "{}");
    EXPECT_EQ(brief(dropped.at("waiting")), R"({"edgeVport":["Et1:3"]})");
    EXPECT_EQ(brief(dropped.at("boot")), R"({"edgeVport":{"Et1:3":65535}})");

    Json const cleared = stateAfter(put + "clear references\nclear waiting\nclear boot\n");
    EXPECT_EQ(brief(cleared.at("references")), "{}");
    EXPECT_EQ(brief(cleared.at("waiting")), "{}");
    EXPECT_EQ(brief(cleared.at("boot")), "{}");
}

TEST(SaveBoot, CopiesTheValidIndicesInTheirOrder) {
    EXPECT_EQ(brief(stateAfter("put reference vlan 9 20\nput reference vlan 3 21\n"
                               "put reference vlan 5 65535\nput reference edge Et1:1 0\n"
                               "put boot vlan 3 1\nput boot efilter Et9 30\nsave-boot")
                        .at("boot")),
              R"({"edgeVport":{"Et1:1":0},"vlanVport":{"9":20,"3":21}})");
}

TEST(Start, RecoversWhatWasSavedBeforeGoingDown) {
    Json const state = stateAfter("start table-size=64\nclient add a\nrequest a vlan 7\n"
                                  "request a vlan 8\nwithdraw a vlan 7\nsave-boot\nstop\n"
                                  "clear references\nstart table-size=64");
    EXPECT_EQ(brief(state.at("references")),
              R"({"vlanVport":{"8":{"vpIndex":62,"clients":["a"]}}})");
}

TEST(Restart, KeepsTheSettingsOfTheLastStart) {
    std::string const script = "start table-size=64 reallocation=off remote-low=on\n"
                               "restart vfi-forwarding=on\nrestart table-size=32";
    EXPECT_EQ(stateAfter(script).at("agent").dump(),
              R"({"running":true,"initialized":true,"tableSize":32,"reallocation":false,)"
              R"("vfiForwarding":true,"remoteLow":true,"allocators":[]})");
    EXPECT_EQ(stateAfter(script + "\nstop\nstart").at("agent").at("tableSize"), 16384);
}

TEST(ClearStale, ReleasesWhatNobodyClaims) {
    Json const state =
        stateAfter("put reference vlan 7 20\nput reference vlan 8 21 a\n"
                   "client add b\nrequest b vlan 8\nstart table-size=64\nclear-stale");
    EXPECT_EQ(brief(state.at("references")),
              R"({"vlanVport":{"8":{"vpIndex":21,"clients":["b"]}}})");
    EXPECT_EQ(state.at("pool").dump(), R"({"size":64,"used":9,"runs":[[0,7],[21,21]]})");
}

TEST(Call, TakesKeysAsTheirTexts) {
    EXPECT_EQ(runJson("client add a\nstart table-size=64\nrequest a edge \"port 1:7\"\n"
                      "call-client a handleEdgeVport \"port 1:7\"\n"
                      "call handleInvalidEdgeVport \"port 1:7\"\ncall handleVpIndexConfig a\n"
                      "call isDefaultVp 0\ncall allocVpIndex true\n"),
              R"({"ok": "client", "line": 1}
{"ok": "start", "line": 2}
{"ok": "request", "line": 3}
{"ok": "call-client", "line": 4}
{"ok": "call", "line": 5}
{"ok": "call", "line": 6}
{"ok": "call", "line": 7, "result": false}
{"ok": "call", "line": 8, "result": 62}
)");
}

TEST(Commands, AreRefusedForAnUnknownClient) {
    std::string const known = "client add a\nstart table-size=64\n";
    for (char const* const command :
         {"client remove b", "client retire b", "request b vlan 1", "withdraw b vlan 1",
          "put status b vlan 1 8", "drop status b vlan 1", "show clients b"}) {
        EXPECT_EQ(errorOf(known, command).substr(0, 57),
                  "no client \"b\", expected one that 'client add' or 'import'")
            << command;
    }
    EXPECT_EQ(errorOf(known, "call-client b verify"),
              "no allocator for the client \"b\", expected a client that the state machine serves "
              "(column 13)");
}

TEST(Commands, AreRefusedWhenTheStateMachineIsNotRunning) {
    for (char const* const command : {"stop", "restart", "call isDefaultVp 1",
                                      "call-client a verify", "clear-stale", "verify"}) {
        EXPECT_EQ(errorOf("client add a\n", command),
                  "the state machine is not running, expected 'start' before (column 1)")
            << command;
    }
}

TEST(Commands, AreRefusedWithoutEffect) {
    std::string const before = "client add a\nstart table-size=64\nrequest a vlan 7\n";
    EXPECT_EQ(errorOf(before, "start"),
              "the state machine is running already, expected 'restart' or 'stop' (column 1)");
    for (char const* const command : {"restart table-size=65536",
                                      "restart table-size=-1",
                                      "restart table-size=",
                                      "restart reallocation=maybe",
                                      "restart table-size=9 table-size=9",
                                      "restart size=9",
                                      "restart table-size",
                                      "restart =",
                                      "client add a",
                                      "client add \"\"",
                                      "request a vlan 4095",
                                      "put boot vlan 1 65536",
                                      "put status a vlan 7",
                                      "put reference vlan 7 1 \"\"",
                                      "drop reference vlan 7 8",
                                      "clear config",
                                      "clear",
                                      "client retire a b",
                                      "dump x",
                                      "call nonsense",
                                      "call isDefaultVp",
                                      "call isDefaultVp 1 2",
                                      "call isDefaultVp x",
                                      "call isDefaultVp 4294967296",
                                      "call allocVpIndex 1",
                                      "call-client a handleVlanVport x",
                                      "call-client a nonsense",
                                      "call-client a",
                                      "show nonsense",
                                      "show ring a",
                                      "echo",
                                      "help nonsense",
                                      "help client nonsense",
                                      "help client add a",
                                      "help request a",
                                      "help show \"\"",
                                      "import",
                                      "import /nonexistent/file.json"}) {
        EXPECT_NE(errorOf(before, command), "no error") << command;
    }
    EXPECT_EQ(errorOf(before + "client remove a\n", "client remove a"),
              "client \"a\" is removed already, expected one that is not (column 15)");
}

TEST(Help, TakesBothWordsOfACommand) {
    EXPECT_EQ(runVpagent({}, "help client add\n").out,
              "client add NAME\n    makes a client, or brings one back that was removed\n");
    EXPECT_EQ(runVpagent({}, "help show ring\n").out.substr(0, 10), "show ring ");
    EXPECT_EQ(errorOf("", "help client nonsense"),
              "unknown command \"client nonsense\", expected client add, client remove or client "
              "retire (column 13)");
    EXPECT_EQ(errorOf("", "help client add a"),
              "\"a\" is one word too many, expected help [COMMAND] (column 17)");
}

TEST(Help, SaysThatANameWithANumberSignNeedsQuotes) {
    std::string const help = runVpagent({}, "help\n").out;
    EXPECT_NE(help.find("A word with blanks or a # stands in double quotes"), std::string::npos);
    EXPECT_EQ(runJson("echo Po#7\necho \"Po#7\"\n"),
              "{\"ok\": \"echo\", \"line\": 1, \"text\": \"Po\"}\n"
              "{\"ok\": \"echo\", \"line\": 2, \"text\": \"Po#7\"}\n");
}

TEST(Show, TakesEveryView) {
    std::string const script =
        "client add a\nstart table-size=9\nrequest a vlan 7\nrequest a vlan 8\n";
    for (char const* const view :
         {"", "table", "clients", "clients a", "references", "references a", "waiting", "waiting a",
          "counters", "counters a", "log"}) {
        std::string const out = runJson(script + "show " + view + "\n");
        std::string const last = out.substr(out.rfind('\n', out.size() - 2) + 1);
        Json const reply = Json::parse(last);
        EXPECT_EQ(reply.at("ok"), "show");
        EXPECT_GT(reply.at("text").get<std::string>().size(), 10u) << view;
    }
}

TEST(Show, SaysWhoHoldsWhatAndWhoWaits) {
    Outcome const outcome = runVpagent(
        {}, "client add a\nclient add b\nstart table-size=10\nrequest a vlan 7\n"
            "request b vlan 7\nrequest a edge Et1:1\nrequest a edge Et1:2\n"
            "request b vlan 8\nshow table\nshow references\nshow waiting\nshow clients a\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, R"(VP TABLE
  reallocation on, VFI forwarding off, remote VTEPs from the high end
  10 entries, 10 in use (100.0 %, the system's 8 among them), 0 free
  |##########|  # all in use, + half or more, - less, . none
   0        9
  in use: 0-9
  KIND     REFERENCES  INDICES  WITHOUT INDEX
  remote            0        0              0
  mlag              0        0              0
  edge              2        1              1
  vlan              2        1              1
  efilter           0        0              0
REFERENCES
  KIND  REFERENCES  HELD BY
  edge           2  a
  vlan           1  a, b
  vlan           1  b
  INDEX  KIND  KEY    HELD BY
      8  edge  Et1:1  a
      -  edge  Et1:2  a
      9  vlan  7      a, b
      -  vlan  8      b
WAITING FOR AN INDEX, the next to be served first
     KIND  KEY    FOR
  1  vlan  8      b
  2  edge  Et1:2  a
REQUESTS OF CLIENT a
  KIND  KEY    INDEX
  edge  Et1:1      8
  edge  Et1:2      -  without index
  vlan  7          9
)");
}

} // namespace
} // namespace VpAgentTest
