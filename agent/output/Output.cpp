#include "output/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace VpAgent {

namespace {

/// For a stream that another program has made non-blocking, and that is full.
void waitUntilWritable(int stream) noexcept {
    pollfd ready{stream, POLLOUT, 0};
    ::poll(&ready, 1, -1);
}

} // namespace

void Output::flush() noexcept {
    std::string_view rest = buffer_;
    bool& failed = stream_ == standardOutput ? outFailed_ : errFailed_;
    while (!rest.empty() && !failed) {
        ssize_t const written = ::write(stream_, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            waitUntilWritable(stream_);
        } else if (errno != EINTR) {
            failed = true;
        }
    }
    buffer_.clear();
}

} // namespace VpAgent
