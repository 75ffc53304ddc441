#pragma once

#include "state/Database.h"
#include "statefile/Writer.h"

#include <vector>

namespace VpAgent {

/// What the loaded file says beyond the database itself.
struct Loaded {
    std::vector<ClientRow> clients;
    U64 firstFreePosition = 1;
    U64 firstFreeClient = 1;
};

/// Rebuilds the whole database, which is empty, with the order of every collection and of the two
/// directories. Throws `Damage` when a row is not one that this program writes.
Loaded load(Connection& connection, Database& database);

} // namespace VpAgent
