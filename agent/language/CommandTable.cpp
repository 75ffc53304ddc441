#include "language/CommandTable.h"

#include "commands/Handlers.h"
#include "language/RingOptions.h"
#include "language/StartSettings.h"
#include "text/Alternatives.h"
#include "text/Utf8.h"

#include <unordered_map>

namespace VpAgent {

namespace {

constexpr Argument name{ArgumentType::client, Count::one};
constexpr Argument maybeName{ArgumentType::client, Count::optional};
constexpr Argument names{ArgumentType::client, Count::any};
constexpr Argument vport{ArgumentType::vport, Count::one};
constexpr Argument index{ArgumentType::index, Count::one};
constexpr Argument anySettings{ArgumentType::setting, Count::any};
constexpr Argument operation{ArgumentType::operation, Count::one};
constexpr Argument called{ArgumentType::called, Count::one};
constexpr Argument maybeInspected{ArgumentType::inspected, Count::optional};
constexpr Argument values{ArgumentType::value, Count::any};
constexpr Argument file{ArgumentType::file, Count::one};
constexpr Argument anyRingOptions{ArgumentType::option, Count::any};
constexpr Argument messages{ArgumentType::message, Count::some};
constexpr Argument maybeView{ArgumentType::view, Count::optional};
constexpr Argument fap{ArgumentType::fap, Count::one};
constexpr Argument intfs{ArgumentType::intf, Count::any};
constexpr Argument truth{ArgumentType::truth, Count::one};
constexpr Argument api{ArgumentType::api, Count::one};
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
    {"start", "", {anySettings}, "creates the state machine", Handlers::start},
    {"stop", "", {}, "destroys the state machine; the records stay", Handlers::stop},
    {"restart",
     "",
     {anySettings},
     "stops and starts, with the last settings but those given",
     Handlers::restart},
    {"call",
     "",
     {called, values},
     "calls an operation of the state machine, or of the entity at PATH",
     Handlers::call},
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
    {"mcast",
     "create",
     {},
     "makes the multicast entities, in memory only: no state file keeps them",
     Handlers::mcastCreate},
    {"mcast",
     "higig",
     {fap, intfs},
     "gives a forwarding chip its Higig interfaces",
     Handlers::mcastHigig},
    {"mcast", "higig-del", {fap}, "removes a chip from the Higig sets", Handlers::mcastHigigDel},
    {"mcast", "higig-clear", {}, "removes all chips, one by one", Handlers::mcastHigigClear},
    {"mcast",
     "backplane",
     {intfs},
     "replaces the backplane interfaces that are allowed",
     Handlers::mcastBackplane},
    {"mcast",
     "install",
     {api},
     "installs a sample group API, which reports its calls",
     Handlers::mcastInstall},
    {"mcast", "remove", {}, "removes the installed group API", Handlers::mcastRemove},
    {"mcast",
     "update",
     {fap, truth},
     "lets the group API update the L2 bitmaps of a chip",
     Handlers::mcastUpdate},
    {"mcast",
     "update-all",
     {},
     "lets the group API update those of all chips",
     Handlers::mcastUpdateAll},
    {"mcast", "show", {}, "shows the multicast entities", Handlers::mcastShow},
    {"mcast", "destroy", {}, "lets the multicast entities go", Handlers::mcastDestroy},
    {"dump", "", {}, "prints the whole state as one JSON object", Handlers::dump},
    {"show",
     "ring",
     {anyRingOptions},
     "shows the records of the ring buffer, or writes them as a trace",
     Handlers::showRing},
    {"show", "", {maybeView, maybeName}, "shows the state, or one view of it", Handlers::show},
    {"inspect",
     "",
     {maybeInspected},
     "shows the types that can be reached by name, one of them, or an entity",
     Handlers::inspect},
    {"ring",
     "dump",
     {file},
     "writes the ring buffer to a file, for 'show ring --from FILE'",
     Handlers::ringDump},
    {"message", "", {}, "lists the messages of the ring buffer by number", Handlers::message},
    {"message",
     "off",
     {messages},
     "keeps messages out of the ring buffer from now on",
     Handlers::messageOff},
    {"message", "on", {messages}, "lets messages in again", Handlers::messageOn},
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
    case ArgumentType::called:
        return "[PATH/]OPERATION";
    case ArgumentType::inspected:
        return "TYPE|PATH";
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
    case ArgumentType::fap:
        return "FAP";
    case ArgumentType::intf:
        return "INTF";
    case ArgumentType::truth:
        return "true|false";
    case ArgumentType::api:
        return "NAME";
    case ArgumentType::option:
        return "OPTION";
    case ArgumentType::message:
        return "NUMBER";
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

std::string listed(std::span<Command const> commands) {
    Alternatives alternatives;
    for (Command const& command : commands) {
        alternatives.add(std::string(command.word) + (command.second.empty() ? "" : " ") +
                         std::string(command.second));
    }
    return alternatives.text();
}

std::string firstWords() {
    Alternatives alternatives;
    std::string_view former;
    for (Command const& command : table) {
        if (command.word != former) {
            alternatives.add(command.word);
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
        if (argument.type == ArgumentType::option) {
            text += ' ' + ringOptionWords();
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

Command const* commandOf(std::span<Command const> commands, std::string_view second) {
    Command const* plain = nullptr;
    for (Command const& command : commands) {
        if (command.second == second) {
            return &command;
        }
        bool const alone = commands.size() == 1;
        bool const takesMore = alone || command.arguments[0].type != ArgumentType::none;
        plain = command.second.empty() && takesMore ? &command : plain;
    }
    return plain;
}

Refusal unknownCommand(Word const& word) {
    return {"unknown command " + inQuotes(word.text) + ", expected " + firstWords(), word.place()};
}

Refusal unknownCommand(Word const& first, Word const& second) {
    std::string const both = std::string(first.text) + ' ' + std::string(second.text);
    return {"unknown command " + inQuotes(both) + ", expected " + listed(commandsOf(first.text)),
            second.place()};
}

Command const& findCommand(Words const& words) {
    Word const& first = words.all()[0];
    auto const commands = commandsOf(first.text);
    if (commands.empty()) {
        throw unknownCommand(first);
    }
    bool const alone = words.all().size() < 2;
    if (auto const* const command = commandOf(commands, alone ? "" : words.all()[1].text)) {
        return *command;
    }
    if (alone) {
        throw Refusal("a word is missing, expected " + listed(commands), Place{words.end(), 0});
    }
    throw unknownCommand(first, words.all()[1]);
}

} // namespace VpAgent
