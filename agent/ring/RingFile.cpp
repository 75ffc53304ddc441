#include "ring/RingFile.h"

#include "ring/MappedFile.h"
#include "statefile/OwnFiles.h"
#include "text/Utf8.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>

namespace VpAgent {

namespace {

namespace fs = std::filesystem;

Refusal noSuchRing(Word const& file, std::size_t count) {
    if (count == 0) {
        return {"no ring buffer in " + inQuotes(file.text) +
                    ", expected a core file or what 'ring dump' has written",
                file.place()};
    }
    return {inQuotes(file.text) + " has no such ring buffer, expected a number from 1 to " +
                std::to_string(count),
            file.place()};
}

[[noreturn]] void refuseToWrite(Word const& file, std::string const& reason) {
    throw Refusal("cannot write " + inQuotes(file.text) + " (" + reason +
                      "), expected a file that can be written",
                  file.place());
}

void checkReplaceable(fs::path const& path, Word const& file) {
    std::error_code error;
    if (fs::status(path, error).type() == fs::file_type::not_found) {
        return;
    }
    MappedFile const former(file);
    Lumlog::Reader const reader(former.bytes());
    if (!former.bytes().empty() && (!reader.found() || reader.offset() != 0)) {
        throw Refusal(inQuotes(file.text) +
                          " is there and no dump of a ring buffer, expected one or a new name",
                      file.place());
    }
}

/// A new file beside the one that it is to become; it goes unless it has. Those who may read the
/// former one may read it, and nobody else.
class NewFile {
public:
    NewFile(fs::path const& path, Word const& file)
        : path_(path),
          file_(file),
          newPath_(path.string() + ".new-" + std::to_string(::getpid())),
          stream_(std::fopen(newPath_.c_str(), "wbx")) {
        if (stream_ == nullptr) {
            refuseToWrite(file_, std::strerror(errno));
        }
        struct stat former {};
        if (::stat(path_.c_str(), &former) == 0) {
            ::fchmod(::fileno(stream_), former.st_mode & 0777);
        }
    }
    ~NewFile() {
        std::fclose(stream_);
        if (!done_) {
            std::remove(newPath_.c_str());
        }
    }
    NewFile(NewFile const&) = delete;
    NewFile& operator=(NewFile const&) = delete;

    void write(std::span<std::byte const> bytes) {
        if (std::fwrite(bytes.data(), 1, bytes.size(), stream_) != bytes.size() ||
            std::fflush(stream_) != 0 || ::fsync(::fileno(stream_)) != 0) {
            refuseToWrite(file_, std::strerror(errno));
        }
    }

    void become() {
        if (std::rename(newPath_.c_str(), path_.c_str()) != 0) {
            refuseToWrite(file_, std::strerror(errno));
        }
        done_ = true;
    }

private:
    fs::path path_;
    Word file_;
    std::string newPath_;
    std::FILE* stream_;
    bool done_ = false;
};

} // namespace

Lumlog::Reader ringWithin(std::span<std::byte const> bytes, std::size_t number, Word const& file) {
    std::optional<Lumlog::Reader> empty;
    std::size_t count = 0;
    for (std::span<std::byte const> rest = bytes;;) {
        Lumlog::Reader reader(rest);
        if (!reader.found()) {
            break;
        }
        if (!reader.hasRecords()) {
            empty = empty ? empty : reader;
        } else if (++count == number) {
            return reader;
        }
        rest = rest.subspan(reader.offset() + 1);
    }
    if (count == 0 && number == 1 && empty) {
        return *std::move(empty);
    }
    throw noSuchRing(file, count == 0 && empty ? 1 : count);
}

void saveRing(std::span<std::byte const> ring, Word const& file) {
    std::error_code error;
    fs::path const target = fs::weakly_canonical(fs::path(file.text), error); // behind links
    fs::path const path = error ? fs::path(file.text) : target;
    if (isStateFile(path)) {
        refuseToWrite(file, belongsToStateFile);
    }
    checkReplaceable(path, file);
    NewFile saved(path, file);
    saved.write(ring);
    saved.become();
}

} // namespace VpAgent
