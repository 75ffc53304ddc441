#pragma once

#include "pelo/Integers.h"

namespace Support {

/// For its life, lets so many allocations of this thread pass and makes every later one throw
/// `std::bad_alloc`. It works on every `new` of the program, those of the libraries included.
class FailingAllocations {
public:
    explicit FailingAllocations(U32 passing) noexcept;
    ~FailingAllocations();
    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;
};

} // namespace Support
