#pragma once

#include "output/Reply.h"

#include <string>

namespace VpAgent {

class Agent;

/// What a failed check means and what an operator can do about it, in lines; empty when the text of
/// the check says all there is to say.
std::string verifyAdvice(VerifyReply const& reply, Agent const& agent);

} // namespace VpAgent
