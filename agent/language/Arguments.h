#pragma once

#include "devbus/FapId.h"
#include "interface/IntfSet.h"
#include "language/Vport.h"
#include "language/Words.h"
#include "pelo/Integers.h"

#include <optional>
#include <span>

namespace VpAgent {

struct Command;

/// The arguments of one command, read and checked; only those that the command takes are there.
struct Arguments {
    Word command;                 ///< the command itself, all its words
    Word const* client = nullptr; ///< a client name
    std::optional<Vport> vport;
    U16 index = 0;
    Devbus::FapId fap;
    Interface::IntfSet intfs;
    bool truth = false;
    Word const* word = nullptr; ///< an operation, a file, a view, a group API
    std::span<Word const> rest; ///< a list of names, texts, arguments or settings, a command
};

/// Reads the arguments of `command` from the words behind it. Throws `Refusal` with the place: a
/// missing word, one too many, or one that is not what it should be.
Arguments parseArguments(Command const& command, Words const& words);

} // namespace VpAgent
