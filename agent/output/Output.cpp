#include "output/Output.h"

#include <poll.h>
#include <unistd.h>

#include <cerrno>

namespace VpAgent {

namespace {

/// For a stream that another program has made non-blocking, and that is full.
void waitUntilWritable(int file) noexcept {
    pollfd ready{file, POLLOUT, 0};
    ::poll(&ready, 1, -1);
}

} // namespace

void Output::flush() noexcept {
    std::string_view rest = buffer_;
    bool const isOut = stream_ == Stream::out;
    int const file = isOut ? outFile_ : errFile_;
    bool& failed = isOut ? outFailed_ : errFailed_;
    while (!rest.empty() && !failed) {
        ssize_t const written = ::write(file, rest.data(), rest.size());
        if (written >= 0) {
            rest.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno == EAGAIN) {
            waitUntilWritable(file);
        } else if (errno != EINTR) {
            failed = true;
        }
    }
    buffer_.clear();
}

} // namespace VpAgent
