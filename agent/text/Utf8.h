#pragma once

#include "pelo/Utf8.h"

#include <string>
#include <string_view>

namespace VpAgent {

using Pelo::hexByte;
using Pelo::isControl;
using Pelo::printable;
using Pelo::utf8At;
using Pelo::Utf8Character;
using Pelo::utf8Length;

/// `printable(text)` in double quotes, for messages.
std::string inQuotes(std::string_view text);

} // namespace VpAgent
