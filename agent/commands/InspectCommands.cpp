#include "commands/Handlers.h"
#include "commands/OperationCall.h"
#include "inspect/Inspected.h"
#include "inspect/Roots.h"
#include "state/Agent.h"
#include "text/Alternatives.h"
#include "text/Utf8.h"

namespace VpAgent::Handlers {

namespace {

/// The refusal of a word that begins no path and names no type.
Refusal unknownSubject(Word const& word) {
    Alternatives names;
    for (Root const& root : roots()) {
        names.add(root.name);
    }
    for (Qor::TypeModule const* const module : modulesByName()) {
        for (Qor::TypeData const* const type : module->types()) {
            names.add(type->name());
        }
    }
    return {"unknown type or root " + inQuotes(word.text) + ", expected " + names.text(),
            word.place()};
}

} // namespace

Reply inspect(Agent& agent, Arguments const& arguments) {
    if (arguments.word == nullptr) {
        return {InspectReply{InspectedModules{}}, {}};
    }
    Word const& word = *arguments.word;
    std::vector<Step> const steps = pathSteps(word);
    if (steps.size() == 1 && findRoot(steps.front().text) == nullptr) {
        Qor::TypeData const* const type = Qor::TypeData::find(word.text);
        if (type == nullptr) {
            throw unknownSubject(word);
        }
        return {InspectReply{type}, {}};
    }
    return {InspectReply{InspectedPath{std::string(word.text), follow(agent, steps, word)}}, {}};
}

Reply callAtPath(Agent& agent, Word const& word, std::span<Word const> arguments) {
    std::vector<Step> const steps = pathSteps(word);
    Step const& last = steps.back();
    std::span<Step const> const path(steps.data(), steps.size() - 1);
    Found const found = follow(agent, path, word);
    Place const place = last.place(word);
    if (!found.isEntity()) {
        throw Refusal(inQuotes(word.text.substr(0, last.at - 1)) +
                          " is no entity, expected one whose operations can be called",
                      word.place());
    }
    Word const operation{last.text, word.raw.substr(place.at - word.at, place.length), place.at};
    return callOperation(found, operation, arguments);
}

} // namespace VpAgent::Handlers
