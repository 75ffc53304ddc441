#include "language/CommandTable.h"

#include "commands/Handlers.h"
#include "language/StartSettings.h"
#include "text/Utf8.h"

#include <unordered_map>

namespace VpAgent {

namespace {

constexpr Argument name{ArgumentType::client, Count::one};
constexpr Argument maybeName{ArgumentType::client, Count::optional};
constexpr Argument names{ArgumentType::client, Count::any};
constexpr Argument vport{ArgumentType::vport, Count::one};
constexpr Argument index{ArgumentType::index, Count::one};
constexpr Argument settings{ArgumentType::setting, Count::any};
constexpr Argument operation{ArgumentType::operation, Count::one};
constexpr Argument values{ArgumentType::value, Count::any};
constexpr Argument file{ArgumentType::file, Count::one};
constexpr Argument maybeView{ArgumentType::view, Count::optional};
constexpr Argument texts{ArgumentType::text, Count::some};
constexpr Argument maybeCommand{ArgumentType::command, Count::optional};

constexpr Command table[] = {
    {"client",
     "add",
     {name},
     "makes a client, or brings one back that was removed",
     Handlers::clientAdd},
    {"client",
     "remove",
     {name},
     "takes a client's config out; its record and its indices stay",
     Handlers::clientRemove},
    {"client",
     "retire",
     {name},
     "withdraws all that a client requests, and forgets it",
     Handlers::clientRetire},
    {"request", "", {name, vport}, "puts a virtual port into a client's config", Handlers::request},
    {"withdraw",
     "",
     {name, vport},
     "takes a virtual port out of a client's config",
     Handlers::withdraw},
    {"put",
     "reference",
     {vport, index, names},
     "writes an entry of the reference list",
     Handlers::putReference},
    {"put",
     "status",
     {name, vport, index},
     "writes an entry of a client's status",
     Handlers::putStatus},
    {"put",
     "waiting",
     {vport},
     "enters a virtual port among those that wait",
     Handlers::putWaiting},
    {"put", "boot", {vport, index}, "writes an entry of the boot status", Handlers::putBoot},
    {"drop",
     "reference",
     {vport},
     "deletes an entry of the reference list",
     Handlers::dropReference},
    {"drop",
     "status",
     {name, vport},
     "deletes an entry of a client's status",
     Handlers::dropStatus},
    {"drop",
     "waiting",
     {vport},
     "deletes a virtual port from those that wait",
     Handlers::dropWaiting},
    {"drop", "boot", {vport}, "deletes an entry of the boot status", Handlers::dropBoot},
    {"clear", "references", {}, "empties the reference list", Handlers::clearReferences},
    {"clear", "waiting", {}, "empties the list of those that wait", Handlers::clearWaiting},
    {"clear", "boot", {}, "empties the boot status", Handlers::clearBoot},
    {"save-boot",
     "",
     {},
     "copies the indices in use to the boot status, as before going down",
     Handlers::saveBoot},
    {"import",
     "",
     {file, maybeName},
     "requests what a network's own JSON file says",
     Handlers::import},
    {"start", "", {settings}, "creates the state machine", Handlers::start},
    {"stop", "", {}, "destroys the state machine; the records stay", Handlers::stop},
    {"restart",
     "",
     {settings},
     "stops and starts, with the last settings but those given",
     Handlers::restart},
    {"call", "", {operation, values}, "calls an operation of the state machine", Handlers::call},
    {"call-client",
     "",
     {name, operation, values},
     "calls an operation of a client's allocator",
     Handlers::callClient},
    {"clear-stale",
     "",
     {},
     "releases the indices that no client came back for",
     Handlers::clearStale},
    {"verify",
     "",
     {},
     "checks that records and pool agree, in a copy of the process",
     Handlers::verify},
    {"dump", "", {}, "prints the whole state as one JSON object", Handlers::dump},
    {"show", "", {maybeView, maybeName}, "shows the state, or one view of it", Handlers::show},
    {"begin", "", {}, "begins a unit of the state file", Handlers::begin},
    {"commit", "", {}, "ends the unit: all of it is on disk", Handlers::commit},
    {"echo", "", {texts}, "prints its words", Handlers::echo},
    {"help", "", {maybeCommand}, "explains the commands, or one of them", Handlers::help},
    {"quit", "", {}, "ends the program", Handlers::quit},
};

std::string label(ArgumentType type) {
    switch (type) {
    case ArgumentType::none:
        return "";
    case ArgumentType::client:
        return "NAME";
    case ArgumentType::vport:
        return "VPORT";
    case ArgumentType::index:
        return "INDEX";
    case ArgumentType::operation:
        return "OPERATION";
    case ArgumentType::value:
        return "ARG";
    case ArgumentType::file:
        return "FILE";
    case ArgumentType::text:
        return "TEXT";
    case ArgumentType::setting:
        return "SETTING";
    case ArgumentType::view:
        return "WHAT";
    case ArgumentType::command:
        return "COMMAND";
    }
    return "";
}

using Groups = std::unordered_map<std::string_view, std::span<Command const>>;

Groups makeGroups() {
    Groups groups;
    std::span<Command const> rest(table);
    while (!rest.empty()) {
        std::size_t count = 1;
        while (count < rest.size() && rest[count].word == rest[0].word) {
            ++count;
        }
        groups.emplace(rest[0].word, rest.first(count));
        rest = rest.subspan(count);
    }
    return groups;
}

/// The last of several words is joined with "or": `client add, client remove or client retire`.
class Alternatives {
public:
    void add(std::string const& word) {
        if (!last_.empty()) {
            text_ += text_.empty() ? last_ : ", " + last_;
        }
        last_ = word;
    }
    std::string text() const { return text_.empty() ? last_ : text_ + " or " + last_; }

private:
    std::string text_;
    std::string last_;
};

std::string listed(std::span<Command const> commands) {
    Alternatives alternatives;
    for (Command const& command : commands) {
        alternatives.add(std::string(command.word) + ' ' + std::string(command.second));
    }
    return alternatives.text();
}

std::string firstWords() {
    Alternatives alternatives;
    std::string_view former;
    for (Command const& command : table) {
        if (command.word != former) {
            alternatives.add(std::string(command.word));
        }
        former = command.word;
    }
    return alternatives.text();
}

} // namespace

std::string Command::usage() const {
    std::string text(word);
    if (!second.empty()) {
        text += ' ' + std::string(second);
    }
    std::string closing;
    for (Argument const argument : arguments) {
        if (argument.type == ArgumentType::none) {
            continue;
        }
        if (argument.type == ArgumentType::setting) {
            text += ' ' + settingWords();
            continue;
        }
        bool const optional = argument.count == Count::optional || argument.count == Count::any;
        bool const several = argument.count == Count::any || argument.count == Count::some;
        text += optional ? " [" : " ";
        text += label(argument.type) + (several ? "..." : "");
        closing += optional ? "]" : "";
    }
    return text + closing;
}

std::span<Command const> commandTable() { return table; }

std::span<Command const> commandsOf(std::string_view word) {
    static Groups const groups = makeGroups();
    auto const found = groups.find(word);
    return found == groups.end() ? std::span<Command const>() : found->second;
}

Refusal unknownCommand(Word const& word) {
    return {"unknown command " + inQuotes(word.text) + ", expected " + firstWords(), word.place()};
}

Command const& findCommand(Words const& words) {
    Word const& first = words.all()[0];
    auto const commands = commandsOf(first.text);
    if (commands.empty()) {
        throw unknownCommand(first);
    }
    if (commands[0].second.empty()) {
        return commands[0];
    }
    if (words.all().size() < 2) {
        throw Refusal("a word is missing, expected " + listed(commands), Place{words.end(), 0});
    }
    Word const& second = words.all()[1];
    for (Command const& command : commands) {
        if (command.second == second.text) {
            return command;
        }
    }
    throw Refusal("unknown command " +
                      inQuotes(std::string(first.text) + ' ' + std::string(second.text)) +
                      ", expected " + listed(commands),
                  second.place());
}

} // namespace VpAgent
