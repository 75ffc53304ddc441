#include "agent/RunVpagent.h"

#include "support/ScratchPlace.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <memory>
#include <stdexcept>
#include <utility>

namespace VpAgentTest {

namespace {

constexpr char const* installed = "VORNIC_VPAGENT";

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

File temporaryFile(std::string_view content = {}) {
    File file(std::tmpfile(), &std::fclose);
    if (file == nullptr) {
        throw std::runtime_error("no temporary file");
    }
    if (!content.empty()) { // an empty view may have no data at all
        std::fwrite(content.data(), 1, content.size(), file.get());
    }
    std::rewind(file.get());
    return file;
}

std::string contentOf(std::FILE* file) {
    std::string content;
    std::array<char, 4096> buffer{};
    std::rewind(file);
    for (std::size_t count = 1; count != 0;) {
        count = std::fread(buffer.data(), 1, buffer.size(), file);
        content.append(buffer.data(), count);
    }
    return content;
}

} // namespace

bool isInstalledProgram() { return std::getenv(installed) != nullptr; }

std::string vpagentProgram() {
    return isInstalledProgram() ? std::getenv(installed) : VPAGENT_PROGRAM;
}

void signalsAsUsual() noexcept {
    for (int const signal : {SIGHUP, SIGINT, SIGQUIT, SIGPIPE, SIGTERM, SIGXFSZ}) {
        std::signal(signal, SIG_DFL);
    }
}

pid_t startVpagent(std::vector<std::string> const& arguments, int in, int out, int err,
                   std::function<void()> const& prepare) {
    std::vector<char*> argv;
    std::string program = vpagentProgram();
    std::vector<std::string> words = arguments;
    argv.push_back(program.data());
    for (std::string& word : words) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    pid_t const process = ::fork();
    if (process == 0) {
        ::dup2(in, STDIN_FILENO);
        ::dup2(out, STDOUT_FILENO);
        ::dup2(err, STDERR_FILENO);
        signalsAsUsual();
        if (prepare) {
            prepare();
        }
        ::execv(program.c_str(), argv.data());
        ::_exit(127);
    }
    return process;
}

int statusOf(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

Outcome runVpagent(std::vector<std::string> const& arguments, std::string_view input,
                   std::function<void()> const& prepare) {
    File const in = temporaryFile(input);
    File const out = temporaryFile();
    File const err = temporaryFile();
    pid_t const process = startVpagent(arguments, ::fileno(in.get()), ::fileno(out.get()),
                                       ::fileno(err.get()), prepare);
    int const status = statusOf(process);
    return {status, contentOf(out.get()), contentOf(err.get())};
}

std::string runJson(std::string_view script, int status, std::vector<std::string> const& options) {
    std::vector<std::string> arguments{"--json"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    Outcome const outcome = runVpagent(arguments, script);
    EXPECT_EQ(outcome.status, status) << outcome.out << outcome.err;
    EXPECT_EQ(outcome.err, "");
    return outcome.out;
}

Driven::Driven(std::vector<std::string> const& arguments) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    if (::pipe2(in.data(), O_CLOEXEC) != 0 || ::pipe2(out.data(), O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    process_ = startVpagent(arguments, in[0], out[1], STDERR_FILENO);
    ::close(in[0]);
    ::close(out[1]);
    input_ = in[1];
    output_ = out[0];
}

Driven::~Driven() {
    ::close(input_);
    ::close(output_);
    if (process_ >= 0) {
        statusOf(process_);
    }
}

void Driven::signal(int number) const { ::kill(process_, number); }

int Driven::status() { return statusOf(std::exchange(process_, -1)); }

void Driven::write(std::string_view text) const {
    ASSERT_EQ(::write(input_, text.data(), text.size()), static_cast<ssize_t>(text.size()));
}

std::string Driven::readLine() {
    constexpr int patience = 20000;
    for (;;) {
        std::size_t const end = pending_.find('\n');
        if (end != std::string::npos) {
            std::string line = pending_.substr(0, end);
            pending_.erase(0, end + 1);
            return line;
        }
        pollfd ready{output_, POLLIN, 0};
        std::array<char, 4096> buffer{};
        ssize_t const count =
            ::poll(&ready, 1, patience) == 1 ? ::read(output_, buffer.data(), buffer.size()) : 0;
        if (count <= 0) {
            return "no line came";
        }
        pending_.append(buffer.data(), static_cast<std::size_t>(count));
    }
}

TemporaryFolder::TemporaryFolder() {
    std::string name = Support::scratchPlace() / "vpagent-test-";
    name.append(6, 'X'); // which mkdtemp replaces
    if (::mkdtemp(name.data()) == nullptr) {
        throw std::runtime_error("no temporary folder");
    }
    path_ = name;
}

TemporaryFolder::~TemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
}

std::string TemporaryFolder::write(std::string_view name, std::string_view content) const {
    std::filesystem::path const file = path_ / name;
    std::ofstream(file, std::ios::binary) << content;
    return file.string();
}

} // namespace VpAgentTest
