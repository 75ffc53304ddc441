#pragma once

#include "input/FileLines.h"
#include "input/LineSource.h"

#include <optional>
#include <string>

namespace VpAgent {

class Agent;

/// The lines that a person types, with a prompt, line editing, history and completion.
///
/// Lines are UTF-8 in every locale. The interrupt character (Ctrl-C) drops the line that is typed;
/// while a command runs it ends the program. One at a time, since the line editor is one for the
/// process.
///
/// The size of the screen is looked at before each prompt. While it is more than `Limits::terminal`
/// characters there is the prompt but no line editor, and the interrupt character ends the program.
class TerminalLines final : public LineSource {
public:
    /// `agent` gives the names that are completed, and sends its reports before each prompt.
    explicit TerminalLines(Agent const& agent);
    ~TerminalLines() override;
    TerminalLines(TerminalLines const&) = delete;
    TerminalLines& operator=(TerminalLines const&) = delete;

    /// Whether a person sits there: standard input and standard output are terminals, of no more
    /// than `Limits::terminal` characters, and of a type that has a possible name. In another one
    /// lines are read as from a file.
    static bool available();

    bool next(CommandLine& line) override;

private:
    std::optional<std::string> readText();
    std::optional<std::string> readWithoutEditor();

    Agent const& agent_;
    FileLines plain_; ///< where the line editor is not used
    std::string text_;
    std::size_t number_ = 0;
};

} // namespace VpAgent
