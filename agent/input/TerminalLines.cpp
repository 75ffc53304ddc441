#include "input/TerminalLines.h"

#include "Limits.h"
#include "input/TerminalCompletion.h"
#include "state/Agent.h"

#include <editline/readline.h>
#include <langinfo.h>
#include <sys/ioctl.h>
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

/// The line editor keeps three copies of the screen.
bool hasUsualSize() {
    winsize size{};
    return ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) != 0 ||
           U32{size.ws_row} * size.ws_col <= Limits::terminal;
}

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

/// The next line that is not dropped; null at the end.
Line typedLine() {
    for (;;) {
        lineDropped = false;
        Line line(::readline("vpagent> "), &std::free);
        if (lineDropped) {
            std::puts("^C");
        } else if (line != nullptr && std::strlen(line.get()) > Limits::line) {
            std::printf("error: the line has more than %zu bytes, expected a shorter one\n",
                        Limits::line);
        } else {
            return line;
        }
    }
}

} // namespace

TerminalLines::TerminalLines(Agent const& agent) : agent_(agent) {
    static char programName[] = "vpagent";
    takeUtf8();
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
    return ::isatty(STDIN_FILENO) == 1 && ::isatty(STDOUT_FILENO) == 1 && hasUsualSize();
}

bool TerminalLines::next(CommandLine& line) {
    agent_.reporter.flush();
    Line const typed = typedLine();
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
