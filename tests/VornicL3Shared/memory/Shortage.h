#pragma once

#include "VornicL3Shared/memory/Restarted.h"
#include "support/Allocations.h"

#include <cstdint>
#include <string>

/// What the library makes of every single allocation that fails.
namespace MemoryTest {

/// Something that is done to a world. Done again after it threw, it does what is left.
struct Scenario {
    Test::Settings settings;
    void (*prepare)(Test::World& world);
    void (*operate)(Test::World& world);
};

/// One run of a scenario, in a process of its own, in which one allocation of `operate` fails.
struct Outcome {
    enum class Way {
        untroubled, ///< no allocation was left to fail
        done,       ///< it came to its end without the memory that it asked for
        refused,    ///< `std::bad_alloc` came back
        stopped,    ///< the process ended, in the terminate handler and with SIGABRT
        broken      ///< anything else
    };

    Way way = Way::broken;
    std::string what;      ///< the exception that stopped the process, or what is broken
    std::string state;     ///< when it was done, at last
    std::string reports;   ///< the traces and messages on the way
    Restart restart;       ///< over the records as they were left
    U32 allocations = 0;   ///< of `operate`, the first time
    U64 objects = 0;       ///< of the library's own types that outlived the world
    std::int64_t kept = 0; ///< allocations that were not freed when the world was gone
};

/// Prepares a world and operates on it; lets so many allocations pass. If an exception comes back,
/// the records are restarted in a copy, and then, if memory was short for a moment, the operation
/// is done again; else the world goes as it is. If the process is to end, the records are restarted
/// in a copy first, by the terminate handler: so much a database of the records has at that moment.
Outcome runShort(Scenario const& scenario, U32 passing, Support::Shortage shortage);

} // namespace MemoryTest
