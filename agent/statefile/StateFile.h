#pragma once

#include "Limits.h"
#include "statefile/ChangeTracker.h"
#include "statefile/Opening.h"
#include "statefile/WriteAheadLog.h"

#include <filesystem>
#include <memory>
#include <stdexcept>
#include <string>

namespace VpAgent {

/// Why changes could not be brought to disk.
class StateFileError : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// The state file: keeps a database on disk, so that it outlives the program.
///
/// What it promises, however and whenever the process ends, and after a power failure if the disk
/// keeps its word:
/// - All that stood in the database at a `commit` that returned is in the file, with the order of
///   every collection and of the two directories.
/// - Of what changed after it, nothing is there; or all of it, up to a further `commit` that was
///   called and did not return.
///
/// A `commit` writes what changed since the last one, in one transaction. Its cost is one write to
/// disk and what changed, however large the database. Without changes it does nothing. Between
/// commits the file is not touched. A forked copy of the process must neither commit nor destroy
/// this; it ends by `_exit`.
///
/// The format stands in `Format.h`. Not thread-safe.
class StateFile {
public:
    /// Opens the file, or makes a new one where there is none or an empty one, and fills
    /// `database`, which is empty and must outlive this.
    ///
    /// Throws `Refusal` when the file is of another kind, of another version, damaged, larger than
    /// `largest` bytes, in use by another program, or not to be written. It is then untouched, and
    /// one that was not there is not there either unless its disk takes no more removals; the
    /// database may be half filled.
    static std::unique_ptr<StateFile> open(std::filesystem::path const& path, Database& database,
                                           U64 largest = Limits::stateFile);

    /// Brings all changes since the last commit to disk. False when there were none.
    ///
    /// Throws `StateFileError` when that fails, and must not be called again then. The file holds
    /// what it held before, and the database is ahead of it. Only when the very end of the commit
    /// fails may the next run find the changes there after all; it finds all of them or none.
    bool commit();

private:
    StateFile(std::filesystem::path const& path, Database& database, U64 largest);

    std::string name_;
    OpenFile file_;
    WriteAheadLog log_;
    Loaded loaded_;
    ChangeTracker tracker_;
    Writer writer_;
    Statement begin_;
    Statement end_;
};

} // namespace VpAgent
