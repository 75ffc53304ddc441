#include "netzo/IpParse.h"

namespace Netzo {
namespace {

bool isDigit(char c) noexcept { return c >= '0' && c <= '9'; }

} // namespace

Pelo::Parsed<std::array<U8, 4>> parseIp4(std::string_view text) {
    std::array<U8, 4> bytes{};
    std::size_t at = 0;
    for (std::size_t index = 0; index < bytes.size(); ++index) {
        if (index > 0) {
            if (at == text.size() || text[at] != '.') {
                return Pelo::ParseError{at, "'.'"};
            }
            ++at;
        }
        std::size_t const begin = at;
        unsigned number = 0;
        for (; at < text.size() && isDigit(text[at]); ++at) {
            number = number * 10 + static_cast<unsigned>(text[at] - '0');
            bool const leadingZero = at > begin && text[begin] == '0';
            if (number > 255 || leadingZero) {
                return Pelo::ParseError{at, "a number from 0 to 255"};
            }
        }
        if (at == begin) {
            return Pelo::ParseError{at, "a number from 0 to 255"};
        }
        bytes[index] = static_cast<U8>(number);
    }
    if (at != text.size()) {
        return Pelo::ParseError{at, "the end of the address"};
    }
    return bytes;
}

std::string ip4Text(std::array<U8, 4> const& bytes) {
    std::string text;
    for (U8 const byte : bytes) {
        if (!text.empty()) {
            text += '.';
        }
        text += std::to_string(byte);
    }
    return text;
}

} // namespace Netzo
