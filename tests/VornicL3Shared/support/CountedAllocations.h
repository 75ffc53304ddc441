#pragma once

#include "pelo/Integers.h"

namespace Test {

/// Counts the allocations of this thread from its construction on: every `new` of the program,
/// those of the libraries included.
class CountedAllocations {
public:
    CountedAllocations() noexcept;
    U32 count() const noexcept;

private:
    U32 before_;
};

} // namespace Test
