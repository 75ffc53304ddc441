#include "state/Agent.h"
#include "view/TextTable.h"
#include "view/Views.h"

namespace VpAgent {

using namespace VornicCentral;

namespace {

/// Who gets the index when the key is served; why it is passed over, when it is.
std::string beneficiaries(VpReference const* reference) {
    if (reference == nullptr || reference->vPort().valid()) {
        return "(waits no longer)";
    }
    std::string text;
    for (Pelo::String const& name : reference->references()) {
        text += text.empty() ? "" : ", ";
        text += name.view();
    }
    return text.empty() ? "(passed over: no client)" : text;
}

} // namespace

std::string viewWaiting(Agent const& agent, ViewRange range) {
    std::string const title = "WAITING FOR AN INDEX, the next to be served first\n";
    VpReferenceList const& references = *agent.database.references();
    TextTable table{">", "KIND", "KEY", "FOR"};
    std::size_t place = 0;
    std::size_t hidden = 0;
    forEachKind<ServingOrder>([&](auto kind) {
        using Kind = decltype(kind);
        forEachMember(agent.database.waiting()->collection<Kind>(), [&](auto const& key, bool) {
            ++place;
            VpReference const* const reference = references.find<Kind>(key);
            bool const named = reference != nullptr && range.client != nullptr &&
                               reference->referenceHas(range.client->name);
            if (range.client != nullptr && !named) {
                return;
            }
            if (place > range.lines) {
                ++hidden;
                return;
            }
            table.row({grouped(place), Kind::word, key.stringValue(), beneficiaries(reference)});
        });
    });
    if (table.empty()) {
        return title + "  none\n";
    }
    return title + table.text() +
           (hidden == 0 ? "" : "  and " + counted(hidden, "more key") + ": show waiting\n");
}

} // namespace VpAgent
