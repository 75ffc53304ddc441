#include "statefile/Companion.h"

#include "text/Refusal.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace VpAgent {

namespace fs = std::filesystem;

void checkCompanion(fs::path const& path) {
    struct stat status {};
    if (::lstat(path.c_str(), &status) != 0) {
        if (errno == ENOENT) {
            return;
        }
        throw fs::filesystem_error("lstat", path, std::error_code(errno, std::generic_category()));
    }
    std::string const subject = inQuotes(path.filename().string()) + " beside it ";
    if (!S_ISREG(status.st_mode)) {
        throw Refusal(subject + "is not a regular file, expected one, or none");
    }
    if (status.st_nlink > 1) {
        throw Refusal(subject + "has a further name, under which it would be changed as well, "
                                "expected a file with one name, or none");
    }
}

CompanionReader::CompanionReader(fs::path const& path)
    : descriptor_(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOFOLLOW)) {}

CompanionReader::~CompanionReader() {
    if (descriptor_ >= 0) {
        ::close(descriptor_);
    }
}

std::size_t CompanionReader::read(std::span<char> room) const {
    std::size_t count = 0;
    while (descriptor_ >= 0 && count < room.size()) {
        ssize_t const more = ::read(descriptor_, room.data() + count, room.size() - count);
        if (more < 0 && errno == EINTR) {
            continue;
        }
        if (more <= 0) {
            break;
        }
        count += static_cast<std::size_t>(more);
    }
    return count;
}

} // namespace VpAgent
