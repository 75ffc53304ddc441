#include "language/Completion.h"

#include "language/CommandTable.h"
#include "language/StartSettings.h"
#include "language/Words.h"
#include "qor/TypeData.h"
#include "state/Agent.h"
#include "view/Show.h"

#include <algorithm>
#include <set>

namespace VpAgent {

namespace {

using Candidates = std::set<std::string>;

void addFirstWords(Candidates& candidates) {
    for (Command const& command : commandTable()) {
        candidates.emplace(command.word);
    }
}

void addClients(Candidates& candidates, Agent const& agent) {
    agent.database.forEachClient(
        [&](Client const& client) { candidates.insert(asWord(client.name)); });
}

void addSettings(Candidates& candidates) {
    for (Setting const& setting : settingList()) {
        std::string const start = std::string(setting.name) + '=';
        if (setting.values == "on|off") {
            candidates.insert({start + "on", start + "off"});
        } else {
            candidates.insert(start);
        }
    }
}

void addOperations(Candidates& candidates, Qor::TypeData const* type) {
    if (type == nullptr) {
        return;
    }
    for (Qor::FieldData const& field : type->fields()) {
        if (field.kind == Qor::FieldKind::operation) {
            candidates.emplace(field.name);
        }
    }
}

/// The type whose operations a command calls; null while there is no object of it.
Qor::TypeData const* calledType(Command const& command, Agent const& agent) {
    if (!agent.machine.running()) {
        return nullptr;
    }
    auto const& stateMachine = agent.machine.stateMachine();
    if (command.arguments[0].type == ArgumentType::operation) {
        return stateMachine.typeData();
    }
    Qor::TypeData const* type = nullptr;
    forEachMember(stateMachine.vpIndexAllocator(),
                  [&](auto const&, auto const& allocator) { type = allocator->typeData(); });
    return type;
}

/// The argument to which the word number `position` behind the command's own words belongs, and how
/// many words of it stand before that word.
struct ArgumentAt {
    Argument argument;
    std::size_t wordsBefore = 0;
};

ArgumentAt argumentAt(Command const& command, std::size_t position) {
    for (Argument const argument : command.arguments) {
        bool const list = argument.count == Count::any || argument.count == Count::some;
        std::size_t const width = argument.type == ArgumentType::vport ? 2 : 1;
        if (list || position < width) {
            return {argument, list ? 0 : position};
        }
        position -= width;
    }
    return {};
}

void addArgument(Candidates& candidates, Command const& command, std::size_t position,
                 Agent const& agent) {
    auto const [argument, wordsBefore] = argumentAt(command, position);
    switch (argument.type) {
    case ArgumentType::client:
        addClients(candidates, agent);
        break;
    case ArgumentType::vport:
        if (wordsBefore == 0) {
            VornicCentral::forEachKind(
                [&](auto kind) { candidates.emplace(decltype(kind)::word); });
        }
        break;
    case ArgumentType::setting:
        addSettings(candidates);
        break;
    case ArgumentType::operation:
        addOperations(candidates, calledType(command, agent));
        break;
    case ArgumentType::view:
        candidates.insert(viewNames().begin(), viewNames().end());
        break;
    case ArgumentType::command:
        addFirstWords(candidates);
        break;
    default:
        break;
    }
}

/// Whether the words before the one under way begin a call of this command.
bool fits(Command const& command, std::span<Word const> before) {
    return before.size() >= command.wordCount() && before[0].text == command.word &&
           (command.second.empty() || before[1].text == command.second);
}

Candidates candidatesFor(std::span<Word const> before, Agent const& agent, bool& files) {
    Candidates candidates;
    if (before.empty()) {
        addFirstWords(candidates);
        return candidates;
    }
    for (Command const& command : commandsOf(before[0].text)) {
        if (before.size() == 1 && !command.second.empty()) {
            candidates.emplace(command.second);
        } else if (fits(command, before)) {
            std::size_t const position = before.size() - command.wordCount();
            files = argumentAt(command, position).argument.type == ArgumentType::file;
            addArgument(candidates, command, position, agent);
        }
    }
    return candidates;
}

} // namespace

Completion complete(std::string_view typed, Agent const& agent) {
    std::size_t const start = typed.find_last_of(" \t") + 1; // npos + 1 is 0
    std::string_view const partial = typed.substr(start);
    Words words;
    try {
        words.read(typed.substr(0, start));
    } catch (Refusal const&) {
        return {}; // inside a quoted word, or a line that is wrong already
    }
    Completion completion;
    for (std::string const& candidate : candidatesFor(words.all(), agent, completion.files)) {
        if (candidate.starts_with(partial)) {
            completion.words.push_back(candidate);
        }
    }
    return completion;
}

} // namespace VpAgent
