#pragma once

#include "pelo/Integers.h"

namespace VpAgent {

/// Switches the levels of the allocator's traces on whose bits are set, and all others off.
void traceLevelsAre(U64 mask);

} // namespace VpAgent
