#include "agent/MeasuredRun.h"

#include "agent/KeptAgent.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <fstream>
#include <stdexcept>
#include <thread>

namespace VpAgentTest {

namespace {

/// Starts the program behind its first argument, writes its process number to that file, and ends.
constexpr char const* starter = "file=$1; shift; exec 3<&0; ulimit -S -t 60 || exit 1; "
                                "\"$@\" <&3 3<&- & echo $! >\"$file\"";

double secondsOf(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

/// Runs a program of these words as a child of this process that a shell has forked.
///
/// The peak of a process begins with the size of what it was forked from and outlives `exec`, so
/// that a child of our own would count our memory for its. The shell is small, its memory counts
/// for the shell, and the process that it leaves behind becomes our child.
pid_t startFromSmallProcess(std::vector<std::string> words, std::string const& numberFile, int in,
                            int out, int err) {
    std::vector<std::string> all{"/bin/sh", "-c", starter, "sh", numberFile};
    all.insert(all.end(), words.begin(), words.end());
    std::vector<char*> argv;
    for (std::string& word : all) {
        argv.push_back(word.data());
    }
    argv.push_back(nullptr);
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, in, STDIN_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, out, STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, err, STDERR_FILENO);
    ::prctl(PR_SET_CHILD_SUBREAPER, 1, 0, 0, 0);
    pid_t shell = 0;
    int const failure = ::posix_spawn(&shell, argv[0], &actions, nullptr, argv.data(), ::environ);
    ::posix_spawn_file_actions_destroy(&actions);
    int const status = failure == 0 ? statusOf(shell) : failure;
    ::prctl(PR_SET_CHILD_SUBREAPER, 0, 0, 0, 0);
    pid_t process = 0;
    if (status != 0 || !(std::ifstream(numberFile) >> process)) {
        throw std::runtime_error("no shell that starts the program");
    }
    return process;
}

/// Waits for the end of a program, and ends one that takes four minutes by SIGALRM.
int waitFor(pid_t process, rusage& usage) {
    using Clock = std::chrono::steady_clock;
    auto const latest = Clock::now() + std::chrono::minutes(4);
    bool ended = false;
    int status = 0;
    for (;;) {
        pid_t const found = ::wait4(process, &status, WNOHANG, &usage);
        if (found == process) {
            return status;
        }
        if (found < 0 && errno != EINTR) {
            throw std::runtime_error("the program is no child of the test");
        }
        if (!ended && Clock::now() > latest) {
            ended = true;
            ::kill(process, SIGALRM);
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

} // namespace

Measured measuredRun(std::vector<std::string> const& arguments, std::string const& input) {
    TemporaryFolder const folder;
    std::string const outName = (folder.path() / "out").string();
    std::string const errName = (folder.path() / "err").string();
    int const in = ::open(input.c_str(), O_RDONLY | O_CLOEXEC);
    int const out = ::open(outName.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    int const err = ::open(errName.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    std::vector<std::string> words{vpagentProgram()};
    words.insert(words.end(), arguments.begin(), arguments.end());
    pid_t const process =
        startFromSmallProcess(words, (folder.path() / "process").string(), in, out, err);
    ::close(in);
    ::close(out);
    ::close(err);
    rusage usage{};
    int const status = waitFor(process, usage);
    return {{WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status), bytesOf(outName),
             bytesOf(errName)},
            secondsOf(usage.ru_utime) + secondsOf(usage.ru_stime),
            usage.ru_maxrss / 1024};
}

void makeSparse(std::filesystem::path const& path, std::uintmax_t size, std::string_view front) {
    std::ofstream(path, std::ios::binary) << front;
    std::filesystem::resize_file(path, size);
}

} // namespace VpAgentTest
