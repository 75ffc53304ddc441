#include "input/TerminalLines.h"

#include "language/Completion.h"
#include "state/Agent.h"

#include <editline/readline.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace VpAgent {

namespace {

// The line editor calls plain functions, so what they need stands here while there is a terminal.
Agent const* agentAtTerminal = nullptr;
std::vector<std::string> candidates;

constexpr int blank = 0x20;

char* nextCandidate(char const*, int state) {
    static std::size_t at = 0;
    at = state == 0 ? 0 : at + 1;
    return at < candidates.size() ? ::strdup(candidates[at].c_str()) : nullptr;
}

char** completeWord(char const* text, int, int end) {
    std::string_view const typed =
        std::string_view(rl_line_buffer).substr(0, static_cast<std::size_t>(end));
    Completion const completion = complete(typed, *agentAtTerminal);
    rl_attempted_completion_over = completion.files ? 0 : 1;
    candidates = completion.words;
    bool const goesOn = candidates.size() == 1 && candidates[0].ends_with('=');
    rl_completion_append_character = goesOn ? 0 : blank;
    return candidates.empty() ? nullptr : rl_completion_matches(text, nextCandidate);
}

} // namespace

TerminalLines::TerminalLines(Agent const& agent) : agent_(agent) {
    static char programName[] = "vpagent";
    static char wordBreaks[] = " \t";
    agentAtTerminal = &agent;
    rl_readline_name = programName;
    rl_completer_word_break_characters = wordBreaks;
    rl_attempted_completion_function = completeWord;
    using_history();
}

TerminalLines::~TerminalLines() {
    rl_attempted_completion_function = nullptr;
    agentAtTerminal = nullptr;
}

bool TerminalLines::available() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1;
}

bool TerminalLines::next(CommandLine& line) {
    agent_.reporter.flush();
    std::unique_ptr<char, decltype(&std::free)> const typed(::readline("vpagent> "), &std::free);
    if (typed == nullptr) {
        std::puts("");
        std::fflush(stdout);
        return false;
    }
    std::string const former = std::exchange(text_, typed.get());
    if (!text_.empty() && text_ != former) {
        add_history(text_.c_str());
    }
    line = {"-", ++number_, text_, true};
    return true;
}

} // namespace VpAgent
