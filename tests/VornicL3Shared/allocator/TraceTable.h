#pragma once

#include "pelo/Integers.h"

#include <filesystem>
#include <set>
#include <string>
#include <vector>

namespace Test {

/// The table of traces in the page for operators.
///
/// A row gives the level, the operations, the words of the line behind the operation, and the words
/// of the ring-buffer record where they differ. A cell may list several, each in backquotes; an
/// empty cell of words means none behind the operation, and "ring only" that there is no line.
/// Words in capitals stand for values.
class TraceTable {
public:
    explicit TraceTable(std::filesystem::path const& page);

    std::size_t rowCount() const noexcept { return rows_.size(); }

    /// Whether a row tells of this trace line, or of this record; what of the row told it counts as
    /// used.
    bool tellsOfLine(U32 level, std::string const& text);
    bool tellsOfRecord(U32 level, std::string const& text);

    /// The operations and words that told of nothing so far, each with its row's first operation.
    std::set<std::string> unused() const;

private:
    struct Row {
        U32 level = 0;
        std::vector<std::string> operations;
        std::vector<std::string> lineWords;
        std::vector<std::string> recordWords;
        std::set<std::string> used;
    };

    static Row rowOf(std::vector<std::string> const& cells);
    bool tells(U32 level, std::string const& text, std::vector<std::string> Row::*words);

    std::vector<Row> rows_;
};

/// A trace statement of the sources.
struct TraceStatement {
    std::string file;
    U32 firstLine = 0;
    U32 lastLine = 0;
    U32 level = 0;
    std::vector<std::string> literals; ///< the words that stand in the statement itself

    /// Whether a record that bears this level, line and text may come from the statement.
    bool mayHaveMade(U32 recordLevel, U32 line, std::string const& text) const;
};

/// All trace statements of the sources in a folder.
std::vector<TraceStatement> traceStatements(std::filesystem::path const& folder);

} // namespace Test
