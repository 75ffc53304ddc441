#pragma once

#include "input/LineSource.h"
#include "language/Words.h"
#include "state/Agent.h"

namespace VpAgent {

class StateFile;

/// Runs commands one after the other and remembers how that went.
class Session {
public:
    /// With `keepGoing` a failed command does not end the run. It never ends one at a terminal.
    /// `stateFile` may be null; it keeps what commands change before they are reported as done.
    Session(Agent& agent, bool keepGoing, StateFile* stateFile)
        : agent_(agent), keepGoing_(keepGoing), stateFile_(stateFile) {}

    /// Runs the commands of one source. False when no more are to be run: after `quit` or a failed
    /// command. A command that fails by anything but a `Refusal` ends every run, also one that
    /// would keep going, because what it did up to then stands in the database and must not get
    /// into the state file.
    bool run(LineSource& source);

    /// 0; 1 when a `verify` failed; 2 when a command failed.
    int exitStatus() const noexcept { return commandFailed_ ? 2 : verifyFailed_ ? 1 : 0; }

private:
    bool runLine(CommandLine const& line);
    bool execute(CommandLine const& line);
    bool keepChanges();

    Agent& agent_;
    bool keepGoing_;
    StateFile* stateFile_;
    bool commandFailed_ = false;
    bool verifyFailed_ = false;
    Words words_;
};

} // namespace VpAgent
