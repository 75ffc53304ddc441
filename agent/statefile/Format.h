#pragma once

#include "pelo/Integers.h"
#include "statefile/Sqlite.h"

#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

/// The format of the state file: an SQLite database with six tables.
///
///     client     the known clients: name, counters, places in the two directories
///     config     what each client requests
///     status     what each client was given
///     reference  the reference list
///     waiting    the invalid reference list
///     boot       the boot status
///
/// A row is one client or one member of one collection. Keys stand in their text forms, so that the
/// file can be read with any SQLite tool; docs/state-file.md shows how. `position` orders the
/// members of a collection: it grows with every insertion into the file, and a member keeps it
/// until it is deleted. `seal` is the checksum of the other columns plus `position` (see `Seal`),
/// which lets a row that is set again be sealed anew without reading its position first.

/// Stands in the header of every state file, where SQLite keeps a number by which programs know
/// their own files: "VPst".
inline constexpr U32 applicationId = 0x56507374;

/// The version of the format, in the header as well.
inline constexpr U32 formatVersion = 1;

/// Is added to the version in FILE while FILE is incomplete without its log; see `WriteAheadLog`.
inline constexpr U32 logNeeded = 0x10000;

/// One table: its columns but `position` and `seal`, in the order in which they are written, read
/// and sealed.
struct Table {
    std::string_view name;
    std::vector<std::string_view> key;
    std::vector<std::string_view> values;

    /// Inserts a row, or gives the one of this key other values and leaves its position as it is.
    /// Parameters: the key, the values, a position, and the seal of key and values.
    std::string writeSql() const;
    /// Parameters: the key.
    std::string eraseSql() const;
    /// All rows by position: the key, the values, the position, the seal.
    std::string selectSql() const;
};

Table const& clientTable();

/// Makes the tables of an empty file and writes the numbers of its header.
void makeTables(Connection& connection);

/// The tables as a text; two files have the same ones exactly if the texts are the same.
std::string tablesOf(Connection& connection);

} // namespace VpAgent
