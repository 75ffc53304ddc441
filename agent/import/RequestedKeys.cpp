#include "import/RequestedKeys.h"

#include "import/Entry.h"
#include "language/Vport.h"
#include "text/Refusal.h"
#include "text/Utf8.h"

#include <algorithm>
#include <array>
#include <string>
#include <string_view>

namespace VpAgent {

namespace {

using namespace VornicCentral;

RemoteVtepKey remoteKey(Entry const& entry, std::string_view address, U32 group) {
    return {Vxlan::SwTunnelGroupId(group), entry.address(address)};
}

/// An interface by its name, or an interface and a VLAN as the key text of an edge port.
template <class Kind> typename Kind::Key interfaceKey(Entry const& entry, std::string const& text) {
    auto const key = parseKey<Kind>(text);
    if (!key) {
        entry.refuse("interface " + inQuotes(text), key.error().expected);
    }
    return *key;
}

/// The two parts of a key `VlanN|REST`.
struct VlanAndRest {
    Bridging::VlanId vlan;
    std::string_view rest;
};

VlanAndRest vlanAndRest(Entry const& entry, std::string_view key, std::string_view form) {
    std::size_t const bar = key.find('|');
    if (bar == std::string_view::npos || bar + 1 == key.size()) {
        entry.refuse("key " + inQuotes(key), form);
    }
    return {entry.vlan(key.substr(0, bar)), key.substr(bar + 1)};
}

void readRemoteVni(RequestedKeys& keys, Entry const& entry, std::string_view key) {
    auto const [vlan, address] = vlanAndRest(entry, key, "VlanN|ADDRESS");
    keys.add<RemoteVport>(remoteKey(entry, address, entry.vni()));
}

void readMclagDomain(RequestedKeys& keys, Entry const& entry, std::string_view key) {
    auto const domain = Vxlan::SwTunnelGroupId::parse(key);
    if (!domain) {
        entry.refuse("domain " + inQuotes(key), domain.error().expected);
    }
    keys.add<MlagRemoteVport>(remoteKey(entry, entry.text("peer_ip"), domain->value()));
    if (entry.find("peer_link") != nullptr) { // a pair may do without one
        keys.add<EFilterDisableVport>(
            interfaceKey<EFilterDisableVport>(entry, entry.text("peer_link")));
    }
}

void readVlanMember(RequestedKeys& keys, Entry const& entry, std::string_view key) {
    auto const [vlan, interface] = vlanAndRest(entry, key, "VlanN|INTERFACE");
    keys.add<EdgeVport>(
        interfaceKey<EdgeVport>(entry, std::string(interface) + ':' + vlan.stringValue()));
}

void readTunnelMap(RequestedKeys& keys, Entry const& entry, std::string_view) {
    keys.add<VlanVport>(entry.vlan(entry.text("vlan")));
}

/// A table of a configuration database, and how one of its entries is read.
struct Table {
    std::string_view name;
    void (*read)(RequestedKeys& keys, Entry const& entry, std::string_view key);
};

constexpr std::array<Table, 4> tables{{
    {"VXLAN_REMOTE_VNI", readRemoteVni},
    {"MCLAG_DOMAIN", readMclagDomain},
    {"VLAN_MEMBER", readVlanMember},
    {"VXLAN_TUNNEL_MAP", readTunnelMap},
}};

void readEntry(RequestedKeys& keys, Table const& table, std::string const& key,
               Json const& fields) {
    table.read(keys, Entry(std::string(table.name) + '|' + key, fields), key);
}

/// The table that a member of the database is, or in the flat form is an entry of; null when it is
/// not known.
Table const* tableOf(std::string_view name) {
    std::string_view const tableName = name.substr(0, name.find('|'));
    auto const* const table = std::find_if(
        tables.begin(), tables.end(), [&](Table const& each) { return each.name == tableName; });
    return table == tables.end() ? nullptr : table;
}

void readMember(RequestedKeys& keys, std::string const& name, Json const& value) {
    Table const* const table = tableOf(name);
    if (table == nullptr) {
        return;
    }
    std::size_t const bar = name.find('|');
    if (bar != std::string::npos) {
        readEntry(keys, *table, name.substr(bar + 1), value);
        return;
    }
    if (!value.is_object()) {
        throw Refusal(name + ": the table is no object, expected an object of entries");
    }
    checkNames(value, [](std::string_view) { return true; });
    for (auto const& [key, fields] : value.items()) {
        readEntry(keys, *table, key, fields);
    }
}

/// The remote VTEPs of one VNI; `name` says where it stands in the file.
void readVni(RequestedKeys& keys, std::string const& name, Json const& value) {
    Entry const network(name + "VNI", value);
    U32 const vni = network.vni();
    Json const* const vteps = network.find("remoteVteps");
    if (vteps == nullptr) {
        Json const* const count = network.find("numRemoteVteps");
        bool const none = count == nullptr || *count == 0 || *count == Json("n/a");
        if (!none) {
            network.refuse("numRemoteVteps " + sample(*count) + " without remoteVteps",
                           "the list of them");
        }
        return;
    }
    if (!vteps->is_array()) {
        network.refuse("remoteVteps that is no array", "an array of objects with ip");
    }
    for (std::size_t at = 0; at < vteps->size(); ++at) {
        Entry const vtep(name + "VNI " + std::to_string(vni) + ", remoteVteps[" +
                             std::to_string(at) + ']',
                         (*vteps)[at]);
        keys.add<RemoteVport>(remoteKey(vtep, vtep.text("ip"), vni));
    }
}

/// Whether the value is what a switch shows of a VNI, be it that the list it counts is not there.
bool isVni(Json const& value) {
    return value.is_object() && (value.contains("remoteVteps") ||
                                 (value.contains("vni") && value.contains("numRemoteVteps")));
}

} // namespace

RequestedKeys::RequestedKeys(Json const& file) {
    if (file.is_array()) {
        for (std::size_t at = 0; at < file.size(); ++at) {
            readVni(*this, '[' + std::to_string(at) + "]: ", file[at]);
        }
    } else if (isVni(file)) {
        readVni(*this, "", file);
    } else if (!file.is_object()) {
        throw Refusal(
            "the file is no object and no array, expected a configuration database or EVPN state");
    } else if (std::any_of(file.begin(), file.end(), isVni)) {
        checkNames(file, [](std::string_view) { return true; });
        for (auto const& [name, value] : file.items()) {
            readVni(*this, inQuotes(name) + ": ", value);
        }
    } else {
        checkNames(file, [](std::string_view name) { return tableOf(name) != nullptr; });
        for (auto const& [name, value] : file.items()) {
            readMember(*this, name, value);
        }
    }
}

} // namespace VpAgent
