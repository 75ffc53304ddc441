#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace VpAgent {

/// The files that belong to the state file in use: FILE itself, its log, and what else SQLite may
/// put beside it.
///
/// Nothing but SQLite may open them. The kernel drops the locks that a process holds on a file as
/// soon as the process closes any descriptor of it, and a second program could then write the file
/// as well. Nor may anybody make a file or a folder in the place of one that is not there yet: the
/// next run would take it for its own, or be refused. So whoever opens or makes what a user names
/// asks `isStateFile` first.
///
/// The locks are those of the process, and so is this: at most one object lives at a time.
class OwnFiles {
public:
    /// Without a name no file is ours. The file need not be there yet.
    explicit OwnFiles(std::optional<std::string> const& stateFile);
    ~OwnFiles();
    OwnFiles(OwnFiles const&) = delete;
    OwnFiles& operator=(OwnFiles const&) = delete;
};

/// Whether a path leads to one of those files, also one that is not there, or to anything below it:
/// by its name, or through links of either kind.
bool isStateFile(std::filesystem::path const& path);

/// Why such a file is refused, for messages.
inline constexpr char const* belongsToStateFile = "it belongs to the state file in use";

} // namespace VpAgent
