#pragma once

#include "lumlog/ByteCursor.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <cstdint>
#include <optional>
#include <string>
#include <variant>

namespace Lumlog {

/// One argument of a record, as it was recorded; an address is a text.
using DecodedArg = std::variant<bool, U64, std::int64_t, std::string>;

/// Takes one stored argument of that code letter off the payload of a record; nothing when it is
/// not there or makes no sense. Literals are not stored, so 'w' is refused.
VORNIC_RUNTIME_API std::optional<DecodedArg> takeArg(char code, ByteCursor& payload);

/// The text of an argument, which is the same as in a trace line.
VORNIC_RUNTIME_API std::string argText(DecodedArg const& arg);

} // namespace Lumlog
