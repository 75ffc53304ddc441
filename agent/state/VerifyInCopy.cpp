#include "state/VerifyInCopy.h"

#include "qor/Inspection.h"
#include "qor/Sinks.h"
#include "state/Agent.h"
#include "state/Frames.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstring>

namespace VpAgent {

namespace {

/// Sends every report of the library into the pipe. A failed assertion is the last one.
void reportTo(int pipe) {
    Qor::traceSinkIs([pipe](Qor::TraceLine const& line) {
        writeFrame(pipe, {Frame::Kind::trace, line.level, line.text, {}});
    });
    Qor::logSinkIs([pipe](Qor::LogMessage const& message) {
        writeFrame(pipe, {Frame::Kind::log, message.descriptor.severity, message.descriptor.id,
                          message.text});
    });
    Qor::assertionSinkIs([pipe](Qor::AssertionFailure const& failure) {
        writeFrame(pipe, {Frame::Kind::assertion, 0, failure.text, failure.function});
        ::_exit(0);
    });
}

/// Lets the copy end with its original, however that ends: it holds the original's streams, whose
/// readers wait for their end.
void endWith(pid_t original) noexcept {
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (::getppid() != original) { // it ended before
        ::_exit(0);
    }
}

/// What the copy does. It leaves by `_exit`, so that nothing of the original's is flushed or
/// destroyed twice.
[[noreturn]] void verifyAndExit(VornicCentral::VpIndexAllocatorDirSm const& stateMachine,
                                int pipe) noexcept {
    try {
        reportTo(pipe);
        Qor::CallResult const result = Qor::callByName(stateMachine, "verify", {});
        if (result.refusal) {
            writeFrame(
                pipe,
                {Frame::Kind::exception, 0, "expected " + result.refusal->error.expected, {}});
        } else {
            writeFrame(pipe, {Frame::Kind::passed, 0, {}, {}});
        }
    } catch (std::exception const& exception) {
        writeFrame(pipe, {Frame::Kind::exception, 0, exception.what(), {}});
    }
    ::_exit(0);
}

[[noreturn]] void refuseSystemCall(char const* call) {
    throw Refusal(std::string("cannot make a copy of the process: ") + call + ": " +
                  std::strerror(errno));
}

std::string readAll(int file) {
    std::string bytes;
    std::array<char, 4096> buffer{};
    for (;;) {
        ssize_t const count = ::read(file, buffer.data(), buffer.size());
        if (count > 0) {
            bytes.append(buffer.data(), static_cast<std::size_t>(count));
        } else if (count == 0 || errno != EINTR) {
            return bytes;
        }
    }
}

/// How the copy ended, for the case that it told no result.
std::string ending(pid_t copy) {
    int status = 0;
    while (::waitpid(copy, &status, 0) < 0 && errno == EINTR) {
    }
    if (WIFSIGNALED(status)) {
        int const signal = WTERMSIG(status);
        return "was ended by signal " + std::to_string(signal) + " (" + ::strsignal(signal) + ')';
    }
    return "ended with status " + std::to_string(WEXITSTATUS(status));
}

} // namespace

VerifyReply verifyInCopy(Agent& agent) {
    agent.reporter.flush();
    std::array<int, 2> ends{};
    if (::pipe2(ends.data(), O_CLOEXEC) != 0) {
        refuseSystemCall("pipe");
    }
    pid_t const original = ::getpid();
    pid_t const copy = ::fork();
    if (copy == 0) {
        endWith(original);
        ::close(ends[0]);
        verifyAndExit(agent.machine.stateMachine(), ends[1]);
    }
    ::close(ends[1]);
    if (copy < 0) {
        int const reason = errno;
        ::close(ends[0]);
        errno = reason;
        refuseSystemCall("fork");
    }
    std::string const bytes = readAll(ends[0]);
    ::close(ends[0]);
    std::string const how = ending(copy);

    FrameReader frames(bytes);
    while (auto const frame = frames.next()) {
        switch (frame->kind) {
        case Frame::Kind::trace:
            agent.reporter.trace(frame->number, frame->first);
            break;
        case Frame::Kind::log:
            agent.reporter.log(frame->first, frame->number, frame->second);
            break;
        case Frame::Kind::assertion:
            return {false, std::string(frame->first), std::string(frame->second)};
        case Frame::Kind::exception:
            throw Refusal("verify was refused: " + printable(frame->first));
        case Frame::Kind::passed:
            return {};
        }
    }
    throw Refusal("the copy of the process " + how + ", expected the outcome of its checks");
}

} // namespace VpAgent
