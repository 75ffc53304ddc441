#include "language/Completion.h"

#include "inspect/PathCompletion.h"
#include "language/CommandTable.h"
#include "language/RingOptions.h"
#include "language/StartSettings.h"
#include "language/Words.h"
#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "qor/TypeModule.h"
#include "state/Agent.h"
#include "view/Show.h"

#include <algorithm>
#include <set>
#include <utility>

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

/// The chips that have Higig interfaces.
void addChips(Candidates& candidates, Agent const& agent) {
    if (agent.multicast.created()) {
        forEachMember(agent.multicast.higig()->higigIntfs(), [&](Devbus::FapId chip, auto const&) {
            candidates.insert(chip.stringValue());
        });
    }
}

void addInstalled(Candidates& candidates, Agent const& agent) {
    std::string const* const name =
        agent.multicast.created() ? agent.multicast.installed() : nullptr;
    if (name != nullptr) {
        candidates.insert(asWord(*name));
    }
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
    if (command.arguments[0].type == ArgumentType::called) {
        return stateMachine.typeData();
    }
    Qor::TypeData const* type = nullptr;
    forEachMember(stateMachine.vpIndexAllocator(),
                  [&](auto const&, auto const& allocator) { type = allocator->typeData(); });
    return type;
}

/// The types, by their names with and without namespaces.
void addTypes(Candidates& candidates) {
    for (Qor::TypeModule const* const module : Qor::TypeModule::all()) {
        for (Qor::TypeData const* const type : module->types()) {
            candidates.emplace(type->name());
            if (Qor::TypeData::find(type->unqualifiedName()) == type) {
                candidates.emplace(type->unqualifiedName());
            }
        }
    }
}

/// Options behind the word `before`. Where the value of one stands, `type` becomes what it is.
void addRingOptions(Candidates& candidates, Word const& before, ArgumentType& type) {
    RingOption const* const former = findRingOption(before.text);
    if (former != nullptr && !former->value.empty()) {
        type = former->path ? ArgumentType::file : ArgumentType::none;
        return;
    }
    for (RingOption const& option : ringOptionList()) {
        candidates.emplace(option.name);
    }
}

void addMessages(Candidates& candidates) {
    if (Lumlog::RingBuffer const* const ring = Lumlog::RingBuffer::current()) {
        for (Lumlog::DecodedMessage const& message : Lumlog::Reader(ring->bytes()).messages()) {
            candidates.insert(std::to_string(message.msgId));
        }
    }
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
        bool const pair =
            argument.type == ArgumentType::vport || argument.type == ArgumentType::command;
        std::size_t const width = pair ? 2 : 1;
        if (list || position < width) {
            return {argument, list ? 0 : position};
        }
        position -= width;
    }
    return {};
}

void addArgument(Candidates& candidates, Command const& command, std::size_t position,
                 std::string_view partial, Agent const& agent) {
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
    case ArgumentType::called:
        addOperations(candidates, calledType(command, agent));
        candidates.merge(pathsBehind(partial, agent, PathUse::call));
        break;
    case ArgumentType::inspected:
        addTypes(candidates);
        candidates.merge(pathsBehind(partial, agent, PathUse::inspect));
        break;
    case ArgumentType::view:
        candidates.insert(viewNames().begin(), viewNames().end());
        break;
    case ArgumentType::fap:
        addChips(candidates, agent);
        break;
    case ArgumentType::truth:
        candidates.insert({"true", "false"});
        break;
    case ArgumentType::api:
        addInstalled(candidates, agent);
        break;
    case ArgumentType::message:
        addMessages(candidates);
        break;
    case ArgumentType::command:
        if (wordsBefore == 0) {
            addFirstWords(candidates);
        }
        break;
    default:
        break;
    }
}

void addSecondWords(Candidates& candidates, Word const& first) {
    for (Command const& command : commandsOf(first.text)) {
        if (!command.second.empty()) {
            candidates.emplace(command.second);
        }
    }
}

/// Whether the words before the one under way begin a call of this command.
bool fits(Command const& command, std::span<Word const> before) {
    std::string_view const second = before.size() > 1 ? before[1].text : "";
    return commandOf(commandsOf(before[0].text), second) == &command;
}

/// What can stand behind the words `before`; `type` becomes that of the argument that it is.
Candidates candidatesFor(std::span<Word const> before, std::string_view partial, Agent const& agent,
                         ArgumentType& type) {
    Candidates candidates;
    if (before.empty()) {
        addFirstWords(candidates);
        return candidates;
    }
    if (before.size() == 1) {
        addSecondWords(candidates, before[0]);
    }
    for (Command const& command : commandsOf(before[0].text)) {
        if (fits(command, before)) {
            std::size_t const position = before.size() - command.wordCount();
            type = argumentAt(command, position).argument.type;
            addArgument(candidates, command, position, partial, agent);
            if (type == ArgumentType::option) {
                addRingOptions(candidates, before.back(), type);
            }
            if (type == ArgumentType::command && position == 1) {
                addSecondWords(candidates, before.back());
            }
        }
    }
    return candidates;
}

/// Whether more than a blank is to follow a word.
bool goesOn(std::string const& word, ArgumentType type, Agent const& agent) {
    Words words;
    try {
        words.read(word);
    } catch (Refusal const&) {
        return false; // a key that cannot be typed
    }
    std::string_view const text = words.all()[0].text;
    bool const path = type == ArgumentType::called || type == ArgumentType::inspected;
    return path ? pathGoesOn(text, agent) : text.ends_with('=');
}

/// `candidate` in quotes when the word was begun so.
std::string asTyped(std::string_view partial, std::string const& candidate) {
    bool const quote = partial.starts_with('"') && !candidate.starts_with('"');
    return quote ? asQuotedWord(candidate) : candidate;
}

} // namespace

Completion complete(std::string_view typed, Agent const& agent) {
    std::size_t const start = lastWordAt(typed);
    std::string_view const partial = typed.substr(start);
    Words words;
    try {
        words.read(typed.substr(0, start));
    } catch (Refusal const&) {
        return {}; // a line that is wrong already
    }
    Completion completion;
    ArgumentType type = ArgumentType::none;
    for (std::string const& candidate : candidatesFor(words.all(), partial, agent, type)) {
        std::string word = asTyped(partial, candidate);
        if (word.starts_with(partial)) {
            completion.words.push_back(std::move(word));
        }
    }
    completion.files = type == ArgumentType::file;
    if (completion.words.size() == 1 && goesOn(completion.words[0], type, agent)) {
        completion.goesOn = true;
        if (completion.words[0].ends_with('"') && completion.words[0] != partial) {
            completion.words[0].pop_back();
        }
    }
    return completion;
}

} // namespace VpAgent
