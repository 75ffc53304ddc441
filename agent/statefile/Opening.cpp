#include "statefile/Opening.h"

#include "statefile/Companion.h"
#include "statefile/Format.h"
#include "statefile/Rows.h"
#include "statefile/WalFile.h"
#include "text/Refusal.h"
#include "text/Utf8.h"

#include <fcntl.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstring>
#include <random>
#include <string_view>
#include <system_error>
#include <thread>
#include <utility>

namespace VpAgent {

namespace fs = std::filesystem;

namespace {

constexpr char const* ownFile = "expected one that vpagent made";

/// The header of an SQLite database: its size, the text at its front, and where its numbers stand.
constexpr int headerSize = 100;
constexpr std::string_view headerText("SQLite format 3\0", 16);
constexpr std::size_t journalModeAt = 18;
constexpr std::size_t versionAt = 60;
constexpr std::size_t applicationAt = 68;

using Header = std::array<unsigned char, headerSize>;

U32 numberAt(Header const& header, std::size_t at) {
    return U32{header[at]} << 24 | U32{header[at + 1]} << 16 | U32{header[at + 2]} << 8 |
           header[at + 3];
}

bool isAllowed(fs::path const& path, int rights) {
    return ::faccessat(AT_FDCWD, path.c_str(), rights, AT_EACCESS) == 0;
}

/// Whether a file begins as a rollback journal does: with its mark, or with zeros while the mark
/// is not written yet. An empty one is none any more.
bool isJournal(fs::path const& path) {
    constexpr std::string_view mark("\xD9\xD5\x05\xF9\x20\xA1\x63\xD7", 8);
    constexpr std::string_view zeros("\0\0\0\0\0\0\0\0", 8);
    std::array<char, 8> front{};
    std::string_view const found(front.data(), CompanionReader(path).read(front));
    return mark.starts_with(found) || zeros.starts_with(found);
}

/// SQLite takes any file of the journal's name for the journal of the database, plays it back and
/// removes it. The journal of a file in the making is there after the file.
void checkJournal(fs::path const& path) {
    fs::path const journal(path.string() + "-journal");
    checkCompanion(journal);
    if (fs::exists(journal) && (!fs::exists(path) || !isJournal(journal))) {
        throw Refusal(inQuotes(journal.filename().string()) +
                      " beside it does not belong to it and would be lost, expected no such file");
    }
}

bool hasContent(fs::path const& path) {
    std::error_code error;
    auto const size = fs::file_size(path, error);
    return !error && size != 0;
}

/// A log holds the latest commands of its file, and is nothing without it.
void checkLog(fs::path const& path) {
    fs::path const log(path.string() + "-wal");
    checkCompanion(log);
    // The log first: another program that makes both at this moment makes the file before it.
    if (hasContent(log) && !hasContent(path)) {
        bool const isThere = fs::exists(path);
        throw Refusal((isThere ? "it is empty, but " : "it is not there, but ") +
                      log.filename().string() + (isThere ? " beside it is not" : " beside it is") +
                      ", expected both or neither");
    }
}

/// The absolute path, without symbolic links, of a file that may be written, or made.
fs::path checkedPath(fs::path const& path) {
    std::error_code error;
    fs::file_status const status = fs::status(path, error);
    if (fs::is_directory(status)) {
        throw Refusal("it is a folder, expected a file, or none yet");
    }
    if (!path.has_filename()) {
        throw Refusal("a name is missing at its end, expected the name of a file");
    }
    if (fs::exists(status) && !fs::is_regular_file(status)) {
        throw Refusal("it is not a regular file, expected one, or none yet");
    }
    fs::path resolved = fs::absolute(fs::weakly_canonical(path));
    if (fs::exists(status) && !isAllowed(resolved, R_OK | W_OK)) {
        throw Refusal(std::string("it may not be read and written (") + std::strerror(errno) +
                      "), expected a file that may");
    }
    if (!isAllowed(resolved.parent_path() / "", W_OK | X_OK)) {
        throw Refusal(std::string("no file can be made in its folder (") + std::strerror(errno) +
                      "), expected a folder that may be written");
    }
    checkLog(resolved);
    checkJournal(resolved);
    return resolved;
}

void checkNumbers(U32 application, U32 version) {
    if (application != applicationId) {
        std::array<char, 16> hex{};
        std::snprintf(hex.data(), hex.size(), "0x%08X", application);
        throw Refusal("it is the SQLite database of another program (application id " +
                      std::string(hex.data()) + "), " + ownFile);
    }
    if (version != formatVersion) {
        throw Refusal("its format is version " + std::to_string(version) +
                      (version > formatVersion ? ", of a newer vpagent" : "") +
                      ", expected version " + std::to_string(formatVersion));
    }
}

sqlite3_file* fileOf(Connection const& connection) {
    sqlite3_file* file = nullptr;
    sqlite3_file_control(connection.handle(), "main", SQLITE_FCNTL_FILE_POINTER, &file);
    return file;
}

/// Takes the whole lock of a file that is read without a log. SQLite's own ways to it write to the
/// disk, which may be full, and to a file that may be refused yet.
void lockWhole(Connection const& connection) {
    sqlite3_file* const file = fileOf(connection);
    for (int const level : {SQLITE_LOCK_SHARED, SQLITE_LOCK_RESERVED, SQLITE_LOCK_EXCLUSIVE}) {
        if (int const code = file->pMethods->xLock(file, level); code != SQLITE_OK) {
            throw SqliteError(connection.handle(), code);
        }
    }
}

/// Looks at the file below all that SQLite makes of its content, so that a file of another kind is
/// not even locked. True when the file may turn out to be empty: as it is, or because its making
/// was cut off. That ends with the change to a write-ahead log.
bool checkHeader(Connection const& connection) {
    sqlite3_file* const file = fileOf(connection);
    sqlite3_int64 size = 0;
    Header header{};
    int code = file->pMethods->xFileSize(file, &size);
    if (code == SQLITE_OK && size >= headerSize) {
        code = file->pMethods->xRead(file, header.data(), headerSize, 0);
    }
    if (code != SQLITE_OK) {
        throw Refusal("its header cannot be read, expected a readable file");
    }
    if (size == 0) {
        return true;
    }
    if (!std::equal(headerText.begin(), headerText.end(), header.begin())) {
        throw Refusal(std::string("it is not an SQLite database, ") + ownFile);
    }
    checkNumbers(numberAt(header, applicationAt), numberAt(header, versionAt) & ~logNeeded);
    constexpr unsigned char writeAheadLog = 2;
    return header[journalModeAt] != writeAheadLog;
}

/// The tables that a file of this version has.
std::string const& expectedTables() {
    static std::string const tables = [] {
        Connection memory(":memory:");
        makeTables(memory);
        return tablesOf(memory);
    }();
    return tables;
}

} // namespace

OpenFile::LogGuard::LogGuard(fs::path const& log) : log_(log), wasThere_(fs::exists(log)) {}

OpenFile::LogGuard::~LogGuard() {
    std::error_code ignored;
    if (active_ && !hasContent(log_)) {
        fs::remove(log_, ignored);
    }
}

OpenFile::OpenFile(fs::path const& path, U64 largest)
    : path_(checkedPath(path)),
      log_(path_.string() + "-wal"),
      largest_(largest),
      wasThere_(fs::exists(path_)),
      connection_(path_.string()),
      guard_(log_) {
    connection_.keepLogAtClose(true);
    try {
        checkSizes();
        bool const mayBeNew = checkHeader(connection_);
        if (mayBeNew) {
            makeIfEmpty();
        }
        lock(mayBeNew);
    } catch (...) {
        checkInPlace(); // a file that was taken away fails in any way
        takeBack();
        throw;
    }
    checkContent();
}

/// Before SQLite reads any of them.
void OpenFile::checkSizes() const {
    for (auto const& [file, most] : {std::pair(path_, largest_), std::pair(log_, 2 * largest_),
                                     std::pair(fs::path(path_.string() + "-journal"), largest_)}) {
        std::error_code error;
        auto const size = fs::file_size(file, error);
        if (!error && size > most) {
            throw Refusal((file == path_ ? "it" : file.filename().string() + " beside it") +
                          " has more than " + std::to_string(most) +
                          " bytes, expected a smaller one");
        }
    }
}

/// In one transaction, which a rollback journal guards. Reading takes back what a run wrote that
/// was cut off while it made the file.
void OpenFile::makeIfEmpty() {
    if (connection_.number("PRAGMA page_count") != 0) {
        return;
    }
    connection_.run("BEGIN EXCLUSIVE");
    checkInPlace();
    if (connection_.number("SELECT count(*) FROM sqlite_schema") == 0) {
        makeTables(connection_);
    }
    connection_.run("COMMIT");
}

/// Another program may have removed the file that it made, after we opened it; whoever removes it
/// has it locked. What is at its path now is another file.
void OpenFile::checkInPlace() {
    int moved = 0;
    sqlite3_file_control(connection_.handle(), "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    if (moved != 0) {
        throw SqliteError(connection_.handle(), SQLITE_BUSY); // so that it is tried again
    }
}

/// After the making failed, which left the file as empty as it was. It is removed under the lock;
/// which goes with the connection; where it cannot be had, the empty file stays.
void OpenFile::takeBack() noexcept {
    if (wasThere_) {
        return;
    }
    try {
        if (sqlite3_get_autocommit(connection_.handle()) == 0) {
            connection_.run("ROLLBACK");
        }
        lockWhole(connection_);
        checkInPlace();
        if (!hasContent(path_)) {
            removeFiles();
        }
    } catch (std::exception const&) { // the reason why the making failed is what is told
    }
}

void OpenFile::discard() noexcept {
    if (wasThere_) {
        return;
    }
    try {
        removeFiles();
    } catch (std::exception const&) { // as above
    }
}

/// A journal that is there is ours, as `checkJournal` saw none. A link was there before, whatever
/// it leads to.
void OpenFile::removeFiles() {
    if (!fs::is_symlink(path_)) {
        fs::remove(path_.string() + "-journal");
        fs::remove(log_);
        fs::remove(path_);
    }
}

/// To read a file that has a write-ahead log takes the whole lock. One that has none yet is only
/// locked against writing: two that have made it together would both read it, and stand in each
/// other's way from then on.
void OpenFile::lock(bool mayBeNew) {
    connection_.run("PRAGMA locking_mode = EXCLUSIVE");
    try {
        connection_.number("SELECT count(*) FROM sqlite_schema");
        if (mayBeNew) {
            lockWhole(connection_);
        }
    } catch (SqliteError const& error) {
        if (error.damage()) {
            guard_.activate(); // it is met under the lock
        }
        throw;
    }
    guard_.activate();
    checkInPlace();
    // Nothing is written but the file and its log, and to the log only at a commit.
    connection_.run("PRAGMA temp_store = MEMORY; PRAGMA cache_spill = OFF");
    U64 const pages = largest_ / connection_.number("PRAGMA page_size");
    connection_.run(("PRAGMA max_page_count = " + std::to_string(pages)).c_str());
}

void OpenFile::checkContent() {
    auto const version = static_cast<U32>(connection_.number("PRAGMA user_version"));
    checkWal(log_.string(), (version & logNeeded) != 0);
    checkNumbers(static_cast<U32>(connection_.number("PRAGMA application_id")),
                 version & ~logNeeded);
    if (tablesOf(connection_) != expectedTables()) {
        throw Damage("its tables are not those of a state file");
    }
    std::string const found = connection_.text("PRAGMA integrity_check(1)");
    if (found != "ok") {
        throw Damage(found);
    }
}

void OpenFile::accept() {
    guard_.release();
    if (connection_.text("PRAGMA journal_mode = WAL") != "wal") {
        throw Refusal("it cannot have a write-ahead log, expected a file on a local disk");
    }
    checkInPlace();
}

OpenFile openAlone(fs::path const& path, U64 largest) {
    constexpr int retries = 8;
    std::random_device seed;
    std::minstd_rand random(seed());
    std::uniform_int_distribution<int> milliseconds(10, 60);
    for (int left = retries;; --left) {
        try {
            return OpenFile(path, largest);
        } catch (SqliteError const& error) {
            if (!error.busy() || left == 0) {
                throw;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds(random)));
    }
}

} // namespace VpAgent
