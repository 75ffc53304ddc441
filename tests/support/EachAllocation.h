#pragma once

#include "support/Allocations.h"

#include <new>

namespace Support {

/// Does `work` with its first allocation failing, then with its second one, and so on, until it
/// comes to its end. Calls `unchanged` after each failure. Returns how many there were.
template <class Work, class Check> U32 failEachAllocation(Work work, Check unchanged) {
    for (U32 passing = 0;; ++passing) {
        try {
            FailingAllocations const fail(passing);
            work();
            return passing;
        } catch (std::bad_alloc const&) {
            unchanged();
        }
    }
}

} // namespace Support
