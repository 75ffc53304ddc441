#include "VornicL3Shared/model/Difference.h"

#include <algorithm>

namespace ModelTest {
namespace {

using Lines = std::vector<std::string>;

/// Up to this many lines of each list are shown.
constexpr std::size_t shown = 12;

std::string part(char const* mark, Lines const& lines, std::size_t first, std::size_t end) {
    std::string text;
    std::size_t const last = std::min(end, first + shown);
    for (std::size_t at = first; at < last; ++at) {
        text += mark + lines[at] + "\n";
    }
    return last < end ? text + mark + "...\n" : text;
}

} // namespace

Lines linesOf(std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        std::size_t const end = std::min(text.find('\n'), text.size());
        lines.emplace_back(text.substr(0, end));
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return lines;
}

std::string differenceOf(Lines const& expected, Lines const& seen) {
    std::size_t same = 0;
    while (same < expected.size() && same < seen.size() && expected[same] == seen[same]) {
        ++same;
    }
    std::size_t tail = 0;
    while (tail < expected.size() - same && tail < seen.size() - same &&
           expected[expected.size() - 1 - tail] == seen[seen.size() - 1 - tail]) {
        ++tail;
    }
    std::size_t const context = same < 3 ? 0 : same - 3;
    return part("    ", expected, context, same) +
           part("  - ", expected, same, expected.size() - tail) +
           part("  + ", seen, same, seen.size() - tail);
}

} // namespace ModelTest
