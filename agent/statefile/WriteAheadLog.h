#pragma once

#include "statefile/Sqlite.h"

namespace VpAgent {

/// The log of a state file in use, and the mark in FILE that says that it has one.
///
/// FILE alone looks whole when its log is lost after a kill, but acknowledged commands stood in the
/// log. So FILE is marked, by `logNeeded` in its version, before anything is acknowledged, and a
/// marked FILE whose log is missing or empty is refused. The first transaction of every log takes
/// the mark back. Whoever brings the log into FILE, be it this program at its end, its next run or
/// any SQLite tool, thereby clears it; nothing else does.
///
/// 1. Whenever FILE is marked on disk, the log holds a transaction at least.
/// 2. Whenever a command may be acknowledged, FILE is marked and the log takes the mark back.
///
/// For the first, FILE is only ever marked out of a log that is on disk; a log is begun anew in
/// place, so that it never gets empty; and while the log ends with the mark, closing the file
/// leaves the log as it is.
class WriteAheadLog {
public:
    /// The database must be in write-ahead mode and locked, and close without touching its log.
    explicit WriteAheadLog(Connection& connection);
    ~WriteAheadLog();
    WriteAheadLog(WriteAheadLog const&) = delete;
    WriteAheadLog& operator=(WriteAheadLog const&) = delete;

    /// Brings the log of the run before into FILE and begins one for this run.
    void begin();

    /// Brings a log that has grown long into FILE, and begins it anew. Between transactions only.
    void keepShort();

private:
    void markFile();

    Connection& connection_;
    int pages_ = 0; ///< in the log
};

} // namespace VpAgent
