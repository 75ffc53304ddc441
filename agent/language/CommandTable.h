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
    value,     ///< ARG
    file,      ///< FILE
    text,      ///< TEXT
    setting,   ///< table-size=N and its like
    view,      ///< WHAT
    command,   ///< COMMAND
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
    std::string_view second; ///< empty for a command of one word
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

/// The refusal of a word that begins no command.
Refusal unknownCommand(Word const& word);

/// The command that the words name. Throws `Refusal` when there is none. `words` is not empty.
Command const& findCommand(Words const& words);

} // namespace VpAgent
