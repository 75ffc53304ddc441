#include "agent/KillableRun.h"

#include "agent/RunVpagent.h"
#include "support/FileBytes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <spawn.h>
#include <sys/mman.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <csignal>
#include <stdexcept>

namespace VpAgentTest {

namespace {

/// A write to a program that was killed is an error, not the end of the tests.
void ignoreBrokenPipes() { std::signal(SIGPIPE, SIG_IGN); }

} // namespace

KillableRun::KillableRun(std::string const& stateFile) {
    ignoreBrokenPipes();
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    errors_ = ::memfd_create("errors", MFD_CLOEXEC);
    if (errors_ < 0 || ::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    std::vector<std::string> words{vpagentProgram(), "--json", "--keep-going"};
    if (!stateFile.empty()) {
        words.insert(words.end(), {"--state", stateFile});
    }
    std::vector<char*> argv;
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors_, STDERR_FILENO);
    int const code =
        ::posix_spawn(&process_, argv.front(), &actions, nullptr, argv.data(), environ);
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = out[0];
    if (code != 0) {
        throw std::runtime_error("the program cannot be started");
    }
}

void KillableRun::write(std::string_view lines) {
    written_ += static_cast<std::size_t>(std::count(lines.begin(), lines.end(), '\n'));
    while (!lines.empty()) {
        ssize_t const written = ::write(input_, lines.data(), lines.size());
        if (written < 0 && errno != EINTR) {
            return;
        }
        lines.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

bool KillableRun::readAnswers(std::size_t count) {
    while (answers_.size() < count) {
        if (!readMore()) {
            return false;
        }
    }
    return true;
}

std::string KillableRun::database() {
    write("dump\n");
    return readAnswers(written_) ? databaseOf(answers_.back()) : std::string();
}

void KillableRun::endInput() {
    ::close(input_);
    input_ = -1;
}

void KillableRun::kill() {
    if (process_ < 0) {
        return;
    }
    ::kill(process_, SIGKILL);
    while (::waitpid(process_, &status_, 0) < 0 && errno == EINTR) {
    }
    process_ = -1;
    while (readMore()) {
    }
    if (input_ >= 0) {
        ::close(input_);
    }
    ::close(output_);
    std::string const said = bytesOf("/proc/self/fd/" + std::to_string(errors_));
    ::close(errors_);
    EXPECT_TRUE(said.find("Sanitizer") == std::string::npos &&
                said.find("runtime error:") == std::string::npos)
        << said;
}

/// Reads what is there, waiting for something. False at the end.
bool KillableRun::readMore() {
    std::array<char, 65536> buffer{};
    ssize_t const count = ::read(output_, buffer.data(), buffer.size());
    if (count <= 0) {
        return count < 0 && errno == EINTR;
    }
    rest_.append(buffer.data(), static_cast<std::size_t>(count));
    std::size_t start = 0;
    for (std::size_t end = rest_.find('\n'); end != std::string::npos;
         end = rest_.find('\n', start)) {
        std::string line = rest_.substr(start, end - start);
        if (line.starts_with("{\"ok\"") || line.starts_with("{\"error\"")) {
            answers_.push_back(std::move(line));
        }
        start = end + 1;
    }
    rest_.erase(0, start);
    return true;
}

std::string databaseOf(std::string const& dumpAnswer) {
    std::size_t const at = dumpAnswer.find("\"config\": ");
    return at == std::string::npos ? "no dump: " + dumpAnswer
                                   : '{' + dumpAnswer.substr(at, dumpAnswer.size() - 1 - at);
}

} // namespace VpAgentTest
