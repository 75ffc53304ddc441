#include "agent/RunVpagent.h"
#include "support/FileBytes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <string>
#include <thread>

namespace VpAgentTest {
namespace {

/// Runs the program with the arguments and redirections of a shell's command; gives its status.
int statusInShell(std::string const& command) {
    int const status = std::system(("exec " + vpagentProgram() + " " + command).c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

class ClosedStreams : public testing::Test {
protected:
    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    TemporaryFolder folder_;
    std::string const script_ = folder_.write("script.vp", "client add a\necho one\n");
    std::string const out_ = path("out");
    std::string const err_ = path("err");
    std::string const refusal_ = "vpagent: cannot read standard input (Bad file descriptor), "
                                 "expected a readable script\n";
};

TEST_F(ClosedStreams, AScriptIsNotReadAsStandardInputToo) {
    std::string const files = " > " + out_ + " 2> " + err_ + " <&-";
    EXPECT_EQ(statusInShell("-" + files), 2);
    EXPECT_EQ(Support::bytesOf(out_), "");
    EXPECT_EQ(Support::bytesOf(err_), refusal_);
    EXPECT_EQ(statusInShell(script_ + files), 0);
    EXPECT_EQ(Support::bytesOf(out_), "one\n");
    EXPECT_EQ(statusInShell(script_ + " -" + files), 2);
    EXPECT_EQ(Support::bytesOf(out_), "one\n");
    EXPECT_EQ(Support::bytesOf(err_), refusal_);
}

TEST_F(ClosedStreams, OutputThatIsLostIsAnError) {
    EXPECT_EQ(statusInShell(script_ + " < /dev/null 2> " + err_ + " >&-"), 2);
    EXPECT_EQ(Support::bytesOf(err_), "");
    EXPECT_EQ(statusInShell("--help 2> " + err_ + " >&-"), 2);
    std::string const faulty = folder_.write("faulty.vp", "echo one\nnonsense\n");
    EXPECT_EQ(statusInShell(faulty + " < /dev/null > " + out_ + " 2>&-"), 2);
    EXPECT_EQ(Support::bytesOf(out_), "one\n");
}

TEST_F(ClosedStreams, LeaveAStateFileWhole) {
    for (char const* const closed : {"<&-", "< /dev/null >&-", "< /dev/null 2>&-"}) {
        SCOPED_TRACE(closed);
        TemporaryFolder const folder;
        std::string const state = (folder.path() / "state").string();
        int const status =
            statusInShell("--json --keep-going --state " + state + ' ' + script_ + ' ' + script_ +
                          " > " + out_ + " 2> " + err_ + ' ' + closed);
        EXPECT_EQ(status, 2); // the second time, the client is there already
        Outcome const next = runVpagent({"--state", state}, "client add a\n");
        EXPECT_EQ(next.err.substr(0, 32), "-:1: client \"a\" is there already");
    }
}

TEST(Streams, HelpThatIsLostIsAnError) {
    EXPECT_EQ(statusInShell("--help > /dev/full"), 2);
    EXPECT_EQ(statusInShell("--version > /dev/full"), 2);
    EXPECT_EQ(statusInShell("--version > /dev/null"), 0);
}

TEST(Streams, AFullPipeThatDoesNotBlockIsWaitedFor) {
    std::string script;
    std::string expected;
    for (int line = 1; line <= 300; ++line) {
        std::string const text = std::to_string(line) + std::string(1000, 'x');
        script += "echo " + text + '\n';
        expected += text + '\n';
    }
    TemporaryFolder const folder;
    std::string const name = folder.write("long.vp", script);
    std::array<int, 2> ends{};
    ASSERT_EQ(::pipe2(ends.data(), O_CLOEXEC), 0);
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    pid_t const process = startVpagent({name}, STDIN_FILENO, ends[1], STDERR_FILENO);
    ::close(ends[1]);
    std::this_thread::sleep_for(std::chrono::milliseconds(500)); // it fills the pipe meanwhile
    std::string out;
    std::array<char, 4096> buffer{};
    for (ssize_t count = 1; count > 0;) {
        count = ::read(ends[0], buffer.data(), buffer.size());
        out.append(buffer.data(), static_cast<std::size_t>(count > 0 ? count : 0));
    }
    ::close(ends[0]);
    EXPECT_EQ(statusOf(process), 0);
    EXPECT_TRUE(out == expected) << out.size() << " bytes of " << expected.size();
}

TEST(Streams, AScriptThatCannotBeReadToItsEndIsAnError) {
    TemporaryFolder const folder;
    std::string const good = folder.write("good.vp", "echo one\n");
    Outcome const outcome = runVpagent({good, "/proc/self/mem", good});
    EXPECT_EQ(outcome.status, 2);
    EXPECT_EQ(outcome.out, "one\n");
    EXPECT_EQ(outcome.err, "vpagent: cannot read \"/proc/self/mem\" (Input/output error), expected "
                           "a readable script\n");
}

TEST(Streams, AnInterruptEndsAProgramThatIsNotAtAPrompt) {
    Driven program({});
    program.write("echo one\n");
    EXPECT_EQ(program.readLine(), "one");
    program.signal(SIGINT);
    EXPECT_EQ(program.status(), -SIGINT);
}

} // namespace
} // namespace VpAgentTest
