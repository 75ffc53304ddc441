#pragma once

#include <cstddef>
#include <filesystem>
#include <span>

namespace VpAgent {

/// Refuses what stands in the place of a file beside the state file, its log or its journal, when
/// SQLite must not open it: what is no regular file, and could keep whoever opens it waiting, and
/// what has a further name, so that another file would be written. Links of either kind are not
/// followed, and nothing is opened. What is not there is good. Throws `Refusal`, or the error with
/// which the system would not look at it.
void checkCompanion(std::filesystem::path const& path);

/// The bytes of such a file, from its front on. Opening it does not wait, and follows no link: what
/// cannot be opened so has no bytes. SQLite reads the same file and says why it cannot.
class CompanionReader {
public:
    explicit CompanionReader(std::filesystem::path const& path);
    ~CompanionReader();
    CompanionReader(CompanionReader const&) = delete;
    CompanionReader& operator=(CompanionReader const&) = delete;

    /// Reads on, and gives how many bytes there were: fewer than there is room for only at the end.
    std::size_t read(std::span<char> room) const;

private:
    int descriptor_;
};

} // namespace VpAgent
