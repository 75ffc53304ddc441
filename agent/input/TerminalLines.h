#pragma once

#include "input/LineSource.h"

#include <string>

namespace VpAgent {

class Agent;

/// The lines that a person types, with a prompt, line editing, history and completion.
///
/// Lines are UTF-8 in every locale. The interrupt character (Ctrl-C) drops the line that is typed;
/// while a command runs it ends the program. One at a time, since the line editor is one for the
/// process.
class TerminalLines final : public LineSource {
public:
    /// `agent` gives the names that are completed, and sends its reports before each prompt.
    explicit TerminalLines(Agent const& agent);
    ~TerminalLines() override;
    TerminalLines(TerminalLines const&) = delete;
    TerminalLines& operator=(TerminalLines const&) = delete;

    /// Whether a person sits there: standard input and standard output are terminals, of no more
    /// than `Limits::terminal` characters. In a larger one lines are read as from a file.
    static bool available();

    bool next(CommandLine& line) override;

private:
    Agent const& agent_;
    std::string text_;
    std::size_t number_ = 0;
};

} // namespace VpAgent
