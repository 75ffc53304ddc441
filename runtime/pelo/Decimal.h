#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <string_view>

namespace Pelo {

/// Reads a whole text as a decimal number from 0 to `max`, in the one form in which it is printed:
/// digits only, without a sign, blanks or leading zeros.
///
/// The place of an error is the first byte that no such number has there; for a text that ends too
/// early, its end.
VORNIC_RUNTIME_API Parsed<U64> parseDecimal(std::string_view text, U64 max);

} // namespace Pelo
