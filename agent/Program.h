#pragma once

#include "Options.h"

namespace VpAgent {

/// Runs what the options ask for and returns the exit status.
int runProgram(Options const& options);

} // namespace VpAgent
