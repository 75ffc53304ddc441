#include "statefile/OwnFiles.h"

#include <algorithm>
#include <system_error>
#include <vector>

namespace VpAgent {

namespace fs = std::filesystem;

namespace {

std::vector<fs::path> ownFiles;

/// The path behind symbolic links, also of a file that is not there.
fs::path resolved(fs::path const& path) {
    std::error_code error;
    fs::path const target = fs::absolute(fs::weakly_canonical(path, error), error);
    return error ? path : target;
}

/// Whether a path is another one or, so that the other would have to be a folder, goes through it.
bool isAtOrBelow(fs::path path, fs::path const& other) {
    while (path != other && path.has_relative_path()) {
        path = path.parent_path();
    }
    return path == other;
}

} // namespace

OwnFiles::OwnFiles(std::optional<std::string> const& stateFile) {
    if (stateFile) {
        std::string const path = resolved(*stateFile).string();
        ownFiles = {path, path + "-wal", path + "-journal", path + "-shm"};
    }
}

OwnFiles::~OwnFiles() { ownFiles.clear(); }

bool isStateFile(fs::path const& path) {
    fs::path const target = resolved(path);
    return std::any_of(ownFiles.begin(), ownFiles.end(), [&](fs::path const& own) {
        std::error_code error; // what is not there is not the same file
        return fs::equivalent(own, path, error) || isAtOrBelow(target, own);
    });
}

} // namespace VpAgent
