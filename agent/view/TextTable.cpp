#include "view/TextTable.h"

#include "text/Utf8.h"

#include <algorithm>
#include <utility>

namespace VpAgent {

TextTable::TextTable(std::initializer_list<std::string_view> headings) {
    for (std::string_view const heading : headings) {
        bool const right = heading.starts_with('>');
        std::string const shown(heading.substr(right ? 1 : 0));
        columns_.push_back({shown, right, shown.size()});
    }
}

void TextTable::row(std::vector<std::string> cells) {
    for (std::size_t at = 0; at < cells.size(); ++at) {
        cells[at] = printable(cells[at]);
        columns_[at].width = std::max(columns_[at].width, utf8Length(cells[at]));
    }
    rows_.push_back(std::move(cells));
}

std::string TextTable::text(std::string_view indent) const {
    std::vector<std::string> headings;
    for (Column const& column : columns_) {
        headings.push_back(column.heading);
    }
    std::string text = line(headings, indent);
    for (auto const& cells : rows_) {
        text += line(cells, indent);
    }
    return text;
}

std::string TextTable::line(std::vector<std::string> const& cells, std::string_view indent) const {
    std::string text(indent);
    for (std::size_t at = 0; at < cells.size(); ++at) {
        Column const& column = columns_[at];
        std::string const fill(column.width - utf8Length(cells[at]), ' ');
        text += at == 0 ? "" : "  ";
        text += column.right ? fill + cells[at] : cells[at] + fill;
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text + '\n';
}

std::string grouped(std::size_t number) {
    std::string text = std::to_string(number);
    for (std::size_t at = text.size(); at > 3; at -= 3) {
        text.insert(at - 3, 1, ',');
    }
    return text;
}

std::string counted(std::size_t count, std::string_view noun) {
    return grouped(count) + ' ' + std::string(noun) + (count == 1 ? "" : "s");
}

} // namespace VpAgent
