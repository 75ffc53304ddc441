#include "ring/MappedFile.h"

#include "Limits.h"
#include "statefile/OwnFiles.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <string>

namespace VpAgent {

namespace {

[[noreturn]] void refuse(Word const& name, std::string const& reason) {
    throw Refusal("cannot read " + inQuotes(name.text) + " (" + reason +
                      "), expected a readable file",
                  name.place());
}

/// A file descriptor, closed at the end.
class Opened {
public:
    /// Does not wait for the other end of a pipe.
    explicit Opened(Word const& name) {
        if (isStateFile(name.text)) {
            refuse(name, belongsToStateFile);
        }
        descriptor_ = ::open(std::string(name.text).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
        if (descriptor_ < 0) {
            refuse(name, std::strerror(errno));
        }
    }
    ~Opened() { ::close(descriptor_); }
    Opened(Opened const&) = delete;
    Opened& operator=(Opened const&) = delete;

    int descriptor() const noexcept { return descriptor_; }

private:
    int descriptor_ = -1;
};

} // namespace

MappedFile::MappedFile(Word const& name) {
    Opened const file(name);
    struct stat status {};
    if (::fstat(file.descriptor(), &status) != 0) {
        refuse(name, std::strerror(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        refuse(name, S_ISDIR(status.st_mode) ? "a folder" : "not a regular file");
    }
    if (static_cast<U64>(status.st_size) > Limits::ringFile) {
        refuse(name, "more than " + std::to_string(Limits::ringFile) + " bytes");
    }
    auto const size = static_cast<std::size_t>(status.st_size);
    if (size == 0) {
        return; // which cannot be mapped
    }
    void* const begin = ::mmap(nullptr, size, PROT_READ, MAP_PRIVATE, file.descriptor(), 0);
    if (begin == MAP_FAILED) {
        refuse(name, std::strerror(errno));
    }
    bytes_ = {static_cast<std::byte const*>(begin), size};
}

MappedFile::~MappedFile() {
    if (!bytes_.empty()) {
        ::munmap(const_cast<std::byte*>(bytes_.data()), bytes_.size());
    }
}

} // namespace VpAgent
