#include "output/Output.h"

#include <unistd.h>

#include <cerrno>

namespace VpAgent {

void Output::flush() noexcept {
    std::string_view rest = buffer_;
    while (!rest.empty()) {
        ssize_t const written = ::write(stream_, rest.data(), rest.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written < 0) {
            failed_ = true;
            break;
        }
        rest.remove_prefix(static_cast<std::size_t>(written));
    }
    buffer_.clear();
}

} // namespace VpAgent
