#include "StandardStreams.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace VpAgent {

void occupyStandardStreams() {
    for (int const stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (::fcntl(stream, F_GETFD) >= 0) {
            continue;
        }
        // Opened the wrong way round, so that its use is an error and not an end of file or a loss.
        int const way = stream == STDIN_FILENO ? O_WRONLY : O_RDONLY;
        if (::open("/dev/null", way) != stream) {
            throw std::system_error(errno, std::generic_category(), "cannot open /dev/null");
        }
    }
}

} // namespace VpAgent
