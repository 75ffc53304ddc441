#pragma once

#include "pelo/Integers.h"

#include <cstdint>

/// What a test can know and decide of its own thread's allocations: every `new` of the program,
/// those of the libraries included. A program that uses it links `support/Allocations.cpp`.
namespace Support {

/// Whether memory is short for good, or was for a moment.
enum class Shortage { lasting, momentary };

/// For its life, lets so many allocations pass and makes every later one throw `std::bad_alloc`, or
/// only the next one.
class FailingAllocations {
public:
    explicit FailingAllocations(U32 passing, Shortage shortage = Shortage::lasting) noexcept;
    ~FailingAllocations();
    FailingAllocations(FailingAllocations const&) = delete;
    FailingAllocations& operator=(FailingAllocations const&) = delete;

    /// Whether any has failed since the construction of the last one of these.
    static bool failed() noexcept;
    /// Makes no further one fail, for whoever has to do more than end the process.
    static void end() noexcept;
};

/// Counts the allocations from its construction on, and those of them that are not given back.
class CountedAllocations {
public:
    CountedAllocations() noexcept;
    U32 count() const noexcept;
    /// Negative when more was given back than taken.
    std::int64_t live() const noexcept;

private:
    U32 before_;
    std::int64_t livingBefore_;
};

} // namespace Support
