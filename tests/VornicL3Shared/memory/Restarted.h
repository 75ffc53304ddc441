#pragma once

#include "VornicL3Shared/support/World.h"

#include <string>

namespace MemoryTest {

/// What a restart made of the records that a process left.
struct Restart {
    /// The state afterwards, as `plain` has it, when the entries that nobody came back for were
    /// cleared. Ends with what is wrong with it, if anything is; `verify` is run when each
    /// reference holds an index.
    std::string state;
    /// A reference that names nobody held an index that another one holds as well. It was taken
    /// out of the records before the start, which it would have stopped.
    bool doubled = false;
};

/// Restarts over a copy of a world's records, which must all be walked and found.
Restart restarted(Test::World const& world);

/// A state without the counters, which go on from where they were, and with the members of each
/// collection in the order of their texts.
std::string plain(std::string const& state);

} // namespace MemoryTest
