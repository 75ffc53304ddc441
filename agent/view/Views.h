#pragma once

#include <cstddef>
#include <limits>
#include <string>

namespace VpAgent {

class Agent;
struct Client;

/// How a view is narrowed: to one client, and to a number of lines.
struct ViewRange {
    static constexpr std::size_t all = std::numeric_limits<std::size_t>::max();

    Client const* client = nullptr; ///< null for every client
    std::size_t lines = all;
};

/// Each view is a text of whole lines.
std::string viewTable(Agent const& agent, ViewRange range);
std::string viewClients(Agent const& agent, ViewRange range);
std::string viewReferences(Agent const& agent, ViewRange range);
std::string viewWaiting(Agent const& agent, ViewRange range);
std::string viewCounters(Agent const& agent, ViewRange range);
std::string viewLog(Agent const& agent, ViewRange range);
std::string viewRing(Agent const& agent, ViewRange range);

} // namespace VpAgent
