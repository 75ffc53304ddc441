#pragma once

#include "statefile/Format.h"
#include "statefile/Seal.h"

#include <stdexcept>

namespace VpAgent {

/// What a state file holds that this program would not have written there.
class Damage : public std::runtime_error {
public:
    using runtime_error::runtime_error;
};

/// Writes one row: columns are added in the order of the table, and `write` ends it. Texts must
/// stand until then.
class RowWriter {
public:
    RowWriter(Table const& table, Statement& statement) : statement_(statement) {
        seal_.add(table.name);
    }

    template <class Column> RowWriter& add(Column const& column) {
        statement_.bind(column);
        seal_.add(column);
        return *this;
    }

    void write(U64 position) {
        statement_.bind(position).bind(seal_.value());
        statement_.run();
    }

private:
    Statement& statement_;
    Seal seal_;
};

/// Reads the rows of one table in the order of their positions, strictly: a column of another type,
/// a number out of its range, a position that does not grow, or a seal that does not fit, is
/// `Damage`.
class RowReader {
public:
    RowReader(Connection& connection, Table const& table)
        : table_(table), rows_(connection, table.selectSql()) {}

    /// Moves to the next row; false behind the last one. The columns of the row before must have
    /// been read, and `position` called last.
    bool next();

    /// The next column. A text holds until `next`.
    U64 number(U64 max);
    std::string_view text();

    /// The position of the row, whose other columns have all been read.
    U64 position();

    /// Ends the reading: the current row is not what it should be.
    [[noreturn]] void refuse(std::string const& what) const;

private:
    U64 integer(U64 max);

    Table const& table_;
    Statement rows_;
    Seal seal_;
    int column_ = 0;
    U64 row_ = 0; ///< the first is 1
    U64 last_ = 0;
};

} // namespace VpAgent
