#pragma once

#include "pelo/Integers.h"

#include <stdexcept>
#include <string>
#include <string_view>

struct sqlite3;
struct sqlite3_stmt;

namespace VpAgent {

/// What SQLite refused to do, in its own words, and its result code.
class SqliteError : public std::runtime_error {
public:
    SqliteError(sqlite3* connection, int code);

    /// Another program holds a lock on the file.
    bool busy() const noexcept;
    /// The content of the file is not what SQLite wrote.
    bool damage() const noexcept;

private:
    int code_;
};

/// One open database file.
///
/// Nothing that the file says of itself is trusted: its triggers and views do not run, its schema
/// calls no functions, and it is never mapped. Errors are thrown as `SqliteError`. Not thread-safe.
/// A forked copy of the process must not use or close it.
class Connection {
public:
    /// Opens the file for reading and writing; makes an empty one when there is none. Neither
    /// changes nor locks it. `path` is absolute.
    explicit Connection(std::string const& path);
    ~Connection();
    Connection(Connection const&) = delete;
    Connection& operator=(Connection const&) = delete;

    sqlite3* handle() const noexcept { return handle_; }

    /// Whether closing leaves the write-ahead log as it is, or brings it into the file.
    void keepLogAtClose(bool keep);

    /// Runs statements that need no result.
    void run(char const* sql);

    /// The first column of the first row of a query; 0 when there is none.
    U64 number(char const* sql);
    std::string text(char const* sql);

private:
    void distrust();

    sqlite3* handle_ = nullptr;
};

/// One statement, compiled once and run any number of times.
///
/// Parameters are bound in their order, from the first one on, before each run. Texts are not
/// copied, so they must stand until the run is over.
class Statement {
public:
    Statement(Connection& connection, std::string const& sql);
    ~Statement();
    Statement(Statement&& other) noexcept;
    Statement(Statement const&) = delete;
    Statement& operator=(Statement const&) = delete;

    /// Binds the next parameter. A number is at most 2^63 - 1.
    Statement& bind(U64 number);
    Statement& bind(std::string_view text);

    /// Runs to the end, and is then ready for the next binding.
    void run();

    /// Moves to the next row; false behind the last one.
    bool step();

    /// The columns of the current row, from 0. Texts hold until the next step.
    bool isInteger(int column) const;
    bool isText(int column) const;
    U64 integer(int column) const; ///< a negative number is above 2^63
    std::string_view text(int column) const;

private:
    void check(int code) const;

    sqlite3* connection_;
    sqlite3_stmt* statement_ = nullptr;
    int next_ = 1; ///< the parameter to bind next
};

} // namespace VpAgent
