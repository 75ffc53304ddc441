#pragma once

#include "language/Words.h"

#include <span>
#include <string>

namespace VpAgent {

/// The help on the commands that begin with a word, or on the one of two words; without any, the
/// list of all commands and the text forms that they take. Throws `Refusal` for an unknown command.
std::string helpText(std::span<Word const> words);

} // namespace VpAgent
