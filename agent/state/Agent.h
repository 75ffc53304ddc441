#pragma once

#include "output/Reporter.h"
#include "state/Database.h"
#include "state/LogHistory.h"
#include "state/Machine.h"
#include "state/Multicast.h"

namespace VpAgent {

/// All that commands act on: the shared records, the state machine, the multicast entities, and the
/// place where events are reported.
///
/// The state machine goes before the records, as it would in the switch.
class Agent {
public:
    Agent(Reporter& eventReporter, StartSettings const& defaults)
        : reporter(eventReporter), machine(database, defaults), multicast(eventReporter) {}

    Reporter& reporter;
    Database database;
    LogHistory logs;
    Machine machine;
    Multicast multicast;
    bool unitOpen = false;  ///< the state file waits for `commit`
    bool forPeople = false; ///< commands are typed at a terminal, and replies carry notes
};

} // namespace VpAgent
