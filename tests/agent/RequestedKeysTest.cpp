#include "import/RequestedKeys.h"

#include "state/Database.h"
#include "text/Refusal.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace VpAgent {
namespace {

using namespace VornicCentral;

/// What a file asks for, in the words of commands: `edge Ethernet0:100, vlan 7`.
std::string requestsOf(std::string_view text) {
    RequestedKeys const keys(parseJson(text));
    std::string requests;
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        forEachMember(keys.of<Kind>(), [&](auto const& key, bool) {
            requests += requests.empty() ? "" : ", ";
            requests += std::string(Kind::word) + ' ' + key.stringValue();
        });
    });
    return requests;
}

std::string refusalOf(std::string_view text) {
    try {
        return "not refused: " + requestsOf(text);
    } catch (Refusal const& refusal) {
        return refusal.what();
    }
}

TEST(Import, ReadsTheNestedForm) {
    EXPECT_EQ(requestsOf(R"({
        "VLAN_MEMBER": {"Vlan200|Ethernet4": {"tagging_mode": "tagged"}, "Vlan100|Ethernet0": {}},
        "VXLAN_TUNNEL_MAP": {"vtep1|map_1000_Vlan100": {"vni": "1000", "vlan": "Vlan100"}},
        "VXLAN_REMOTE_VNI": {"Vlan100|10.0.0.2": {"vni": "1000"},
                             "Vlan100|2001:DB8::2": {"vni": 1001}},
        "MCLAG_DOMAIN": {"5": {"source_ip": "10.0.1.1", "peer_ip": "10.0.1.2",
                               "peer_link": "PortChannel01"}}})"),
              "remote 10.0.0.2@1000, remote 2001:db8::2@1001, mlag 10.0.1.2@5, edge Ethernet4:200, "
              "edge Ethernet0:100, vlan 100, efilter PortChannel01");
}

TEST(Import, ReadsTheFlatForm) {
    EXPECT_EQ(requestsOf(R"({
        "MCLAG_DOMAIN|5": {"peer_link": "PortChannel01", "peer_ip": "10.0.1.2"},
        "VLAN_MEMBER|Vlan200|Ethernet4": {"tagging_mode": "tagged"},
        "VXLAN_TUNNEL_MAP|vtep1|map_1000_Vlan100": {"vlan": "Vlan100"},
        "VLAN_MEMBER|Vlan100|Ethernet0": {},
        "VXLAN_REMOTE_VNI|Vlan100|10.0.0.2": {"vni": "1000"}})"),
              "remote 10.0.0.2@1000, mlag 10.0.1.2@5, edge Ethernet4:200, edge Ethernet0:100, "
              "vlan 100, efilter PortChannel01");
}

TEST(Import, ReadsTheStateOfOneVni) {
    EXPECT_EQ(requestsOf(R"({"vni": 101, "type": "L2", "remoteVteps": [
        {"ip": "10.30.30.30", "flood": "HER"}, {"ip": "10.20.20.20", "flood": "HER"}]})"),
              "remote 10.30.30.30@101, remote 10.20.20.20@101");
}

TEST(Import, ReadsTheStateOfSeveralVnis) {
    std::string const expected = "remote 10.0.0.9@102, remote 10.0.0.9@101";
    EXPECT_EQ(requestsOf(R"([{"vni": 102, "remoteVteps": [{"ip": "10.0.0.9"}]},
                             {"vni": "101", "remoteVteps": [{"ip": "10.0.0.9"}]},
                             {"vni": 4001, "type": "L3"}])"),
              expected);
    EXPECT_EQ(requestsOf(R"({"102": {"vni": 102, "remoteVteps": [{"ip": "10.0.0.9"}]},
                             "101": {"vni": 101, "remoteVteps": [{"ip": "10.0.0.9"}]}})"),
              expected);
}

TEST(Import, AsksForAKeyOnce) {
    EXPECT_EQ(requestsOf(R"({"VXLAN_REMOTE_VNI": {"Vlan100|10.0.0.2": {"vni": "1000"},
                                                  "Vlan200|10.0.0.3": {"vni": "1000"},
                                                  "Vlan300|10.0.0.2": {"vni": "1000"}}})"),
              "remote 10.0.0.2@1000, remote 10.0.0.3@1000");
}

TEST(Import, PassesUnknownTablesOver) {
    EXPECT_EQ(requestsOf(R"({"PORT|Ethernet0": {}, "VLAN": {"Vlan9999": {}}, "VLAN_MEMBERS": 1,
                             "VNET|Vnet_1": {"vni": "x"}, "FEATURES": [1, 2]})"),
              "");
    EXPECT_EQ(requestsOf("{}"), "");
    EXPECT_EQ(requestsOf("[]"), "");
}

TEST(Import, TakesAnMclagDomainWithoutPeerLink) {
    EXPECT_EQ(requestsOf(R"({"MCLAG_DOMAIN": {"7": {"peer_ip": "10.0.1.2"}}})"), "mlag 10.0.1.2@7");
}

TEST(Import, TakesALayer3VniWithoutRemoteVteps) {
    EXPECT_EQ(requestsOf(R"({"4001": {"vni": 4001, "type": "L3", "numRemoteVteps": "n/a"},
                             "101": {"vni": 101, "remoteVteps": [{"ip": "10.0.0.9"}]}})"),
              "remote 10.0.0.9@101");
    EXPECT_EQ(refusalOf(R"([{"vni": 1, "numRemoteVteps": "some"}])"),
              "[0]: VNI: numRemoteVteps \"some\" without remoteVteps, expected the list of them");
}

TEST(Import, RefusesControlCharactersInInterfaces) {
    for (std::string const character : {"\\u0000", "\\u001b", "\\u007f", "\\u0085", "\\u009f"}) {
        for (std::string const& file :
             {R"({"VLAN_MEMBER|Vlan1|Eth)" + character + R"(": {}})",
              R"({"MCLAG_DOMAIN|1": {"peer_ip": "::1", "peer_link": "E)" + character + "\"}}"}) {
            EXPECT_NE(refusalOf(file).find("expected an interface name without control characters"),
                      std::string::npos)
                << file << ": " << refusalOf(file);
        }
    }
    EXPECT_EQ(requestsOf(R"({"VLAN_MEMBER|Vlan1|\u00a0": {}})"), "edge \xC2\xA0:1");
}

TEST(Import, NamesAMalformedEntry) {
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER|Vlan100|Ethernet0": {}, "VLAN_MEMBER|Vlan4095|Et1": {}})"),
              "VLAN_MEMBER|Vlan4095|Et1: VLAN \"Vlan4095\", expected Vlan1 to Vlan4094");
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER": {"Vlan100": {}}})"),
              "VLAN_MEMBER|Vlan100: key \"Vlan100\", expected VlanN|INTERFACE");
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER": {"Vlan100|": {}}})"),
              "VLAN_MEMBER|Vlan100|: key \"Vlan100|\", expected VlanN|INTERFACE");
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER": {"Vlan100|Ethernet0": 1}})"),
              "VLAN_MEMBER|Vlan100|Ethernet0: 1, expected an object");
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER": {"Vlan100|Ethernet0": [[1], 2]}})"),
              "VLAN_MEMBER|Vlan100|Ethernet0: an array, expected an object");
    EXPECT_EQ(refusalOf(R"({"VLAN_MEMBER": []})"),
              "VLAN_MEMBER: the table is no object, expected an object of entries");
    EXPECT_EQ(
        refusalOf(R"({"VXLAN_REMOTE_VNI": {"Vlan1|10.0.0.256": {"vni": "1"}}})").substr(0, 61),
        "VXLAN_REMOTE_VNI|Vlan1|10.0.0.256: address \"10.0.0.256\", expe");
    EXPECT_EQ(refusalOf(R"({"VXLAN_REMOTE_VNI": {"Vlan1|10.0.0.2": {}}})"),
              "VXLAN_REMOTE_VNI|Vlan1|10.0.0.2: no field \"vni\", expected a number from 1 to "
              "16777215");
    EXPECT_EQ(refusalOf(R"({"VXLAN_TUNNEL_MAP": {"v|m": {"vlan": 100}}})"),
              "VXLAN_TUNNEL_MAP|v|m: vlan 100, expected a text");
    EXPECT_EQ(refusalOf(R"({"VXLAN_TUNNEL_MAP": {"v|m": {"vni": "100"}}})"),
              "VXLAN_TUNNEL_MAP|v|m: no field \"vlan\", expected one");
    EXPECT_EQ(refusalOf(R"({"MCLAG_DOMAIN": {"x": {"peer_ip": "10.0.0.1"}}})").substr(0, 38),
              "MCLAG_DOMAIN|x: domain \"x\", expected a");
    EXPECT_EQ(refusalOf(R"({"MCLAG_DOMAIN": {"1": {"peer_link": "Et1"}}})"),
              "MCLAG_DOMAIN|1: no field \"peer_ip\", expected one");
}

TEST(Import, NamesAMalformedVtep) {
    EXPECT_EQ(refusalOf(R"([{"vni": 1, "remoteVteps": []}, {"vni": 2, "remoteVteps": [{}]}])"),
              "[1]: VNI 2, remoteVteps[0]: no field \"ip\", expected one");
    EXPECT_EQ(refusalOf(R"({"remoteVteps": []})"),
              "VNI: no field \"vni\", expected a number from 1 to 16777215");
    EXPECT_EQ(refusalOf(R"({"vni": 1, "remoteVteps": {}})"),
              "VNI: remoteVteps that is no array, expected an array of objects with ip");
    EXPECT_EQ(refusalOf(R"({"a": {"vni": 1, "remoteVteps": []}, "b": 2})"),
              "\"b\": VNI: 2, expected an object");
    EXPECT_EQ(refusalOf(R"([{"vni": 1, "numRemoteVteps": 2}])"),
              "[0]: VNI: numRemoteVteps 2 without remoteVteps, expected the list of them");
    EXPECT_EQ(refusalOf(R"([{"vni": 1, "numRemoteVteps": {"a": 1}}])"),
              "[0]: VNI: numRemoteVteps an object without remoteVteps, expected the list of them");
}

TEST(Import, TakesNumbersInTheirOneFormOnly) {
    for (char const* const vni : {"-1", "0", "16777216", "1.0", "1e3", "\"\"", "\"-1\"", "\"+1\"",
                                  "\"0x10\"", "\"1 \"", "\"01\"", "null", "true", "[1]"}) {
        std::string const file = std::string(R"({"vni": )") + vni + R"(, "remoteVteps": []})";
        EXPECT_NE(refusalOf(file).find("expected a number from 1 to 16777215"), std::string::npos)
            << vni;
    }
    EXPECT_EQ(requestsOf(R"({"vni": "16777215", "remoteVteps": [{"ip": "::1"}]})"),
              "remote ::1@16777215");
}

TEST(Import, RefusesWhatIsNoJson) {
    EXPECT_EQ(refusalOf(""), "no JSON at line 1, column 1, expected a JSON object or array");
    EXPECT_EQ(refusalOf("{\n  \"a\": 1,\n  b}"),
              "no JSON at line 3, column 3, expected a JSON object or array");
    EXPECT_EQ(refusalOf("{} x").substr(0, 24), "no JSON at line 1, colum");
    EXPECT_EQ(refusalOf("[\"\xFF\"]").substr(0, 24), "no JSON at line 1, colum");
    EXPECT_EQ(refusalOf("[1e999]").substr(0, 24), "no JSON at line 1, colum");
    EXPECT_EQ(
        refusalOf("\"text\""),
        "the file is no object and no array, expected a configuration database or EVPN state");
}

TEST(Import, RefusesANulByte) {
    auto const withNul = [](std::string before, std::string_view behind) {
        return refusalOf(before.append(1, '\0').append(behind));
    };
    std::string const whole = R"({"VLAN_MEMBER|Vlan7|Et1": {}})";
    EXPECT_EQ(withNul(whole + "\n ", ""),
              "no JSON at line 2, column 2, expected a JSON object or array");
    EXPECT_EQ(withNul(whole, " and more"),
              "no JSON at line 1, column 30, expected a JSON object or array");
    EXPECT_EQ(withNul("", whole), "no JSON at line 1, column 1, expected a JSON object or array");
    EXPECT_EQ(withNul("{\n\"VLAN_MEM", "BER\": {}}").substr(0, 21), "no JSON at line 2, co");
}

/// So deep that walking it by recursion would overflow the stack.
std::string deep(std::size_t depth = 200000) {
    return std::string(depth, '[') + std::string(depth, ']');
}

TEST(Import, RefusesWhatIsNestedTooDeep) {
    std::string const behind = ", expected at most 100 objects and arrays within each other";
    EXPECT_EQ(refusalOf(deep()), "nested too deep at line 1, column 101" + behind);
    EXPECT_EQ(refusalOf("{\"VLAN_MEMBER\":\n {\"Vlan1|[\\\"Et\": " + deep() + "}}"),
              "nested too deep at line 2, column 116" + behind);
    for (std::string const& file : {R"({"vni": )" + deep() + R"(, "remoteVteps": []})",
                                    R"({"VXLAN_TUNNEL_MAP|a|b": {"vlan": )" + deep() + "}}",
                                    R"({"VXLAN_TUNNEL_MAP|a|b": {"vlan": {"x": )" + deep() + "}}}",
                                    R"([{"vni": 1, "numRemoteVteps": )" + deep() + "}]",
                                    R"([{"vni": 1, "remoteVteps": [)" + deep() + "]}]"}) {
        std::string const refusal = refusalOf(file);
        EXPECT_EQ(refusal.substr(0, 35), "nested too deep at line 1, column 1") << refusal;
    }
    EXPECT_EQ(refusalOf(R"({"OTHER": )" + deep(100) + "}"),
              "nested too deep at line 1, column 110" + behind);
    EXPECT_EQ(requestsOf(R"({"OTHER": )" + deep(99) + R"(, "VLAN_MEMBER|Vlan7|Et1": {}})"),
              "edge Et1:7");
}

TEST(Import, RefusesANameThatStandsTwice) {
    for (auto const& [file, name] : std::vector<std::pair<char const*, std::string>>{
             {R"({"VLAN_MEMBER": {"Vlan1|Et1": {}, "Vlan1|Et1": {}}})", "Vlan1|Et1"},
             {R"({"VLAN_MEMBER|Vlan1|E": {}, "X": 1, "VLAN_MEMBER|Vlan1|E": {}})",
              "VLAN_MEMBER|Vlan1|E"},
             {R"({"VLAN_MEMBER": {}, "VLAN_MEMBER": {}})", "VLAN_MEMBER"},
             {R"({"VXLAN_TUNNEL_MAP": {"v": {"vlan": "Vlan1", "vlan": "Vlan2"}}})", "vlan"},
             {R"([{"vni": 1, "vni": 2, "remoteVteps": []}])", "vni"},
             {R"({"vni": 1, "remoteVteps": [{"ip": "::1", "ip": "::2"}]})", "ip"},
             {R"({"a": {"vni": 1, "remoteVteps": []}, "a": {"vni": 2}})", "a"}}) {
        EXPECT_EQ(refusalOf(file),
                  "the name \"" + name + "\" stands twice in one object, expected it once");
    }
    EXPECT_EQ(requestsOf(R"({"A": {"x": 1}, "B": {"x": 1}})"), "");
}

TEST(Import, TakesANameThatStandsTwiceInAnUnknownTable) {
    EXPECT_EQ(requestsOf(R"({"A": {"x": 1, "x": {"y": 1, "y": 2}}, "A": 3,
                             "VLAN_MEMBER": {"Vlan1|E": {"tagging": {"z": 1, "z": 1}}}})"),
              "edge E:1");
}

TEST(Import, ReadsManyEntriesInTheirOrder) {
    std::string file = "{";
    std::string expected;
    for (int port = 5000; port > 0; --port) {
        std::string const name = "Ethernet" + std::to_string(port);
        file +=
            (file.size() == 1 ? "" : ",") + std::string("\"VLAN_MEMBER|Vlan7|") + name + "\": {}";
        expected += (expected.empty() ? "" : ", ") + std::string("edge ") + name + ":7";
    }
    EXPECT_EQ(requestsOf(file + "}"), expected);
}

} // namespace
} // namespace VpAgent
