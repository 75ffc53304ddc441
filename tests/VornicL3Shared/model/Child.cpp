#include "VornicL3Shared/model/Child.h"

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstdlib>
#include <exception>
#include <stdexcept>

namespace ModelTest {
namespace {

int reportTo = -1; // in a child

void report(std::string const& text) {
    std::size_t sent = 0;
    while (sent < text.size()) {
        ssize_t const count = write(reportTo, text.data() + sent, text.size() - sent);
        if (count < 0 && errno != EINTR) {
            _exit(EXIT_FAILURE);
        }
        sent += count < 0 ? 0 : static_cast<std::size_t>(count);
    }
}

[[noreturn]] void onTerminate() {
    report("terminated");
    std::abort();
}

[[noreturn]] void runChild(std::function<void(Report const&)> const& work) {
    rlimit const noCore{0, 0};
    setrlimit(RLIMIT_CORE, &noCore);
    std::set_terminate(onTerminate);
    work(report);
    _exit(EXIT_SUCCESS);
}

std::string readAll(int from) {
    std::string text;
    std::array<char, 4096> buffer;
    while (true) {
        ssize_t const count = read(from, buffer.data(), buffer.size());
        if (count > 0) {
            text.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return text;
        }
    }
}

} // namespace

Ending inChild(std::function<void(Report const&)> const& work) {
    std::array<int, 2> ends;
    if (pipe(ends.data()) != 0) {
        throw std::runtime_error("no pipe for a child process");
    }
    pid_t const child = fork();
    if (child < 0) {
        throw std::runtime_error("no child process");
    }
    if (child == 0) {
        close(ends[0]);
        reportTo = ends[1];
        runChild(work);
    }
    close(ends[1]);
    std::string const text = readAll(ends[0]);
    close(ends[0]);
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return {WIFEXITED(status) && WEXITSTATUS(status) == EXIT_SUCCESS,
            WIFSIGNALED(status) && WTERMSIG(status) == SIGABRT, text};
}

} // namespace ModelTest
