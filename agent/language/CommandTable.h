#pragma once

#include "language/Words.h"

#include <array>
#include <cstddef>
#include <span>
#include <string>
#include <string_view>

namespace VpAgent {

class Agent;
struct Arguments;
struct Reply;

/// What an argument is: how it is read, how it is shown in help, and what completes it.
enum class ArgumentType {
    none,      ///< the end of the arguments
    client,    ///< NAME
    vport,     ///< VPORT: two words, a kind and a key
    index,     ///< INDEX
    operation, ///< OPERATION
    called,    ///< [PATH/]OPERATION
    inspected, ///< TYPE or PATH
    value,     ///< ARG
    file,      ///< FILE
    text,      ///< TEXT
    setting,   ///< table-size=N and its like
    view,      ///< WHAT
    option,    ///< --from FILE and its like
    message,   ///< NUMBER, of a message of the ring buffer
    fap,       ///< FAP
    intf,      ///< INTF
    truth,     ///< true or false
    api,       ///< NAME of a multicast group API
    command,   ///< COMMAND: its first word, or both
};

enum class Count { one, optional, any, some };

struct Argument {
    ArgumentType type = ArgumentType::none;
    Count count = Count::one;
};

/// One command: its words, its arguments, what it does, and the function that does it.
///
/// A handler either carries its command out and replies, or throws `Refusal` before it has changed
/// anything.
struct Command {
    std::string_view word;
    std::string_view second; ///< empty for a command of one word, or what its other rows are not
    std::array<Argument, 3> arguments;
    std::string_view does; ///< a sentence for help
    Reply (*run)(Agent& agent, Arguments const& arguments);

    std::size_t wordCount() const noexcept { return second.empty() ? 1 : 2; }

    /// `put status NAME VPORT INDEX`
    std::string usage() const;
};

/// All commands, those with the same first word side by side.
std::span<Command const> commandTable();

/// The commands that begin with a word; none when it is unknown.
std::span<Command const> commandsOf(std::string_view word);

/// Of such commands the one that a second word names: the one of these two words, or else the one
/// of one word, if there is one and it takes arguments. Null when there is neither. `second` is
/// empty when there is no such word.
Command const* commandOf(std::span<Command const> commands, std::string_view second);

/// The refusal of a word that begins no command.
Refusal unknownCommand(Word const& word);

/// The refusal of two words that name no command, of which the first begins some.
Refusal unknownCommand(Word const& first, Word const& second);

/// The command that the words name. Throws `Refusal` when there is none. `words` is not empty.
Command const& findCommand(Words const& words);

} // namespace VpAgent
