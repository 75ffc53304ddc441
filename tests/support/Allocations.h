#pragma once

#include "pelo/Integers.h"

/// What a test can know and decide of its own thread's allocations: every `new` of the program,
/// those of the libraries included. A program that uses it links `support/Allocations.cpp`.
namespace Support {

/// For its life, lets so many allocations pass and makes every later one throw `std::bad_alloc`.
class FailingAllocations {
public:
    explicit FailingAllocations(U32 passing) noexcept;
    ~FailingAllocations();
    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;
};

/// Counts the allocations from its construction on.
class CountedAllocations {
public:
    CountedAllocations() noexcept;
    U32 count() const noexcept;

private:
    U32 before_;
};

} // namespace Support
