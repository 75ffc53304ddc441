#include "pelo/Decimal.h"

#include <string>

namespace Pelo {

Parsed<U64> parseDecimal(std::string_view text, U64 max) {
    auto const refusedAt = [max](std::size_t at) {
        return ParseError{at, "a number from 0 to " + std::to_string(max)};
    };
    U64 value = 0;
    for (std::size_t at = 0; at < text.size(); ++at) {
        if (text[at] < '0' || text[at] > '9' || (at == 1 && value == 0)) {
            return refusedAt(at);
        }
        auto const digit = static_cast<U64>(text[at] - '0');
        if (digit > max || value > (max - digit) / 10) {
            return refusedAt(at);
        }
        value = value * 10 + digit;
    }
    if (text.empty()) {
        return refusedAt(0);
    }
    return value;
}

} // namespace Pelo
