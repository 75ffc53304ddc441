#pragma once

#include "VornicL3Shared/model/Runner.h"

namespace ModelTest {

/// What kind of life a sequence shows.
struct Flavour {
    using Weights = std::vector<std::pair<Verb, U32>>;

    Weights weights;              ///< how often each operation comes
    U32 smallestTable = 8;        ///< entries
    U32 largestTable = 24;        ///< entries
    U32 rebootsPerThousand = 0;   ///< the records go over a restart as boot status
    bool restartEachStep = false; ///< a restart after every single step
    bool hostileIndices = false;  ///< indices that no honest agent writes
};

/// Clients that request and withdraw, and an agent that restarts now and then.
Flavour const& politeClients();
/// The same where the table is too small for what is requested.
Flavour const& fullTables();
/// The same with a restart after every step.
Flavour const& restartEachStep();
/// Operations of state machine and allocators called directly and out of turn.
Flavour const& directCalls();
/// Everything, with records that are written by hand, damaged and replaced.
Flavour const& hostileRecords();

/// The sequence of a seed; the same seed gives the same sequence.
Sequence generated(Flavour const& flavour, U64 seed, std::size_t steps);

} // namespace ModelTest
