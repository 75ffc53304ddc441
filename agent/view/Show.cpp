#include "view/Show.h"

#include "commands/Handlers.h"
#include "state/Agent.h"
#include "text/Utf8.h"
#include "view/Views.h"

#include <algorithm>
#include <array>

namespace VpAgent {

namespace {

struct View {
    std::string_view name;
    std::string (*text)(Agent const& agent, ViewRange range);
    bool byClient;             ///< can be narrowed to one client
    std::size_t overviewLines; ///< how much of it the overview shows
};

constexpr std::array<View, 7> views{{
    {"table", viewTable, false, 8},
    {"clients", viewClients, true, 20},
    {"references", viewReferences, true, 20},
    {"waiting", viewWaiting, true, 10},
    {"counters", viewCounters, true, 20},
    {"log", viewLog, false, 5},
    {"ring", viewRing, false, 5},
}};

std::string listed() {
    std::string text;
    for (View const& view : views) {
        text += text.empty() ? "" : &view == &views.back() ? " or " : ", ";
        text += view.name;
    }
    return text;
}

std::string overview(Agent const& agent) {
    std::string text;
    for (View const& view : views) {
        text += text.empty() ? "" : "\n";
        text += view.text(agent, {nullptr, view.overviewLines});
    }
    return text;
}

std::string oneView(Agent const& agent, Word const& what, Word const* name) {
    auto const* const view = std::find_if(views.begin(), views.end(),
                                          [&](View const& each) { return each.name == what.text; });
    if (view == views.end()) {
        throw Refusal("unknown view " + inQuotes(what.text) + ", expected " + listed(),
                      what.place());
    }
    if (name == nullptr) {
        return view->text(agent, {});
    }
    if (!view->byClient) {
        throw Refusal("the view " + std::string(view->name) + " is not by client, expected no name",
                      name->place());
    }
    return view->text(agent, {&knownClient(agent, *name), ViewRange::all});
}

} // namespace

std::string showView(Agent const& agent, Word const* what, Word const* name) {
    std::string text = what == nullptr ? overview(agent) : oneView(agent, *what, name);
    text.pop_back(); // the last line end, which who prints it adds
    return text;
}

std::set<std::string> const& viewNames() {
    static std::set<std::string> const names = [] {
        std::set<std::string> all;
        for (View const& view : views) {
            all.emplace(view.name);
        }
        return all;
    }();
    return names;
}

} // namespace VpAgent
