#pragma once

#include "VornicL3Shared/memory/Shortage.h"

#include <ostream>
#include <vector>

namespace MemoryTest {

/// A scenario and what may become of it.
struct Case {
    char const* name;
    Scenario scenario;
    /// Makes records as a process may leave them that ends in the midst of the operation, apart
    /// from those that lead a restart to what there was before or to what comes of the operation.
    void (*cutShort)(Test::World& world) = nullptr;
    bool mayDouble = false; ///< two references may be left with one index

    /// For GoogleTest, which would print the bytes.
    friend std::ostream& operator<<(std::ostream& out, Case const& one) { return out << one.name; }
};

/// Start-up, requests, releases, restarts and changes of the config directory.
std::vector<Case> const& cases();

} // namespace MemoryTest
