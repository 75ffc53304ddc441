#include "VornicL3Shared/allocator/TraceTable.h"

#include "support/FileBytes.h"

#include <algorithm>
#include <map>
#include <regex>
#include <sstream>
#include <stdexcept>

namespace Test {
namespace {

/// The cells of a row, or nothing when the line is no row of a trace.
std::vector<std::string> cellsOf(std::string const& line) {
    static std::regex const row(R"(\| ([157]) \|.*\|)");
    std::vector<std::string> cells;
    if (std::regex_match(line, row)) {
        std::istringstream text(line.substr(1));
        for (std::string cell; std::getline(text, cell, '|');) {
            cells.push_back(cell);
        }
    }
    return cells;
}

/// What stands in backquotes.
std::vector<std::string> quoted(std::string const& cell) {
    static std::regex const quote("`([^`]*)`");
    std::vector<std::string> found;
    for (std::sregex_iterator it(cell.begin(), cell.end(), quote); it != std::sregex_iterator();
         ++it) {
        found.push_back((*it)[1]);
    }
    return found;
}

std::string const& valuePattern(std::string const& name) {
    static std::map<std::string, std::string> const patterns = {
        {"INDEX", "[0-9]+"},         {"NAME", "(bgp|bridging)"},
        {"ADDRESS", "[0-9.]+"},      {"VTEP", "[0-9.]+@[0-9]+"},
        {"INTF", "Ethernet[0-9/]+"}, {"SHORT", "Et[0-9/]+"},
        {"VLAN", "[0-9]+"},          {"REFERENCE", R"(\{vPort: [0-9]+, references: \[[^\]]*\]\})"},
    };
    return patterns.at(name);
}

/// The words as a pattern, with values for the words in capitals.
std::string patternOf(std::string const& words) {
    static std::regex const piece("([A-Z]{4,})|([^A-Za-z0-9 ])|([A-Za-z0-9 ])");
    std::string pattern;
    for (std::sregex_iterator it(words.begin(), words.end(), piece); it != std::sregex_iterator();
         ++it) {
        if ((*it)[1].matched) {
            pattern += valuePattern((*it)[1]);
        } else {
            pattern += ((*it)[2].matched ? "\\" : "") + it->str();
        }
    }
    return pattern;
}

std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

/// The place of the parenthesis that closes the one at `open`; strings are stepped over.
std::size_t closingOf(std::string const& text, std::size_t open) {
    int depth = 0;
    bool inString = false;
    for (std::size_t at = open; at < text.size(); ++at) {
        if (text[at] == '"') {
            inString = !inString;
        } else if (!inString && text[at] == '(') {
            ++depth;
        } else if (!inString && text[at] == ')' && --depth == 0) {
            return at;
        }
    }
    throw std::runtime_error("a trace statement does not end");
}

U32 lineAt(std::string const& text, std::size_t at) {
    return 1 +
           static_cast<U32>(std::count(text.begin(), text.begin() + static_cast<long>(at), '\n'));
}

} // namespace

TraceTable::TraceTable(std::filesystem::path const& page) {
    std::istringstream lines(Support::bytesOf(page));
    for (std::string line; std::getline(lines, line);) {
        if (auto const cells = cellsOf(line); !cells.empty()) {
            rows_.push_back(rowOf(cells));
        }
    }
}

TraceTable::Row TraceTable::rowOf(std::vector<std::string> const& cells) {
    if (cells.size() != 5) {
        throw std::runtime_error("a row of traces has five cells, not this one:" + cells.at(1));
    }
    Row row;
    row.level = static_cast<U32>(std::stoul(cells[0]));
    row.operations = quoted(cells[1]);
    row.lineWords = quoted(cells[2]);
    row.recordWords = quoted(cells[3]);
    bool const ringOnly = cells[2] == " ring only ";
    if (row.lineWords.empty() && !ringOnly) {
        row.lineWords = {""};
    }
    if (row.recordWords.empty()) {
        row.recordWords = row.lineWords;
    }
    return row;
}

bool TraceTable::tellsOfLine(U32 level, std::string const& text) {
    return tells(level, text, &Row::lineWords);
}

bool TraceTable::tellsOfRecord(U32 level, std::string const& text) {
    return tells(level, text, &Row::recordWords);
}

bool TraceTable::tells(U32 level, std::string const& text, std::vector<std::string> Row::*words) {
    bool told = false;
    for (Row& row : rows_) {
        for (std::string const& operation : row.operations) {
            if (row.level != level || text.rfind(operation, 0) != 0) {
                continue;
            }
            std::string const rest = trimmed(text.substr(operation.size()));
            for (std::string const& each : row.*words) {
                if (std::regex_match(rest, std::regex(" ?" + patternOf(each)))) {
                    row.used.insert({operation, each});
                    told = true;
                }
            }
        }
    }
    return told;
}

std::set<std::string> TraceTable::unused() const {
    std::set<std::string> texts;
    for (Row const& row : rows_) {
        for (auto const* list : {&row.operations, &row.lineWords, &row.recordWords}) {
            for (std::string const& each : *list) {
                if (row.used.count(each) == 0) {
                    texts.insert(row.operations.at(0) + ": " + each);
                }
            }
        }
    }
    return texts;
}

bool TraceStatement::mayHaveMade(U32 recordLevel, U32 line, std::string const& text) const {
    return recordLevel == level && line >= firstLine && line <= lastLine &&
           (literals.empty() ||
            std::any_of(literals.begin(), literals.end(),
                        [&](std::string const& words) { return text.find(words) != text.npos; }));
}

std::vector<TraceStatement> traceStatements(std::filesystem::path const& folder) {
    static std::regex const begin(R"(\bVP_(TRACE|TRACE_TWIN|RING)\(\s*(\w+)Level\b)");
    static std::regex const literal("\"([^\"]+)\"");
    static std::map<std::string, U32> const levels = {{"entry", 1}, {"step", 5}, {"handOver", 7}};
    std::vector<TraceStatement> statements;
    for (auto const& entry : std::filesystem::recursive_directory_iterator(folder)) {
        if (entry.path().extension() != ".cpp") {
            continue;
        }
        std::string const text = Support::bytesOf(entry.path());
        for (std::sregex_iterator it(text.begin(), text.end(), begin); it != std::sregex_iterator();
             ++it) {
            auto const from = static_cast<std::size_t>(it->position());
            std::size_t const to = closingOf(text, text.find('(', from));
            std::string const statement = text.substr(from, to - from);
            statements.push_back({entry.path().filename().string(),
                                  lineAt(text, from),
                                  lineAt(text, to),
                                  levels.at((*it)[2]),
                                  {}});
            for (std::sregex_iterator word(statement.begin(), statement.end(), literal);
                 word != std::sregex_iterator(); ++word) {
                statements.back().literals.push_back((*word)[1]);
            }
        }
    }
    return statements;
}

} // namespace Test
