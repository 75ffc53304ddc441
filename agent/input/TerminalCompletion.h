#pragma once

namespace VpAgent {

class Agent;

/// Lets the line editor complete what is typed for this agent; with null it completes nothing. The
/// line editor is one for the process, and so is this.
void completeFor(Agent const* agent);

} // namespace VpAgent
