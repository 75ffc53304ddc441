#pragma once

#include <set>
#include <string>
#include <string_view>

namespace VpAgent {

class Agent;

/// What a path is typed for.
enum class PathUse {
    inspect, ///< to an entity, a collection or a value
    call,    ///< to an operation
};

/// The paths, as words of a command line, that are one step longer than what stands before the last
/// slash of `typed`; the roots when there is none. Empty when that leads nowhere.
std::set<std::string> pathsBehind(std::string_view typed, Agent const& agent, PathUse use);

/// Whether a path leads to something that has steps of its own.
bool pathGoesOn(std::string_view path, Agent const& agent);

} // namespace VpAgent
