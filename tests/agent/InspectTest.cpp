#include "agent/State.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

std::string const setUp = "client add bgp\nstart table-size=64\nrequest bgp vlan 7\n"
                          "request bgp remote 10.0.0.2@17/1/2\nrequest bgp edge Ethernet1/1:100\n";

/// What `inspect` with these arguments prints for people behind `setUp`.
std::string textOf(std::string const& arguments) {
    Outcome const outcome = runVpagent({}, setUp + "inspect " + arguments + "\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

/// The same as one JSON object on a line.
std::string jsonOf(std::string const& arguments) {
    std::string const out = runJson(setUp + "inspect " + arguments + "\n");
    return out.substr(out.rfind('\n', out.size() - 2) + 1);
}

TEST(Inspect, ListsModulesWithTheirTypesAndRoots) {
    EXPECT_EQ(jsonOf(""),
              R"({"ok": "inspect", "line": 6, "object": {"modules": [)"
              R"({"name": "Bask", "types": ["Bask::Bitmap"]}, )"
              R"({"name": "L3McastGroupApi", "types": [)"
              R"("VornicL3::NonUcastHigigIntfs", "VornicL3::BumAllowedBackplaneIntf", )"
              R"("VornicL3::L3IpmcLocalDb", "VornicL3::L3McastGroupApi", )"
              R"("VornicL3::L3McastGroupApiHolder"]}, )"
              R"({"name": "VornicL3VpIndexAllocator", "types": [)"
              R"("VornicCentral::VpIndexConfigDir", "VornicCentral::VpIndexStatusDir", )"
              R"("VornicCentral::VpIndexAllocator", )"
              R"("VornicCentral::VpIndexAllocatorDirSm"]}, )"
              R"({"name": "vpstate", "types": [)"
              R"("VornicCentral::VpIndexConfig", "VornicCentral::VpIndexStatus", )"
              R"("VornicCentral::VpReferenceList", )"
              R"("VornicCentral::VpInvalidReferenceList", )"
              R"("VornicCentral::VxlanBootStatus", )"
              R"("VornicCentral::VxlanCapabilities"]}], )"
              R"("roots": ["machine", "references", "waiting", "boot", "configs", )"
              R"("statuses", "holder", "higig", "backplane", "ipmc"]}})"
              "\n");
}

TEST(Inspect, TellsPeopleWhatTypesAndRootsAreFor) {
    std::string const text = textOf("");
    EXPECT_TRUE(text.starts_with("MODULES, with their types\n  Bask\n    Bask::Bitmap: a fixed "
                                 "number of bits, with a fast search for a clear one\n"));
    EXPECT_TRUE(text.ends_with("ROOTS, where paths begin\n"
                               "  machine: the state machine, while it runs\n"
                               "  references: which virtual ports are in use\n"
                               "  waiting: which virtual ports wait for an index\n"
                               "  boot: which indices were held before the restart\n"
                               "  configs: what each client requests\n"
                               "  statuses: what each client was given\n"
                               "  holder: where the multicast group API is found\n"
                               "  higig: the Higig interfaces, chip by chip\n"
                               "  backplane: the backplane interfaces that are allowed\n"
                               "  ipmc: the local IP multicast database\n"));
}

TEST(Inspect, ShowsATypeToPeople) {
    std::string const expected = R"(Bask::Bitmap, of the module Bask
  a fixed number of bits, with a fast search for a clear one
CONSTRUCTOR
  Bitmap(id: U64, size: U32, initialBitState: Bask::HBitmap::BitState)
ATTRIBUTES
  130  id: U64 (read-only)
       a number that its builder chose; it means nothing to the bitmap
  131  size: U32 (read-only)
       the number of bits
  132  initialBitState: Bask::HBitmap::BitState (read-only)
       what every bit was at first
  133  numBitsInSetState: U32 (read-only)
       the number of set bits
COLLECTIONS
  none
OPERATIONS
  134  setBit(index: U32)
       sets a bit; does nothing at or past the size
  135  clearBit(index: U32)
       clears a bit; does nothing at or past the size
  136  isBitSet(index: U32): bool const
       whether a bit is set; false at or past the size
  137  findClearBitInRange(lo: U32, hi: U32, preference: Bask::Preference): U32 const
       the lowest or the highest clear bit from lo to hi, both included; 4294967295 when there is none
)";
    EXPECT_EQ(textOf("Bask::Bitmap"), expected);
    EXPECT_EQ(textOf("Bitmap"), expected);
}

TEST(Inspect, ShowsATypeAsJson) {
    EXPECT_EQ(
        jsonOf("VpIndexConfigDir"),
        R"({"ok": "inspect", "line": 6, "object": {"type": "VornicCentral::VpIndexConfigDir", )"
        R"("module": "VornicL3VpIndexAllocator", )"
        R"("documentation": "what the clients request, one record a client", )"
        R"("constructor": [{"name": "name", "type": "Pelo::String"}], )"
        R"("attributes": [{"number": 130, "name": "name", "type": "Pelo::String", )"
        R"("readOnly": true, "documentation": "the directory's own name"}], )"
        R"("collections": [{"number": 131, "name": "vpIndexConfig", )"
        R"("key": {"name": "name", "type": "Pelo::String"}, )"
        R"("type": "Pelo::Ptr<VornicCentral::VpIndexConfig>", "readOnly": false, )"
        R"("documentation": "the clients' requests, by client name"}], "operations": []}})"
        "\n");
    EXPECT_EQ(jsonOf("L3McastGroupApi"),
              R"({"ok": "inspect", "line": 6, "object": {"type": "VornicL3::L3McastGroupApi", )"
              R"("module": "L3McastGroupApi", "documentation": )"
              R"("the service that recomputes the L2 bitmaps of multicast groups", )"
              R"("constructor": null, "attributes": [], "collections": [], "operations": [)"
              R"({"number": 130, "name": "updateL2Bitmaps", "arguments": [)"
              R"({"name": "fapId", "type": "Devbus::FapId"}, {"name": "post", "type": "bool"}], )"
              R"("constant": false, "documentation": "recomputes them for one forwarding chip"}, )"
              R"({"number": 131, "name": "updateAllL2Bitmaps", "arguments": [], )"
              R"("constant": false, "documentation": "recomputes them for all chips"}]}})"
              "\n");
}

TEST(Inspect, ShowsAnEntityToPeople) {
    EXPECT_EQ(textOf("statuses/vpIndexStatus/bgp"), R"(statuses/vpIndexStatus/bgp: )"
                                                    R"(VornicCentral::VpIndexStatus
ATTRIBUTES
       NAME             TYPE          VALUE
  154  nameString       Pelo::String  bgp
  263  vpAllocRequests  U32           3
  264  vpAllocFailures  U32           0
  265  vpFreeRequests   U32           0
  266  vpTableSize      U32           64
COLLECTIONS
  258  remoteVport[remoteVtepKey: VornicCentral::RemoteVtepKey]: VornicCentral::VirtualPort, 1 member
       10.0.0.2@17/1/2 = 62
  259  mlagRemoteVport[remoteVtepKey: VornicCentral::RemoteVtepKey]: VornicCentral::VirtualPort, 0 members
  260  edgeVport[pvKey: VornicCentral::PortVlanKey]: VornicCentral::VirtualPort, 1 member
       Ethernet1/1:100 = 61
  261  vlanVport[vlan: Bridging::VlanId]: VornicCentral::VirtualPort, 1 member
       7 = 63
  262  eFilterDisableVport[intf: Netzo::IntfId]: VornicCentral::VirtualPort, 0 members
OPERATIONS
  none
)");
}

TEST(Inspect, ShowsOperationsAndNamesWhatIsConstant) {
    EXPECT_EQ(textOf("machine/vpBitmap"), R"(machine/vpBitmap: Bask::Bitmap
ATTRIBUTES
       NAME               TYPE                     VALUE
  130  id                 U64                      0
  131  size               U32                      64
  132  initialBitState    Bask::HBitmap::BitState  clear
  133  numBitsInSetState  U32                      11
COLLECTIONS
  none
OPERATIONS
  134  setBit(index: U32)
  135  clearBit(index: U32)
  136  isBitSet(index: U32): bool const
  137  findClearBitInRange(lo: U32, hi: U32, preference: Bask::Preference): U32 const
)");
    EXPECT_EQ(textOf("machine/vxlanCapabilities"), R"(machine/vxlanCapabilities: )"
                                                   R"(VornicCentral::VxlanCapabilities, constant
ATTRIBUTES
       NAME                 TYPE          VALUE
  154  nameString           Pelo::String  vxlanCapabilities
  258  remoteVportLowIndex  bool          false
COLLECTIONS
  none
OPERATIONS
  none
)");
}

TEST(Inspect, ShowsAnEntityAsJson) {
    EXPECT_EQ(
        jsonOf("machine/vpIndexConfigDir"),
        R"({"ok": "inspect", "line": 6, "object": {"path": "machine/vpIndexConfigDir", )"
        R"("type": "VornicCentral::VpIndexConfigDir", "constant": true, "attributes": [)"
        R"({"number": 130, "name": "name", "type": "Pelo::String", "value": "vpIndexConfig"}], )"
        R"("collections": [{"number": 131, "name": "vpIndexConfig", )"
        R"("key": {"name": "name", "type": "Pelo::String"}, )"
        R"("type": "Pelo::Ptr<VornicCentral::VpIndexConfig>", "members": [)"
        R"({"key": "bgp", "value": "VornicCentral::VpIndexConfig \"bgp\""}]}], "operations": []}})"
        "\n");
    Json const machine = Json::parse(jsonOf("machine")).at("object");
    EXPECT_EQ(machine.at("constant"), false);
    EXPECT_EQ(machine.at("attributes")[4].dump(),
              R"({"number":134,"name":"vpTableSize","type":"U32","value":64})");
    EXPECT_EQ(machine.at("attributes")[6].dump(),
              R"({"number":136,"name":"vpReallocationEnabled","type":"bool","value":true})");
    EXPECT_EQ(machine.at("operations")[9].dump(),
              R"({"number":150,"name":"isDefaultVp","arguments":[{"name":"vpIndex","type":"U32"}],)"
              R"("result":"bool","constant":true})");
}

/// A root, the type that is there, and its members where they are the point.
TEST(Inspect, KnowsEveryRoot) {
    for (auto const& [root, type] : std::vector<std::pair<std::string, std::string>>{
             {"machine", "VpIndexAllocatorDirSm"},
             {"references", "VpReferenceList"},
             {"waiting", "VpInvalidReferenceList"},
             {"boot", "VxlanBootStatus"},
             {"configs", "VpIndexConfigDir"},
             {"statuses", "VpIndexStatusDir"},
             {"machine/vpIndexAllocator/bgp/vpIndexConfig", "VpIndexConfig"},
             {"machine/vpIndexAllocator/bgp/vpIndexAllocatorDirSm/vpIndexAllocator/bgp",
              "VpIndexAllocator"}}) {
        EXPECT_EQ(Json::parse(jsonOf(root)).at("object").at("type"), "VornicCentral::" + type);
    }
}

TEST(Inspect, ShowsACollectionWithItsMembers) {
    EXPECT_EQ(textOf("references/remoteVport"), R"(references/remoteVport: )"
                                                R"(VornicCentral::VpReferenceList
  258  remoteVport[remoteVtepKey: VornicCentral::RemoteVtepKey]: VornicCentral::VpReference, 1 member
       10.0.0.2@17/1/2 = {vPort: 62, references: [bgp]}
)");
    EXPECT_EQ(jsonOf("configs/vpIndexConfig/bgp/vlanVport"),
              R"({"ok": "inspect", "line": 6, "object": )"
              R"({"path": "configs/vpIndexConfig/bgp/vlanVport", "collection": )"
              R"({"number": 261, "name": "vlanVport", )"
              R"("key": {"name": "vlan", "type": "Bridging::VlanId"}, "type": "bool", )"
              R"("members": [{"key": "7", "value": true}]}}})"
              "\n");
}

TEST(Inspect, ShowsAValueAndTakesEscapedKeys) {
    EXPECT_EQ(textOf("references/remoteVport/10.0.0.2@17%2F1%2F2"),
              "references/remoteVport/10.0.0.2@17%2F1%2F2: VornicCentral::VpReference\n"
              "  {vPort: 62, references: [bgp]}\n");
    EXPECT_EQ(textOf("statuses/vpIndexStatus/bgp/edgeVport/Ethernet1%2F1:100"),
              "statuses/vpIndexStatus/bgp/edgeVport/Ethernet1%2F1:100: "
              "VornicCentral::VirtualPort\n  61\n");
    EXPECT_EQ(jsonOf("machine/vpTableSize"),
              "{\"ok\": \"inspect\", \"line\": 6, \"object\": {\"path\": \"machine/vpTableSize\", "
              "\"type\": \"U32\", \"value\": 64}}\n");
}

TEST(Inspect, KeepsTheOrderOfMembers) {
    std::string const out =
        runJson("client add z\nclient add a\nrequest z vlan 9\nrequest z vlan 1\n"
                "withdraw z vlan 9\nrequest z vlan 9\ninspect configs/vpIndexConfig\n"
                "inspect configs/vpIndexConfig/z/vlanVport\n");
    EXPECT_NE(
        out.find(R"("members": [{"key": "z", "value": "VornicCentral::VpIndexConfig \"z\""}, )"
                 R"({"key": "a", )"),
        std::string::npos);
    EXPECT_NE(out.find(R"("members": [{"key": "1", "value": true}, {"key": "9", )"),
              std::string::npos);
}

TEST(Inspect, IsRefusedForWhatIsNotThere) {
    std::string const dirFields = "expected name or vpIndexConfig";
    for (auto const& [path, why] : std::vector<std::pair<std::string, std::string>>{
             {"configs/nothing", "VornicCentral::VpIndexConfigDir has no field \"nothing\", " +
                                     dirFields + " (column 17)"},
             {"configs/",
              "VornicCentral::VpIndexConfigDir has no field \"\", " + dirFields + " (column 17)"},
             {"configs//bgp",
              "VornicCentral::VpIndexConfigDir has no field \"\", " + dirFields + " (column 17)"},
             {"configs/vpIndexConfig/mlag",
              "no key \"mlag\" in vpIndexConfig, expected bgp (column 31)"},
             {"waiting/vlanVport/7",
              "no key \"7\" in vlanVport, expected a key, but there is none (column 27)"},
             {"references/edgeVport/Ethernet1:100",
              "no key \"Ethernet1:100\" in edgeVport, expected Ethernet1%2F1:100 (column 30)"},
             {"references/edgeVport/Ethernet1/1:100",
              "bad key \"Ethernet1\" in edgeVport, expected ':' and a VLAN (key pvKey) (column "
              "30)"},
             {"configs/name/x", "\"x\" follows a value, expected the end of the path (column 22)"},
             {"Machine/x", "unknown root \"Machine\", expected machine, references, waiting, boot, "
                           "configs, statuses, holder, higig, backplane or ipmc (column 9)"},
             {"configs/%41", "a percent sign in a path, expected %2F for a slash or %25 for a "
                             "percent sign (column 17)"}}) {
        EXPECT_EQ(errorOf(setUp, "inspect " + path), why) << path;
    }
    EXPECT_EQ(errorOf("client add a\n", "inspect machine/vpTableSize"),
              "the state machine is not running, expected 'start' before (column 9)");
    EXPECT_EQ(errorOf(setUp, "inspect configs x"),
              "\"x\" is one word too many, expected inspect [TYPE|PATH] (column 17)");
}

TEST(Inspect, NamesRootsAndTypesWhenItKnowsNeither) {
    std::string const error = errorOf(setUp, "inspect nothing");
    EXPECT_TRUE(error.starts_with("unknown type or root \"nothing\", expected machine, references, "
                                  "waiting, boot, configs, statuses, holder, higig, backplane, "
                                  "ipmc, Bask::Bitmap, "));
    EXPECT_TRUE(error.ends_with(", VornicCentral::VxlanBootStatus or "
                                "VornicCentral::VxlanCapabilities (column 9)"));
    EXPECT_NE(error.find(", VornicCentral::VpIndexAllocatorDirSm, "), std::string::npos);
}

TEST(Inspect, IsExplainedByHelp) {
    EXPECT_EQ(runVpagent({}, "help inspect\n").out, R"(inspect [TYPE|PATH]
    shows the types that can be reached by name, one of them, or an entity
    PATH: a root and steps, as in configs/vpIndexConfig/bgp; the roots are
      machine: the state machine, while it runs
      references: which virtual ports are in use
      waiting: which virtual ports wait for an index
      boot: which indices were held before the restart
      configs: what each client requests
      statuses: what each client was given
      holder: where the multicast group API is found
      higig: the Higig interfaces, chip by chip
      backplane: the backplane interfaces that are allowed
      ipmc: the local IP multicast database
)");
    EXPECT_TRUE(runVpagent({}, "help call\n").out.starts_with("call [PATH/]OPERATION [ARG...]\n"));
}

} // namespace
} // namespace VpAgentTest
