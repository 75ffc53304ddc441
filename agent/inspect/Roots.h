#pragma once

#include "qor/GenericValue.h"

#include <span>
#include <string_view>

namespace VpAgent {

class Agent;

/// Where a path can begin: an entity that the agent holds.
struct Root {
    std::string_view name;
    std::string_view what; ///< for help
    /// A pointer to the entity, to a constant one where it must not be changed; null while there is
    /// none.
    Qor::GenericValue (*entity)(Agent const& agent);
    std::string_view missing; ///< what to say, and what to expect, while there is none
};

/// All of them, in the order in which they are listed. No type has the name of a root.
std::span<Root const> roots();

/// Null when no root has that name.
Root const* findRoot(std::string_view name);

} // namespace VpAgent
