#pragma once

#include "lumlog/ByteCursor.h"

#include <string>

namespace Lumlog {

/// Takes one stored argument of that code letter off the payload of a record and appends its text,
/// which is the same as in a trace line. False when it is not there or makes no sense. Literals are
/// not stored, so 'w' is refused.
bool appendArgText(std::string& text, char code, ByteCursor& payload);

} // namespace Lumlog
