#pragma once

#include "language/Words.h"

#include <string>

namespace VpAgent {

/// The help on one command, by its first word, or with null the list of all commands and the text
/// forms that they take. Throws `Refusal` for an unknown command.
std::string helpText(Word const* command);

} // namespace VpAgent
