#include "Faults.h"

#include <cstdlib>

namespace Faults {

unsigned chosen = 0;

namespace {

/// Runs before all other code of the lowest library, and so of the process.
[[gnu::constructor(101)]] void choose() {
    if (char const* const number = std::getenv("VORNIC_FAULT"); number != nullptr) {
        chosen = static_cast<unsigned>(std::strtoul(number, nullptr, 10));
    }
}

} // namespace
} // namespace Faults
