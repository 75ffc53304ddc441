#include "state/Agent.h"
#include "text/Utf8.h"
#include "view/TextTable.h"
#include "view/Views.h"

#include <map>

namespace VpAgent {

using namespace VornicCentral;

namespace {

std::string holders(VpReference const& reference) {
    std::string text;
    for (Pelo::String const& name : reference.references()) {
        text += text.empty() ? "" : ", ";
        text += name.view();
    }
    return text.empty() ? "nobody (clear-stale releases it)" : text;
}

/// How many references each set of clients shares, by kind.
std::string summary(VpReferenceList const& references) {
    TextTable table{"KIND", ">REFERENCES", "HELD BY"};
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        std::map<std::string, std::size_t> counts;
        forEachMember(
            references.collection<Kind>(),
            [&](auto const&, VpReference const& reference) { ++counts[holders(reference)]; });
        for (auto const& [names, count] : counts) {
            table.row({Kind::word, grouped(count), names});
        }
    });
    return table.empty() ? "  none\n" : table.text();
}

std::string list(VpReferenceList const& references, Client const* client) {
    TextTable table{">INDEX", "KIND", "KEY", "HELD BY"};
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        forEachMember(
            references.collection<Kind>(), [&](auto const& key, VpReference const& reference) {
                if (client == nullptr || reference.referenceHas(client->name)) {
                    table.row({reference.vPort().valid() ? reference.vPort().stringValue() : "-",
                               Kind::word, key.stringValue(), holders(reference)});
                }
            });
    });
    return table.empty() ? "" : table.text();
}

} // namespace

std::string viewReferences(Agent const& agent, ViewRange range) {
    VpReferenceList const& references = *agent.database.references();
    if (range.client != nullptr) {
        std::string const lines = list(references, range.client);
        return "REFERENCES THAT NAME " + printable(range.client->name) + '\n' +
               (lines.empty() ? "  none\n" : lines);
    }
    std::string const text = "REFERENCES\n" + summary(references);
    return range.lines == ViewRange::all ? text + list(references, nullptr) : text;
}

} // namespace VpAgent
