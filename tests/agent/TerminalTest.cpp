#include <gtest/gtest.h>
#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <termios.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <string_view>
#include <thread>

namespace VpAgentTest {
namespace {

/// The program at a terminal, as a person has it.
class Terminal : public testing::Test {
protected:
    Terminal() : process_(::forkpty(&terminal_, nullptr, nullptr, nullptr)) {
        if (process_ == 0) {
            ::setenv("TERM", "dumb", 1);
            ::execl(VPAGENT_PROGRAM, VPAGENT_PROGRAM, nullptr);
            ::_exit(127);
        }
    }

    ~Terminal() override { ::close(terminal_); }

    /// Waits, for at most 20 seconds, until the terminal shows `text`; what it showed up to there
    /// is then done with.
    bool shows(std::string_view text) {
        for (;;) {
            std::size_t const at = shown_.find(text);
            if (at != std::string::npos) {
                shown_.erase(0, at + text.size());
                return true;
            }
            pollfd ready{terminal_, POLLIN, 0};
            std::array<char, 4096> buffer{};
            if (::poll(&ready, 1, patience) != 1) {
                break;
            }
            ssize_t const count = ::read(terminal_, buffer.data(), buffer.size());
            if (count <= 0) {
                break;
            }
            shown_.append(buffer.data(), static_cast<std::size_t>(count));
        }
        ADD_FAILURE() << "the terminal does not show \"" << text << "\" but:\n" << shown_;
        return false;
    }

    /// Types once the line editor has the terminal. It shows its prompt a moment earlier, and an
    /// end of file typed in between would be the terminal's, not the editor's.
    void type(std::string_view text) const {
        for (int waited = 0; isCooked(); ++waited) {
            ASSERT_LT(waited, patience) << "the line editor does not take the terminal";
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        ASSERT_EQ(::write(terminal_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
    }

    /// The status that the program ends with; -1 when it has not ended after 20 seconds.
    int exitStatus() const {
        int status = 0;
        for (int waited = 0; ::waitpid(process_, &status, WNOHANG) == 0; ++waited) {
            if (waited == patience) {
                ::kill(process_, SIGKILL);
                return -1;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        }
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }

private:
    static constexpr int patience = 20000; ///< milliseconds

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
