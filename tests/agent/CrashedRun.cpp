#include "agent/CrashedRun.h"

#include "agent/RunVpagent.h"

#include <fcntl.h>
#include <sys/ptrace.h>
#include <sys/types.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <sstream>

namespace VpAgentTest {

namespace {

/// Starts the program as one whose signals are shown to this process first.
pid_t startTraced(int input) {
    pid_t const process = ::fork();
    if (process == 0) {
        int const nowhere = ::open("/dev/null", O_WRONLY);
        ::dup2(input, STDIN_FILENO);
        ::dup2(nowhere, STDOUT_FILENO);
        ::dup2(nowhere, STDERR_FILENO);
        ::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
        std::string const program = vpagentProgram();
        ::execl(program.c_str(), program.c_str(), nullptr);
        ::_exit(127);
    }
    return process;
}

/// Lets the program run until it aborts, or has ended. Whether it aborts.
bool runToAbort(pid_t process) {
    int status = 0;
    while (::waitpid(process, &status, 0) == process && WIFSTOPPED(status)) {
        if (WSTOPSIG(status) == SIGABRT) {
            return true;
        }
        long const signal = WSTOPSIG(status) == SIGTRAP ? 0 : WSTOPSIG(status);
        ::ptrace(PTRACE_CONT, process, nullptr, signal);
    }
    return false;
}

/// The parts that can be written, but for the huge ones of a sanitizer.
std::string writableMemory(pid_t process) {
    constexpr std::size_t largest = std::size_t{64} << 20;
    std::string const folder = "/proc/" + std::to_string(process);
    int const memory = ::open((folder + "/mem").c_str(), O_RDONLY);
    std::ifstream maps(folder + "/maps");
    std::string all;
    for (std::string line; std::getline(maps, line);) {
        std::size_t begin = 0;
        std::size_t end = 0;
        char dash = 0;
        std::string rights;
        std::istringstream(line) >> std::hex >> begin >> dash >> end >> rights;
        if (rights == "rw-p" && end - begin <= largest) {
            std::size_t const before = all.size();
            all.resize(before + (end - begin));
            ssize_t const count =
                ::pread(memory, all.data() + before, end - begin, static_cast<off_t>(begin));
            all.resize(before + (count < 0 ? 0 : static_cast<std::size_t>(count)));
        }
    }
    ::close(memory);
    return all;
}

} // namespace

std::string memoryOfCrashedRun(std::string_view script) {
    std::FILE* const input = std::tmpfile();
    std::fwrite(script.data(), 1, script.size(), input);
    std::rewind(input);
    pid_t const process = startTraced(::fileno(input));
    std::string memory;
    if (runToAbort(process)) {
        memory = writableMemory(process);
        ::kill(process, SIGKILL);
        ::waitpid(process, nullptr, 0);
    }
    std::fclose(input);
    return memory;
}

} // namespace VpAgentTest
