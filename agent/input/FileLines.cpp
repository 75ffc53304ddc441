#include "input/FileLines.h"

#include "Limits.h"
#include "statefile/OwnFiles.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <utility>

namespace VpAgent {

namespace {

constexpr std::size_t chunk = std::size_t{64} * 1024;

bool isFolder(int file) {
    struct stat about {};
    return ::fstat(file, &about) == 0 && S_ISDIR(about.st_mode);
}

} // namespace

FileLines::FileLines(std::string name, std::function<void()> beforeRead)
    : name_(std::move(name)), beforeRead_(std::move(beforeRead)) {
    if (name_ != "-") {
        if (isStateFile(name_)) {
            refuse(belongsToStateFile);
        }
        file_ = ::open(name_.c_str(), O_RDONLY | O_CLOEXEC);
    }
    if (file_ < 0) {
        refuse(std::strerror(errno));
    }
    if (isFolder(file_)) {
        if (file_ != STDIN_FILENO) {
            ::close(file_);
        }
        refuse(std::strerror(EISDIR));
    }
}

FileLines::~FileLines() {
    if (file_ != STDIN_FILENO) {
        ::close(file_);
    }
}

bool FileLines::next(CommandLine& line) {
    std::size_t end = buffer_.find('\n', at_);
    while (end == std::string::npos) {
        std::size_t const searched = buffer_.size() - at_;
        checkLength(searched);
        if (!readMore()) {
            if (searched == 0) {
                return false;
            }
            end = buffer_.size();
            break;
        }
        end = buffer_.find('\n', at_ + searched);
    }
    checkLength(end - at_);
    line = {name_, ++number_, std::string_view(buffer_).substr(at_, end - at_), false};
    at_ = std::min(end + 1, buffer_.size());
    return true;
}

void FileLines::checkLength(std::size_t length) const {
    if (length > Limits::line) {
        refuse("line " + std::to_string(number_ + 1) + " has more than " +
               std::to_string(Limits::line) + " bytes");
    }
}

/// Moves what is left of the buffer to its front and reads behind it.
bool FileLines::readMore() {
    beforeRead_();
    buffer_.erase(0, at_);
    at_ = 0;
    std::size_t const kept = buffer_.size();
    buffer_.resize(kept + chunk);
    ssize_t count = 0;
    do {
        count = ::read(file_, buffer_.data() + kept, chunk);
    } while (count < 0 && errno == EINTR);
    int const reason = errno;
    buffer_.resize(kept + static_cast<std::size_t>(count < 0 ? 0 : count));
    if (count < 0) {
        refuse(std::strerror(reason));
    }
    return count > 0;
}

void FileLines::refuse(std::string const& reason) const {
    std::string const name = name_ == "-" ? "standard input" : inQuotes(name_);
    throw Refusal("cannot read " + name + " (" + reason + "), expected a readable script");
}

} // namespace VpAgent
