#pragma once

#include <initializer_list>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

/// Text in columns: each as wide as its widest cell, two blanks apart. A column whose heading
/// begins with `>` stands at the right, as numbers do. Cells are made safe to show; the last column
/// is not filled up.
class TextTable {
public:
    explicit TextTable(std::initializer_list<std::string_view> headings);

    void row(std::vector<std::string> cells);
    bool empty() const noexcept { return rows_.empty(); }

    /// The headings and the rows, each line behind `indent` and with its line end.
    std::string text(std::string_view indent = "  ") const;

private:
    struct Column {
        std::string heading;
        bool right;
        std::size_t width;
    };

    std::string line(std::vector<std::string> const& cells, std::string_view indent) const;

    std::vector<Column> columns_;
    std::vector<std::vector<std::string>> rows_;
};

/// A number for people, its thousands apart: `16,384`.
std::string grouped(std::size_t number);

/// `grouped(count)` and a noun, in the plural unless it is one: `2 clients`.
std::string counted(std::size_t count, std::string_view noun);

} // namespace VpAgent
