#include "view/MulticastView.h"

#include "state/Database.h"
#include "state/Multicast.h"
#include "text/Utf8.h"
#include "view/TextTable.h"

namespace VpAgent {

namespace {

std::string text(std::monostate) { return "none"; }

std::string text(std::string const& name) { return name; }

std::string text(Interface::IntfSet const& intfs) { return intfs.stringValue(); }

std::string text(McastValue const& value) {
    return std::visit([](auto const& each) { return text(each); }, value);
}

std::string text(McastChange const& change) {
    std::string line(change.entity);
    line += ": " + std::to_string(change.field) + ' ' + std::string(change.attribute);
    line += change.key ? '[' + change.key->stringValue() + ']' : "";
    return line + ": " + text(change.former) + " -> " + text(change.present);
}

std::string text(McastCall const& call) {
    std::string line = std::string(call.api) + ": " + std::string(call.operation) + '(';
    if (call.update) {
        line += call.update->fapId.stringValue() + (call.update->post ? ", true" : ", false");
    }
    return line + ')';
}

std::string text(McastRelease const& release) { return std::string(release.api) + ": released"; }

} // namespace

std::string eventText(McastEvent const& event) {
    return printable(std::visit([](auto const& each) { return text(each); }, event));
}

std::string viewMulticast(Multicast const& multicast) {
    std::string const title = "MULTICAST, in memory only\n";
    if (!multicast.created()) {
        return title + "  none: 'mcast create' makes it\n";
    }
    std::string const* const api = multicast.installed();
    TextTable shared{"SHARED AS", "HOLDS"};
    shared.row({std::string(VornicL3::L3McastGroupApiHolder::sharedEntityName()),
                api == nullptr ? "no group API" : *api});
    shared.row({std::string(VornicL3::BumAllowedBackplaneIntf::path()),
                text(multicast.backplane()->intfs())});
    auto const& chips = multicast.higig()->higigIntfs();
    shared.row(
        {std::string(VornicL3::NonUcastHigigIntfs::path()), counted(chips.memberCount(), "chip")});
    TextTable table{">FAP", "HIGIG INTERFACES"};
    forEachMember(chips, [&](Devbus::FapId fapId, auto const& intfs) {
        table.row({fapId.stringValue(), text(intfs)});
    });
    auto const& db = *multicast.ipmc();
    return title + shared.text() + (table.empty() ? "" : table.text()) +
           "  the local database refers to " + std::string(db.allowedBackplaneIntf()->name()) +
           " and " + std::string(db.hwHigigIntfs()->name()) + '\n';
}

} // namespace VpAgent
