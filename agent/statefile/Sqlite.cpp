#include "statefile/Sqlite.h"

#include "Limits.h"

#include <sqlite3.h>

#include <cstring>
#include <limits>
#include <new>
#include <utility>

namespace VpAgent {

namespace {

/// The words of SQLite, with the reason that the system gave for a failed file operation. The
/// connection knows none of an operation of ours on its file.
std::string description(sqlite3* connection, int code) {
    bool const isKnown = sqlite3_errcode(connection) != SQLITE_OK;
    std::string text = isKnown ? sqlite3_errmsg(connection) : sqlite3_errstr(code);
    int const primary = code & 0xFF;
    int const reason = sqlite3_system_errno(connection);
    if ((primary == SQLITE_IOERR || primary == SQLITE_CANTOPEN || primary == SQLITE_FULL) &&
        reason != 0) {
        text += std::string(" (") + std::strerror(reason) + ')';
    }
    if (primary == SQLITE_FULL) { // SQLite does not tell the two apart
        text += "; a state file has at most " + std::to_string(Limits::stateFile) + " bytes";
    }
    if (primary == SQLITE_TOOBIG) {
        text +=
            "; a row of a state file has at most " + std::to_string(Limits::stateRow) + " bytes";
    }
    return text;
}

} // namespace

SqliteError::SqliteError(sqlite3* connection, int code)
    : runtime_error(description(connection, code)), code_(code & 0xFF) {}

bool SqliteError::busy() const noexcept { return code_ == SQLITE_BUSY || code_ == SQLITE_LOCKED; }

bool SqliteError::damage() const noexcept {
    return code_ == SQLITE_CORRUPT || code_ == SQLITE_NOTADB || code_ == SQLITE_ERROR;
}

Connection::Connection(std::string const& path) {
    int const flags = SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX |
                      SQLITE_OPEN_PRIVATECACHE | SQLITE_OPEN_EXRESCODE;
    int const code = sqlite3_open_v2(path.c_str(), &handle_, flags, nullptr);
    if (handle_ == nullptr) {
        throw std::bad_alloc();
    }
    if (code != SQLITE_OK) {
        SqliteError const error(handle_, code);
        sqlite3_close(handle_);
        throw error;
    }
    distrust();
}

/// Whoever made the file may have put anything into it. Nothing that its schema says is carried
/// out, no page is taken for sound, and no row is larger than those of a state file.
void Connection::distrust() {
    for (auto const& [option, on] :
         {std::pair(SQLITE_DBCONFIG_DEFENSIVE, 1), std::pair(SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0),
          std::pair(SQLITE_DBCONFIG_ENABLE_TRIGGER, 0),
          std::pair(SQLITE_DBCONFIG_ENABLE_VIEW, 0)}) {
        sqlite3_db_config(handle_, option, on, nullptr);
    }
    sqlite3_limit(handle_, SQLITE_LIMIT_LENGTH, Limits::stateRow);
    sqlite3_limit(handle_, SQLITE_LIMIT_ATTACHED, 0);
    run("PRAGMA cell_size_check = ON; PRAGMA mmap_size = 0");
}

Connection::~Connection() { sqlite3_close(handle_); }

void Connection::keepLogAtClose(bool keep) {
    sqlite3_db_config(handle_, SQLITE_DBCONFIG_NO_CKPT_ON_CLOSE, keep ? 1 : 0, nullptr);
}

void Connection::run(char const* sql) {
    int const code = sqlite3_exec(handle_, sql, nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        throw SqliteError(handle_, code);
    }
}

U64 Connection::number(char const* sql) {
    Statement statement(*this, sql);
    if (!statement.step()) {
        return 0;
    }
    U64 const number = statement.integer(0);
    statement.run(); // to its end, where it has its full effect
    return number;
}

std::string Connection::text(char const* sql) {
    Statement statement(*this, sql);
    if (!statement.step()) {
        return {};
    }
    std::string text(statement.text(0));
    statement.run();
    return text;
}

Statement::Statement(Connection& connection, std::string const& sql)
    : connection_(connection.handle()) {
    check(sqlite3_prepare_v3(connection_, sql.data(), static_cast<int>(sql.size()),
                             SQLITE_PREPARE_PERSISTENT, &statement_, nullptr));
}

Statement::~Statement() { sqlite3_finalize(statement_); }

Statement::Statement(Statement&& other) noexcept
    : connection_(other.connection_),
      statement_(std::exchange(other.statement_, nullptr)),
      next_(other.next_) {}

Statement& Statement::bind(U64 number) {
    if (number > static_cast<U64>(std::numeric_limits<sqlite3_int64>::max())) {
        throw std::out_of_range("a number of the state file is above 2^63 - 1");
    }
    check(sqlite3_bind_int64(statement_, next_++, static_cast<sqlite3_int64>(number)));
    return *this;
}

Statement& Statement::bind(std::string_view text) {
    // An empty text needs an address all the same, because none would stand for NULL.
    char const* const data = text.empty() ? "" : text.data();
    check(sqlite3_bind_text64(statement_, next_++, data, text.size(), nullptr, SQLITE_UTF8));
    return *this;
}

void Statement::run() {
    while (step()) {
    }
}

bool Statement::step() {
    int const code = sqlite3_step(statement_);
    if (code == SQLITE_ROW) {
        return true;
    }
    if (code != SQLITE_DONE) {
        SqliteError const error(connection_, code);
        sqlite3_reset(statement_);
        throw error;
    }
    sqlite3_reset(statement_);
    next_ = 1;
    return false;
}

bool Statement::isInteger(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_INTEGER;
}

bool Statement::isText(int column) const {
    return sqlite3_column_type(statement_, column) == SQLITE_TEXT;
}

U64 Statement::integer(int column) const {
    return static_cast<U64>(sqlite3_column_int64(statement_, column));
}

std::string_view Statement::text(int column) const {
    auto const* const bytes = sqlite3_column_text(statement_, column);
    auto const size = static_cast<std::size_t>(sqlite3_column_bytes(statement_, column));
    return bytes == nullptr ? std::string_view()
                            : std::string_view(reinterpret_cast<char const*>(bytes), size);
}

void Statement::check(int code) const {
    if (code != SQLITE_OK) {
        throw SqliteError(connection_, code);
    }
}

} // namespace VpAgent
