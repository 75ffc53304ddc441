#include "Limits.h"
#include "agent/MeasuredRun.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/ioctl.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <fstream>
#include <string>
#include <string_view>
#include <thread>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

/// The program at a terminal, as a person has it.
class Terminal : public testing::Test {
protected:
    /// What is added to the environment.
    using Variables = std::vector<std::pair<char const*, std::string>>;

    explicit Terminal(winsize const* size = nullptr, Variables const& variables = {})
        : process_(::forkpty(&terminal_, nullptr, nullptr, size)) {
        if (process_ == 0) {
            [[maybe_unused]] int const entered = ::chdir(folder_.path().c_str());
            ::setenv("TERM", "dumb", 1);
            ::setenv("LC_ALL", "C", 1); // the locale that knows least
            for (auto const& [name, value] : variables) {
                ::setenv(name, value.c_str(), 1);
            }
            signalsAsUsual();
            std::string const program = vpagentProgram();
            ::execl(program.c_str(), program.c_str(), nullptr);
            ::_exit(127);
        }
    }

    ~Terminal() override { ::close(terminal_); }

    /// Waits, for at most a minute, until the terminal shows `text`; what it showed up to there
    /// is then done with.
    bool shows(std::string_view text) {
        do {
            std::size_t const at = shown_.find(text);
            if (at != std::string::npos) {
                shown_.erase(0, at + text.size());
                return true;
            }
        } while (readMore());
        ADD_FAILURE() << "the terminal does not show \"" << text << "\" but:\n" << shown_;
        return false;
    }

    /// Waits until the terminal shows so many bytes more, and forgets them.
    bool showsAsMuchAs(std::size_t size) {
        while (shown_.size() < size) {
            if (!readMore()) {
                return false;
            }
        }
        shown_.clear();
        return true;
    }

    /// All that is not yet done with, once the program has ended.
    std::string const& everythingShown() {
        while (readMore()) {
        }
        return shown_;
    }

    /// Types once the line editor has the terminal. It shows its prompt a moment earlier, and an
    /// end of file typed in between would be the terminal's, not the editor's.
    void type(std::string_view text) const {
        for (int waited = 0; isCooked(); ++waited) {
            ASSERT_LT(waited, patience) << "the line editor does not take the terminal";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        send(text);
    }

    /// Types at once.
    void send(std::string_view text) const {
        ASSERT_EQ(::write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    /// Gives the screen another size, which sends SIGWINCH to the program.
    void resize(unsigned short rows, unsigned short columns) const {
        winsize const size{rows, columns, 0, 0};
        ASSERT_EQ(::ioctl(terminal_, TIOCSWINSZ, &size), 0);
        ASSERT_EQ(::kill(process_, SIGWINCH), 0); // whatever the size was before
    }

    /// What the program took of memory so far, at most; it must not have ended.
    long peakMebibytes() const {
        std::ifstream status("/proc/" + std::to_string(process_) + "/status");
        for (std::string line; std::getline(status, line);) {
            if (line.starts_with("VmHWM:")) {
                return std::stol(line.substr(6)) / 1024;
            }
        }
        ADD_FAILURE() << "the program has no memory";
        return 0;
    }

    /// What it has shown since.
    std::string const& shown() const noexcept { return shown_; }

    TemporaryFolder const folder_; ///< where the program stands

    /// The status that the program ends with; -1 when it has not ended after a minute.
    int exitStatus() const {
        int const status = ending();
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

    /// The signal that ends the program; -1 when none has after a minute.
    int endingSignal() const {
        int const status = ending();
        return WIFSIGNALED(status) ? WTERMSIG(status) : -1;
    }

private:
    /// False when nothing more comes within a minute.
    bool readMore() {
        pollfd ready{terminal_, POLLIN, 0};
        std::array<char, 4096> buffer{};
        ssize_t const count =
            ::poll(&ready, 1, patience) == 1 ? ::read(terminal_, buffer.data(), buffer.size()) : 0;
        shown_.append(buffer.data(), static_cast<std::size_t>(count < 0 ? 0 : count));
        return count > 0;
    }

    /// How the program ended, as `waitpid` tells it; -1 when it has not after a minute.
    int ending() const {
        int status = 0;
        for (int waited = 0; ::waitpid(process_, &status, WNOHANG) == 0; ++waited) {
            if (waited == patience) {
                ::kill(process_, SIGKILL);
                return -1;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return status;
    }

    static constexpr int patience = 60000; ///< milliseconds

    bool isCooked() const {
        termios settings{};
        return ::tcgetattr(terminal_, &settings) == 0 && (settings.c_lflag & ICANON) != 0;
    }

    int terminal_ = -1;
    pid_t process_;
    std::string shown_;
};

TEST_F(Terminal, CompletesWordsAndTellsTheOutcome) {
    ASSERT_TRUE(shows("vpagent> "));
    type("client add leaf-1\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("start table-size=64\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("req\tlea\tvl\t100\n");
    ASSERT_TRUE(shows("vlan 100: index 63"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, CompletesNoFileNameThatATerminalWouldObey) {
    for (char const* const name :
         {"a-plain.json", "a\x1B[31m.json", "a\xE2\x80\xAE.json", "b\x07"}) {
        folder_.write(name, "{}");
    }
    ASSERT_TRUE(shows("vpagent> "));
    type("import a\t x\n");
    ASSERT_TRUE(shows("import a-plain.json  x\r\nimport: client x: nothing to request\r\n"));
    ASSERT_TRUE(shows("vpagent> "));
    type("import b\t\n");
    ASSERT_TRUE(shows("import b\r\nerror: "));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 2);
}

TEST_F(Terminal, GoesOnAfterALineThatIsTooLong) {
    std::string const part(1000, 'x');
    ASSERT_TRUE(shows("vpagent> "));
    type("echo ");
    for (std::size_t sent = 0; sent <= VpAgent::Limits::line; sent += part.size()) {
        send(part);
        ASSERT_TRUE(showsAsMuchAs(part.size()));
    }
    send("\n");
    ASSERT_TRUE(shows("error: the line has more than 1048576 bytes, expected a shorter one"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

/// A terminal that says it has more characters than the line editor should keep.
class HugeTerminal : public Terminal {
protected:
    static constexpr winsize size{65535, 65535, 0, 0};
    HugeTerminal() : Terminal(&size) {}
};

TEST_F(HugeTerminal, IsReadLikeAFile) {
    send("echo still\nquit\n");
    ASSERT_TRUE(shows("\nstill\r\n"));
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_EQ(shown().find("vpagent> "), std::string::npos);
}

/// Mebibytes: far less than three copies of a screen beyond the limit take.
long const littleForAScreen = memoryIsPadded() ? 500 : 60;

TEST_F(Terminal, OutlivesAScreenThatGrowsBeyondTheLimit) {
    ASSERT_TRUE(shows("vpagent> "));
    type("client add leaf-1\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("echo on");
    ASSERT_TRUE(shows("echo on"));
    resize(65535, 65535);
    type("ward\n"); // the line under way goes on
    ASSERT_TRUE(shows("\nonward\r\nvpagent> "));
    send("show clients leaf\t\n"); // no line editor, no completion
    ASSERT_TRUE(shows("error: "));
    ASSERT_TRUE(shows("vpagent> "));
    send("echo \"still here\"\n");
    ASSERT_TRUE(shows("\nstill here\r\nvpagent> "));
    resize(30000, 30000);
    send("echo twice\n");
    ASSERT_TRUE(shows("\ntwice\r\nvpagent> "));
    EXPECT_LT(peakMebibytes(), littleForAScreen);
    resize(24, 80);
    send("echo back\n"); // the last line without it
    ASSERT_TRUE(shows("\nback\r\nvpagent> "));
    type("show clients leaf\t\n");
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT leaf-1"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 2);
}

/// A terminal whose lines the line editor breaks where the screen ends.
class TerminalWithColumns : public Terminal {
protected:
    TerminalWithColumns() : Terminal(nullptr, {{"TERM", "vt100"}}) {}
};

TEST_F(TerminalWithColumns, TakesANewSizeWithTheNextPrompt) {
    ASSERT_TRUE(shows("vpagent> "));
    resize(24, 20);
    type("echo a\n");
    ASSERT_TRUE(shows("\na\r\nvpagent> "));
    type("echo 0123456789"); // twenty characters up to the 5
    ASSERT_TRUE(shows("echo 012345 \b6789"));
    type("\n");
    ASSERT_TRUE(shows("\n0123456789\r\nvpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, EndsAtTheEndOfInputAlsoWithoutTheLineEditor) {
    ASSERT_TRUE(shows("vpagent> "));
    resize(65535, 65535);
    type("echo a\n");
    ASSERT_TRUE(shows("\na\r\nvpagent> "));
    send("\x04");
    EXPECT_EQ(exitStatus(), 0);
}

/// A terminal without a size, of which the environment says that it is huge.
class TerminalOfAHugeEnvironment : public Terminal {
protected:
    TerminalOfAHugeEnvironment()
        : Terminal(nullptr, {{"TERM", "xterm"}, {"LINES", "30000"}, {"COLUMNS", "30000"}}) {}
};

TEST_F(TerminalOfAHugeEnvironment, IsReadLikeAFile) {
    send("echo still\n");
    ASSERT_TRUE(shows("\nstill\r\n"));
    EXPECT_LT(peakMebibytes(), littleForAScreen);
    send("quit\n");
    EXPECT_EQ(exitStatus(), 0);
    EXPECT_EQ(shown().find("vpagent> "), std::string::npos);
}

/// A type of terminals that nobody named so.
class TerminalOfAnImpossibleType : public Terminal {
protected:
    TerminalOfAnImpossibleType() : Terminal(nullptr, {{"TERM", "x\x1B[2J\x07"}}) {}
};

TEST_F(TerminalOfAnImpossibleType, IsReadLikeAFileAndNotShown) {
    send("echo still\nquit\n");
    EXPECT_EQ(exitStatus(), 0);
    std::string const all = everythingShown();
    EXPECT_NE(all.find("\nstill\r\n"), std::string::npos) << all;
    EXPECT_EQ(all.find_first_of("\x1B\x07"), std::string::npos) << all;
}

/// Settings of the line editor that never end.
class TerminalWithEndlessSettings : public Terminal {
protected:
    TerminalWithEndlessSettings() : Terminal(nullptr, {{"EDITRC", "/dev/zero"}}) {}
};

TEST_F(TerminalWithEndlessSettings, DoesNotReadThem) {
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

/// A home folder with settings of the line editor, which make Ctrl-G type a word.
template <std::size_t size> class Home {
protected:
    TemporaryFolder home_;
    Home() {
        std::string settings = "bind -s ^G agreed\n";
        settings.resize(size, '\n');
        home_.write(".editrc", settings);
    }
};

template <std::size_t size> class TerminalAtHome : private Home<size>, public Terminal {
protected:
    TerminalAtHome() : Terminal(nullptr, {{"HOME", Home<size>::home_.path().string()}}) {}

    /// Types Ctrl-G between two letters.
    void expectEcho(std::string_view echo) {
        ASSERT_TRUE(shows("vpagent> "));
        type("echo a\x07z\n");
        ASSERT_TRUE(shows(echo));
        ASSERT_TRUE(shows("vpagent> "));
        type("quit\n");
        EXPECT_EQ(exitStatus(), 0);
    }
};

using TerminalWithLongSettings = TerminalAtHome<VpAgent::Limits::editorSettings>;
using TerminalWithTooLongSettings = TerminalAtHome<VpAgent::Limits::editorSettings + 1>;

TEST_F(TerminalWithLongSettings, ReadsThem) { expectEcho("\naagreedz\r\n"); }

TEST_F(TerminalWithTooLongSettings, DoesNotReadThem) { expectEcho("\naz\r\n"); }

TEST_F(Terminal, GoesOnAfterAnError) {
    ASSERT_TRUE(shows("vpagent> "));
    type("nonsense\n");
    ASSERT_TRUE(shows("error: unknown command \"nonsense\""));
    ASSERT_TRUE(shows("vpagent> "));
    type("echo still here\n");
    ASSERT_TRUE(shows("\nstill here"));
    ASSERT_TRUE(shows("vpagent> "));
    type("\x04");
    EXPECT_EQ(exitStatus(), 2);
}

TEST_F(Terminal, SaysWhenAMulticastCommandChangesNothing) {
    ASSERT_TRUE(shows("vpagent> "));
    type("mcast create\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("mcast higig 1 Et1\n");
    ASSERT_TRUE(shows("\nl3/mcast/higig/hwStatus: 258 higigIntfs[1]: none -> [Et1]\r\nvpagent> "));
    type("mcast higig 1 Et1\n");
    ASSERT_TRUE(shows("\nnothing changed\r\nvpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, TakesUtf8) {
    ASSERT_TRUE(shows("vpagent> "));
    type("client add Z\xC3\xBCrich\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("echo Z\xC3\xBCrich\n");
    ASSERT_TRUE(shows("\nZ\xC3\xBCrich"));
    ASSERT_TRUE(shows("vpagent> "));
    type("show clients Z\t\n");
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT Z\xC3\xBCrich"));
    ASSERT_TRUE(shows("vpagent> "));
    type("request Z\xC3\xBCrich vl\t7\n"); // characters, not bytes, before what is completed
    ASSERT_TRUE(shows("\nvlan 7: requested"));
    ASSERT_TRUE(shows("vpagent> "));
    type("client add Z\xC3\xB6\n"); // the names differ within a character
    ASSERT_TRUE(shows("vpagent> "));
    type("show clients Z\t\xC3\xB6\n");
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT Z\xC3\xB6\r"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, CompletesWithinQuotes) {
    ASSERT_TRUE(shows("vpagent> "));
    type("client add \"a b c\"\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("show clients \"a\t\n");
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT a b c\r"));
    ASSERT_TRUE(shows("vpagent> "));
    type("show clients \"a b\t\n");
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT a b c\r"));
    ASSERT_TRUE(shows("vpagent> "));
    type("echo \"a b\" c\n");
    ASSERT_TRUE(shows("\na b c\r"));
    ASSERT_TRUE(shows("vpagent> "));
    type("start reallocation=of\t\n"); // behind a character that ends words elsewhere
    ASSERT_TRUE(shows("running: 8 indices"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, DropsTheLineAtAnInterrupt) {
    ASSERT_TRUE(shows("vpagent> "));
    type("client add a\n");
    ASSERT_TRUE(shows("vpagent> "));
    type("client add b\x03");
    ASSERT_TRUE(shows("^C\r\nvpagent> "));
    type("\x03");
    ASSERT_TRUE(shows("^C\r\nvpagent> "));
    type("show clients \t\n"); // the database is there, and one client in it
    ASSERT_TRUE(shows("\nREQUESTS OF CLIENT a\r"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

TEST_F(Terminal, LetsTheOtherKeysForSignalsSendThem) {
    ASSERT_TRUE(shows("vpagent> "));
    type("echo one\x1C");
    EXPECT_EQ(endingSignal(), SIGQUIT);
}

TEST_F(Terminal, RemembersWhatWasTyped) {
    ASSERT_TRUE(shows("vpagent> "));
    type("echo first\n");
    ASSERT_TRUE(shows("\nfirst"));
    ASSERT_TRUE(shows("vpagent> "));
    type("\x10\n"); // Ctrl-P, the line before
    ASSERT_TRUE(shows("\nfirst"));
    ASSERT_TRUE(shows("vpagent> "));
    type("quit\n");
    EXPECT_EQ(exitStatus(), 0);
}

} // namespace
} // namespace VpAgentTest
