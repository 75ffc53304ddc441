#include "VornicL3Shared/model/Universe.h"

namespace ModelTest {
namespace {

using Keys = std::array<KeyText, keysPerKind>;

/// Too long for the 128 bytes of a message.
std::string const longName = "Port-Channel-" + std::string(150, 'x') + "7";

Keys const& remoteKeys() {
    static Keys const keys = {{
        {"10.0.0.1@17", "10.0.0.1", "17", "", ""},
        {"10.0.0.2@17", "10.0.0.2", "17", "", ""},
        {"10.0.0.1@18", "10.0.0.1", "18", "", ""},
        {"2001:db8::2@17", "2001:db8::2", "17", "", ""},
        {"10.0.0.1@17/1/2", "10.0.0.1", "17", "", ""},
        {"10.0.0.1@4294967295", "10.0.0.1", "4294967295", "", ""},
        {"0.0.0.0@0", "0.0.0.0", "0", "", ""},
        {"::@0/255/255", "::", "0", "", ""},
    }};
    return keys;
}

Keys const& edgeKeys() {
    static Keys const keys = {{
        {"Ethernet1/1:100", "", "", "Ethernet1/1", "100"},
        {"Ethernet1/1:101", "", "", "Ethernet1/1", "101"},
        {"Ethernet2:100", "", "", "Ethernet2", "100"},
        {"lo:1", "", "", "lo", "1"},
        {"a b:c:4094", "", "", "a b:c", "4094"},
        {longName + ":7", "", "", longName, "7"},
        {":0", "", "", "", "0"},
        {"Ethernet1/1:65535", "", "", "Ethernet1/1", "65535"},
    }};
    return keys;
}

Keys const& vlanKeys() {
    static Keys const keys = {{
        {"100", "", "", "", "100"},
        {"1", "", "", "", "1"},
        {"4094", "", "", "", "4094"},
        {"200", "", "", "", "200"},
        {"7", "", "", "", "7"},
        {"300", "", "", "", "300"},
        {"0", "", "", "", "0"},
        {"65535", "", "", "", "65535"},
    }};
    return keys;
}

Keys const& efilterKeys() {
    static Keys const keys = {{
        {"Ethernet7", "", "", "Ethernet7", ""},
        {"Ethernet1/1", "", "", "Ethernet1/1", ""},
        {"Port-Channel5", "", "", "Port-Channel5", ""},
        {"lo", "", "", "lo", ""},
        {"%s%d", "", "", "%s%d", ""},
        {longName, "", "", longName, ""},
        {" ", "", "", " ", ""},
        {longName + "8", "", "", longName + "8", ""},
    }};
    return keys;
}

} // namespace

KeyText const& keyText(Kind kind, Key key) {
    switch (kind) {
    case Kind::edge:
        return edgeKeys().at(key);
    case Kind::vlan:
        return vlanKeys().at(key);
    case Kind::efilter:
        return efilterKeys().at(key);
    default:
        return remoteKeys().at(key);
    }
}

std::vector<std::string> const& clientNames() {
    static std::vector<std::string> const names = {"bgp", "mlag", "static-routes", "a", "b",
                                                   "c",   "",     "x, y]"};
    return names;
}

char const* wordOf(Kind kind) {
    static std::array<char const*, kindCount> const words = {"remote", "mlag", "edge", "vlan",
                                                             "efilter"};
    return words.at(static_cast<std::size_t>(kind));
}

} // namespace ModelTest
