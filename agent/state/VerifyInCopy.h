#pragma once

#include "output/Reply.h"

namespace VpAgent {

class Agent;

/// Runs the state machine's `verify` in a forked copy of the process, so that a failed check does
/// not take the agent down. The traces and log messages of the copy are reported as if they came
/// from here. The state machine runs. The copy does not outlive the process, even when that is
/// killed.
///
/// Throws `Refusal` when the copy cannot be made, or ends in any other way than by passing or by a
/// failed check.
VerifyReply verifyInCopy(Agent& agent);

} // namespace VpAgent
