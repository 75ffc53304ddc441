#include "statefile/WriteAheadLog.h"

#include "statefile/Format.h"

#include <sqlite3.h>

#include <string>

namespace VpAgent {

namespace {

constexpr int longLog = 1000; ///< pages, as SQLite itself would have it

/// SQLite calls it after each transaction. It takes the place of SQLite's own checkpoints, which
/// would clear the mark while the log goes on.
int rememberPages(void* pages, sqlite3*, char const*, int count) {
    *static_cast<int*>(pages) = count;
    return SQLITE_OK;
}

std::string setVersion(U32 version) {
    return "PRAGMA user_version = " + std::to_string(version) + ';';
}

} // namespace

WriteAheadLog::WriteAheadLog(Connection& connection) : connection_(connection) {
    sqlite3_wal_hook(connection_.handle(), &rememberPages, &pages_);
}

WriteAheadLog::~WriteAheadLog() { sqlite3_wal_hook(connection_.handle(), nullptr, nullptr); }

void WriteAheadLog::begin() {
    connection_.run("PRAGMA synchronous = FULL; PRAGMA journal_size_limit = 4194304");
    // The mark goes before the log does, if the run before was cut off while it set it. A new mode
    // leaves a read under way, which the transaction ends.
    connection_.run(("BEGIN IMMEDIATE;" + setVersion(formatVersion) + "COMMIT").c_str());
    // Each run begins a log of its own, so that `checkWal` never meets the remains of more than one
    // transaction that was cut off.
    connection_.run("PRAGMA wal_checkpoint(TRUNCATE)");
    markFile();
}

void WriteAheadLog::keepShort() {
    if (pages_ > longLog) {
        markFile();
    }
}

void WriteAheadLog::markFile() {
    connection_.keepLogAtClose(true);
    connection_.run(
        (setVersion(formatVersion | logNeeded) + "PRAGMA wal_checkpoint(FULL)").c_str());
    connection_.run(setVersion(formatVersion).c_str());
    connection_.keepLogAtClose(false);
}

} // namespace VpAgent
