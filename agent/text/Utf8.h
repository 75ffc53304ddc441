#pragma once

#include "pelo/Utf8.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace VpAgent {

using Pelo::hexByte;
using Pelo::isControl;
using Pelo::isInvisible;
using Pelo::printable;
using Pelo::utf8At;
using Pelo::Utf8Character;
using Pelo::utf8Length;

/// Whether the byte is a printable ASCII character, the blank included: as good as all that people
/// and programs write, and a character of its own that is no control character.
constexpr bool isPlain(char c) noexcept { return c >= ' ' && c <= '~'; }

/// Where the plain characters that stand at `from` end.
constexpr std::size_t plainEnd(std::string_view text, std::size_t from) noexcept {
    while (from < text.size() && isPlain(text[from])) {
        ++from;
    }
    return from;
}

/// `printable` of each line of a text.
std::string printableLines(std::string_view text);

/// `printable` of a text of any length, of which a message holds the beginning: at most
/// `Limits::quote` bytes and then "...".
std::string shortened(std::string_view text);

/// `shortened(text)` in double quotes, for messages.
std::string inQuotes(std::string_view text);

} // namespace VpAgent
