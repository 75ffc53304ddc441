#include "statefile/Format.h"

namespace VpAgent {

namespace {

constexpr char const* schema = R"(
CREATE TABLE client (
    id INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE,
    config_position INTEGER NOT NULL, -- in the config directory; 0: the config is taken out
    vp_table_size INTEGER NOT NULL,
    vp_alloc_requests INTEGER NOT NULL,
    vp_alloc_failures INTEGER NOT NULL,
    vp_free_requests INTEGER NOT NULL,
    position INTEGER NOT NULL, -- in the status directory
    seal INTEGER NOT NULL
) STRICT;
CREATE TABLE config (
    client INTEGER NOT NULL,
    kind TEXT NOT NULL,
    key TEXT NOT NULL,
    position INTEGER NOT NULL,
    seal INTEGER NOT NULL,
    PRIMARY KEY (client, kind, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE status (
    client INTEGER NOT NULL,
    kind TEXT NOT NULL,
    key TEXT NOT NULL,
    vp_index INTEGER NOT NULL,
    position INTEGER NOT NULL,
    seal INTEGER NOT NULL,
    PRIMARY KEY (client, kind, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE reference (
    kind TEXT NOT NULL,
    key TEXT NOT NULL,
    vp_index INTEGER NOT NULL,
    clients TEXT NOT NULL, -- names in their order, a line each
    position INTEGER NOT NULL,
    seal INTEGER NOT NULL,
    PRIMARY KEY (kind, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE waiting (
    kind TEXT NOT NULL,
    key TEXT NOT NULL,
    position INTEGER NOT NULL,
    seal INTEGER NOT NULL,
    PRIMARY KEY (kind, key)
) STRICT, WITHOUT ROWID;
CREATE TABLE boot (
    kind TEXT NOT NULL,
    key TEXT NOT NULL,
    vp_index INTEGER NOT NULL,
    position INTEGER NOT NULL,
    seal INTEGER NOT NULL,
    PRIMARY KEY (kind, key)
) STRICT, WITHOUT ROWID;
)";

using Columns = std::vector<std::string_view>;

Columns operator+(Columns left, Columns const& right) {
    left.insert(left.end(), right.begin(), right.end());
    return left;
}

/// Each of the columns followed by `behind`, with `between` them.
std::string joined(Columns const& columns, std::string_view behind, std::string_view between) {
    std::string text;
    for (std::string_view const column : columns) {
        text += text.empty() ? "" : between;
        text += column;
        text += behind;
    }
    return text;
}

} // namespace

std::string Table::writeSql() const {
    Columns const columns = key + values;
    std::string const position = '?' + std::to_string(columns.size() + 1);
    std::string const seal = '?' + std::to_string(columns.size() + 2);
    std::string places;
    std::string changes;
    for (std::size_t at = 0; at < columns.size(); ++at) {
        places += '?' + std::to_string(at + 1) + ", ";
    }
    for (std::string_view const value : values) {
        changes += std::string(value) + " = excluded." + std::string(value) + ", ";
    }
    return "INSERT INTO " + std::string(name) + " (" + joined(columns, ", ", "") +
           "position, seal) VALUES (" + places + position + ", " + seal + " + " + position +
           ") ON CONFLICT (" + joined(key, "", ", ") + ") DO UPDATE SET " + changes +
           "seal = " + seal + " + position";
}

std::string Table::eraseSql() const {
    return "DELETE FROM " + std::string(name) + " WHERE " + joined(key, " = ?", " AND ");
}

std::string Table::selectSql() const {
    return "SELECT " + joined(key + values, ", ", "") + "position, seal FROM " + std::string(name) +
           " ORDER BY position";
}

Table const& clientTable() {
    static Table const table{"client",
                             {"id"},
                             {"name", "config_position", "vp_table_size", "vp_alloc_requests",
                              "vp_alloc_failures", "vp_free_requests"}};
    return table;
}

void makeTables(Connection& connection) {
    std::string const numbers = "PRAGMA application_id = " + std::to_string(applicationId) +
                                ";PRAGMA user_version = " + std::to_string(formatVersion);
    connection.run(numbers.c_str());
    connection.run(schema);
}

std::string tablesOf(Connection& connection) {
    return connection.text(
        "SELECT group_concat(type || ' ' || name || ' ' || ifnull(sql, ''), x'0A')"
        " FROM (SELECT * FROM sqlite_schema ORDER BY name)");
}

} // namespace VpAgent
