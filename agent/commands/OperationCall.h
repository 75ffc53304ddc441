#pragma once

#include "inspect/Found.h"
#include "language/Words.h"
#include "output/Reply.h"
#include "pelo/Node.h"

#include <span>

namespace VpAgent {

/// Calls an operation of an entity by name, through the generic inspection interface. `operation`
/// and `arguments` are the words of the command that name it and its arguments. Throws `Refusal`
/// when they do not fit, or when the operation refuses.
Reply callOperation(Pelo::Node& node, Word const& operation, std::span<Word const> arguments);

/// The same of an entity that a path led to. Of a constant one, an operation that could change it
/// is refused.
Reply callOperation(Found const& entity, Word const& operation, std::span<Word const> arguments);

} // namespace VpAgent
