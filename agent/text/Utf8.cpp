#include "text/Utf8.h"

#include "Limits.h"

namespace VpAgent {

std::string printableLines(std::string_view text) {
    std::string shown;
    for (;;) {
        std::size_t const end = text.find('\n');
        shown += printable(text.substr(0, end));
        if (end == std::string_view::npos) {
            return shown;
        }
        shown += '\n';
        text.remove_prefix(end + 1);
    }
}

std::string shortened(std::string_view text) {
    if (text.size() <= Limits::quote) {
        return printable(text);
    }
    std::size_t end = Limits::quote;
    while (end > 0 &&
           (static_cast<unsigned char>(text[end]) & 0xC0u) == 0x80) { // within a character
        --end;
    }
    return printable(text.substr(0, end)) + "...";
}

std::string inQuotes(std::string_view text) { return '"' + shortened(text) + '"'; }

} // namespace VpAgent
