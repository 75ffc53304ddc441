#pragma once

#include "output/McastEvent.h"
#include "output/Reply.h"
#include "pelo/Integers.h"
#include "text/Refusal.h"

#include <cstddef>
#include <string_view>

namespace VpAgent {

class Agent;

/// One line of commands: where it comes from, and what it says.
struct CommandLine {
    std::string_view source; ///< the script's name
    std::size_t number = 0;  ///< of the line in its script, from 1
    std::string_view text;
    bool terminal = false; ///< a person typed it and sees it
};

/// Shows what happens, in the order in which it happens.
class Reporter {
public:
    virtual ~Reporter() = default;

    virtual void trace(U32 level, std::string_view text) = 0;
    virtual void log(std::string_view id, U32 severity, std::string_view text) = 0;

    virtual void multicast(McastEvent const& event) = 0;

    /// A command was carried out. `command` is its first word.
    virtual void done(CommandLine const& line, std::string_view command, Reply const& reply,
                      Agent const& agent) = 0;

    /// A command was refused.
    virtual void refused(CommandLine const& line, Refusal const& refusal) = 0;

    /// Sends everything that was reported so far on its way.
    virtual void flush() noexcept = 0;
};

} // namespace VpAgent
