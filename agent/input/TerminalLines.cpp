#include "input/TerminalLines.h"

#include "Limits.h"
#include "input/EditorSurroundings.h"
#include "input/TerminalCompletion.h"
#include "state/Agent.h"

#include <editline/readline.h>
#include <langinfo.h>
#include <termios.h>
#include <unistd.h>

#include <clocale>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <string_view>
#include <utility>

namespace VpAgent {

namespace {

using Line = std::unique_ptr<char, decltype(&std::free)>;

constexpr char const* prompt = "vpagent> ";

/// The line editor drops characters that the locale does not have, so that another command would be
/// run than was typed. Commands are UTF-8, whatever the locale is.
void takeUtf8() {
    std::setlocale(LC_CTYPE, "");
    if (std::string_view(::nl_langinfo(CODESET)) != "UTF-8") {
        std::setlocale(LC_CTYPE, "C.UTF-8");
    }
}

bool lineDropped = false;

int dropLine(int, int) {
    lineDropped = true;
    rl_done = 1;
    return 0;
}

int raiseQuit(int, int) { return std::raise(SIGQUIT); }

int raiseStop(int, int) { return std::raise(SIGTSTP); }

/// What the terminal's characters for signals do while a line is typed. The one that interrupts
/// drops the line, as in shells, and does not end the program, and a database in memory with it.
struct SignalKey {
    int character; ///< in the terminal's settings
    char const* name;
    rl_command_func_t* act;
};

constexpr SignalKey signalKeys[] = {
    {VINTR, "drop-line", dropLine},
    {VQUIT, "raise-quit", raiseQuit},
    {VSUSP, "raise-stop", raiseStop},
};

void bindSignalKeys() {
    termios settings{};
    if (::tcgetattr(STDIN_FILENO, &settings) != 0) {
        return;
    }
    for (SignalKey const& key : signalKeys) {
        cc_t const character = settings.c_cc[key.character];
        if (character != _POSIX_VDISABLE) {
            rl_add_defun(key.name, key.act, character);
        }
    }
}

/// Hands those characters to the line editor, which sets up the terminal anew for each line before
/// it calls this, and back when the line is complete.
int takeSignalKeys() { return rl_parse_and_bind("setty -d -isig"); }

/// Keeps the line editor from the signal of a new screen size while a line is typed: its handler
/// takes any size. It asks for the size before each prompt as well, and that is soon enough.
class SizeKept {
public:
    SizeKept() {
        sigset_t resized;
        ::sigemptyset(&resized);
        ::sigaddset(&resized, SIGWINCH);
        ::sigprocmask(SIG_BLOCK, &resized, &former_);
    }
    ~SizeKept() { ::sigprocmask(SIG_SETMASK, &former_, nullptr); }
    SizeKept(SizeKept const&) = delete;
    SizeKept& operator=(SizeKept const&) = delete;

private:
    sigset_t former_{};
};

Line editedLine() {
    SizeKept const sizeKept;
    lineDropped = false;
    return {::readline(prompt), &std::free};
}

/// Whether the line that was typed is none, which the terminal is told.
bool isDropped(Line const& line) {
    if (lineDropped) {
        std::puts("^C");
        return true;
    }
    if (line != nullptr && std::strlen(line.get()) > Limits::line) {
        std::printf("error: the line has more than %zu bytes, expected a shorter one\n",
                    Limits::line);
        return true;
    }
    return false;
}

} // namespace

TerminalLines::TerminalLines(Agent const& agent) : agent_(agent), plain_("-", [] {}) {
    static char programName[] = "vpagent";
    takeUtf8();
    leaveOutUnusualSettings();
    rl_readline_name = programName;
    using_history();
    completeFor(&agent);
    bindSignalKeys();
    rl_pre_input_hook = takeSignalKeys;
}

TerminalLines::~TerminalLines() {
    rl_pre_input_hook = nullptr;
    completeFor(nullptr);
}

bool TerminalLines::available() {
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1 && hasUsualType() &&
           hasUsualScreen();
}

/// Nothing at the end.
std::optional<std::string> TerminalLines::readText() {
    for (;;) {
        if (!hasUsualScreen()) {
            return readWithoutEditor();
        }
        Line const line = editedLine();
        if (!isDropped(line)) {
            return line == nullptr ? std::nullopt : std::optional<std::string>(line.get());
        }
    }
}

std::optional<std::string> TerminalLines::readWithoutEditor() {
    std::fputs(prompt, stdout);
    std::fflush(stdout);
    CommandLine line;
    return plain_.next(line) ? std::optional<std::string>(line.text) : std::nullopt;
}

bool TerminalLines::next(CommandLine& line) {
    agent_.reporter.flush();
    std::optional<std::string> typed = readText();
    if (!typed) {
        std::puts("");
        std::fflush(stdout);
        return false;
    }
    std::string const former = std::exchange(text_, *std::move(typed));
    if (!text_.empty() && text_ != former) {
        add_history(text_.c_str());
    }
    line = {"-", ++number_, text_, true};
    return true;
}

} // namespace VpAgent
