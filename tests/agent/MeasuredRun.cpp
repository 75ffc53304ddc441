#include "agent/MeasuredRun.h"

#include "agent/KeptAgent.h"

#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <fstream>

namespace VpAgentTest {

namespace {

void limitTime() {
    constexpr rlim_t most = 60; // seconds
    rlimit const seconds{most, most};
    ::setrlimit(RLIMIT_CPU, &seconds);
    ::alarm(4 * most);
}

double secondsOf(timeval const& time) {
    return static_cast<double>(time.tv_sec) + static_cast<double>(time.tv_usec) / 1e6;
}

} // namespace

Measured measuredRun(std::vector<std::string> const& arguments, std::string const& input) {
    TemporaryFolder const folder;
    std::string const outName = (folder.path() / "out").string();
    std::string const errName = (folder.path() / "err").string();
    int const in = ::open(input.c_str(), O_RDONLY | O_CLOEXEC);
    int const out = ::open(outName.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    int const err = ::open(errName.c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0600);
    pid_t const process = startVpagent(arguments, in, out, err, &limitTime);
    ::close(in);
    ::close(out);
    ::close(err);
    int status = 0;
    rusage usage{};
    while (::wait4(process, &status, 0, &usage) < 0 && errno == EINTR) {
    }
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
