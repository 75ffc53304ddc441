#pragma once

#include "language/Words.h"

#include <set>
#include <string>

namespace VpAgent {

class Agent;

/// The state for people: an overview, or with `what` one view in full, narrowed to the client
/// `name` where the view is by client. Throws `Refusal` for an unknown view or client, and for a
/// name where there is nothing to narrow.
std::string showView(Agent const& agent, Word const* what, Word const* name);

/// The words for `what`.
std::set<std::string> const& viewNames();

} // namespace VpAgent
