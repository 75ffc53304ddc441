#pragma once

#include "pelo/Integers.h"
#include "statefile/Sqlite.h"

#include <filesystem>
#include <string>

namespace VpAgent {

/// A state file that this program has to itself, and that passed all checks but that of its rows.
///
/// It has at most `largest` bytes, and never gets larger; its log has at most twice as many.
///
/// Until `accept` the file stays byte for byte as it is, and nothing is left beside it; but a file
/// that is not there or empty is made new. A file that was not there is removed when its making
/// fails, under the lock of whoever removes it. The constructor throws `Refusal`, `SqliteError` or
/// `Damage`, none of which names the file. While two programs open a file at once, either may be
/// told that it is busy though neither gets it; `openAlone` tries again.
///
/// The lock is SQLite's own, in its exclusive locking mode: taken with the first read, or right
/// behind it where there is no log yet, held until the connection is closed, and gone with the
/// process however that ends, even while a forked copy of it lives on. (A lock by `flock` would
/// stay for as long as any copy has the file open.)
class OpenFile {
public:
    OpenFile(std::filesystem::path const& path, U64 largest);

    Connection& connection() noexcept { return connection_; }

    /// The rows are good as well: from now on the file may be written. Gives it a write-ahead log,
    /// which `WriteAheadLog` has to begin.
    void accept();

    /// Removes a file that was not there before, with its log, after `accept` or what follows it
    /// failed. No row may be in it.
    void discard() noexcept;

private:
    /// Removes the empty log that reading makes under our lock, unless it was there before.
    class LogGuard {
    public:
        explicit LogGuard(std::filesystem::path const& log);
        ~LogGuard();
        LogGuard(LogGuard const&) = delete;
        LogGuard& operator=(LogGuard const&) = delete;
        /// The lock is ours, and so is a log that was not there before.
        void activate() noexcept { active_ = !wasThere_; }
        void release() noexcept { active_ = false; }

    private:
        std::filesystem::path const& log_;
        bool wasThere_;
        bool active_ = false;
    };

    void checkSizes() const;
    void makeIfEmpty();
    void checkInPlace();
    void takeBack() noexcept;
    void removeFiles();
    void lock(bool mayBeNew);
    void checkContent();

    std::filesystem::path path_;
    std::filesystem::path log_;
    U64 largest_;
    bool wasThere_;
    Connection connection_;
    LogGuard guard_;
};

/// Opens a file; while another program uses it, tries again a few times in half a second.
OpenFile openAlone(std::filesystem::path const& path, U64 largest);

} // namespace VpAgent
