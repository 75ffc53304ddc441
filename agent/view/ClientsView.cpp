#include "state/Agent.h"
#include "text/Utf8.h"
#include "view/TextTable.h"
#include "view/Views.h"
#include "view/WithoutIndex.h"

#include <algorithm>

namespace VpAgent {

using namespace VornicCentral;

namespace {

/// What is unusual about a client.
std::string remarks(Agent const& agent, Client const& client) {
    if (!agent.database.isListed(client)) {
        return "removed";
    }
    if (agent.machine.running() && !agent.machine.stateMachine().vpIndexAllocatorHas(client.name)) {
        return "no allocator";
    }
    return "";
}

std::string summary(Agent const& agent, std::size_t lines) {
    TextTable table{"CLIENT",   ">REMOTE",  ">MLAG",          ">EDGE", ">VLAN",
                    ">EFILTER", ">INDICES", ">WITHOUT INDEX", ""};
    std::size_t hidden = 0;
    forEachMember(agent.database.statuses()->vpIndexStatus(),
                  [&](Pelo::String const& name, auto const& status) {
                      if (lines == 0) {
                          ++hidden;
                          return;
                      }
                      --lines;
                      Client const& client = *agent.database.find(name);
                      std::vector<std::string> cells{std::string(name)};
                      std::size_t without = 0;
                      forEachKind([&](auto kind) {
                          using Kind = decltype(kind);
                          auto const& requested = client.config->template collection<Kind>();
                          cells.push_back(grouped(requested.memberCount()));
                          without += withoutIndex(status->template collection<Kind>());
                      });
                      cells.push_back(grouped(status->memberCount() - without));
                      cells.push_back(grouped(without));
                      cells.push_back(remarks(agent, client));
                      table.row(std::move(cells));
                  });
    if (table.empty()) {
        return "  no clients\n";
    }
    return table.text() +
           (hidden == 0 ? "" : "  and " + counted(hidden, "more client") + ": show clients\n");
}

/// Everything that one client requests, and what else its status holds.
std::string requests(Client const& client) {
    TextTable table{"KIND", "KEY", ">INDEX", ""};
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        forEachMember(client.config->template collection<Kind>(), [&](auto const& key, bool) {
            VirtualPort const* const vPort = client.status->template find<Kind>(key);
            bool const valid = vPort != nullptr && vPort->valid();
            table.row({Kind::word, key.stringValue(), valid ? vPort->stringValue() : "-",
                       vPort == nullptr ? "not handled"
                       : valid          ? ""
                                        : "without index"});
        });
        forEachMember(client.status->template collection<Kind>(), [&](auto const& key,
                                                                      VirtualPort vPort) {
            if (!client.config->template has<Kind>(key)) {
                table.row({Kind::word, key.stringValue(), vPort.stringValue(), "not requested"});
            }
        });
    });
    return table.empty() ? "  nothing\n" : table.text();
}

} // namespace

std::string viewClients(Agent const& agent, ViewRange range) {
    if (range.client != nullptr) {
        return "REQUESTS OF CLIENT " + printable(range.client->name) + '\n' +
               requests(*range.client);
    }
    return "CLIENTS, with what they request\n" + summary(agent, range.lines);
}

std::string viewCounters(Agent const& agent, ViewRange range) {
    TextTable table{"CLIENT", ">TABLE SIZE", ">ALLOCATED", ">FAILED", ">RELEASED"};
    std::size_t left = range.lines;
    forEachMember(agent.database.statuses()->vpIndexStatus(), [&](Pelo::String const& name,
                                                                  auto const& status) {
        bool const other = range.client != nullptr && range.client->name != name;
        if (left == 0 || other) {
            return;
        }
        --left;
        table.row({std::string(name), grouped(status->vpTableSize()),
                   grouped(status->vpAllocRequests()), grouped(status->vpAllocFailures()),
                   grouped(status->vpFreeRequests())});
    });
    return "COUNTERS\n" + (table.empty() ? std::string("  no clients\n") : table.text());
}

} // namespace VpAgent
