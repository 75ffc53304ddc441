#include "inspect/PathCompletion.h"

#include "inspect/Fields.h"
#include "inspect/Found.h"
#include "inspect/Roots.h"

#include <optional>
#include <vector>

namespace VpAgent {

using Qor::FieldData;
using Qor::FieldKind;

namespace {

std::optional<Found> find(std::string_view path, Agent const& agent) {
    Word const word{path, path, 0};
    try {
        return follow(agent, pathSteps(word), word);
    } catch (Refusal const&) {
        return std::nullopt;
    }
}

bool isEntity(Qor::ValueType const& type) { return type.kind() == Qor::ValueKind::entity; }

/// The names of the steps from there, with escapes.
std::vector<std::string> stepsFrom(Found const& found, PathUse use) {
    std::vector<std::string> steps;
    auto const useful = [use](FieldData const& field) {
        return use == PathUse::inspect || isEntity(*field.type);
    };
    if (FieldData const* const collection = found.collection()) {
        if (useful(*collection)) {
            forEachMember(*found.node(), *collection, [&](auto const& key, auto const&) {
                steps.push_back(asStep(key.text()));
            });
        }
    } else if (found.isEntity()) {
        Qor::TypeData const* const type = found.node()->typeData();
        for (FieldKind const kind : {FieldKind::attribute, FieldKind::collection}) {
            forEachField(type, kind, [&](FieldData const& field) {
                if (useful(field)) {
                    steps.emplace_back(field.name);
                }
            });
        }
        if (use == PathUse::call) {
            forEachField(type, FieldKind::operation,
                         [&](FieldData const& field) { steps.emplace_back(field.name); });
        }
    }
    return steps;
}

} // namespace

std::set<std::string> pathsBehind(std::string_view typed, Agent const& agent, PathUse use) {
    if (typed.starts_with('"')) {
        typed.remove_prefix(1);
    }
    std::set<std::string> paths;
    std::size_t const slash = typed.rfind('/');
    if (slash == std::string_view::npos) {
        for (Root const& root : roots()) {
            paths.emplace(root.name);
        }
        return paths;
    }
    if (auto const found = find(typed.substr(0, slash), agent)) {
        for (std::string const& step : stepsFrom(*found, use)) {
            paths.insert(asWord(std::string(typed.substr(0, slash + 1)) + step));
        }
    }
    return paths;
}

bool pathGoesOn(std::string_view path, Agent const& agent) {
    auto const found = find(path, agent);
    return found && found->node() != nullptr;
}

} // namespace VpAgent
