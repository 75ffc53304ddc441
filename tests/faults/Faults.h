#pragma once

/// Which of the planted faults a program runs with. Every source of the scratch copy includes it
/// before all else.
namespace Faults {

/// The number in the environment variable VORNIC_FAULT; 0 without it.
[[gnu::visibility("default")]] extern unsigned chosen;

/// What the compiler computes has no faults.
constexpr bool planted(unsigned fault) noexcept {
    return !__builtin_is_constant_evaluated() && chosen == fault;
}

/// The same for the initial value of a variable that outlives all functions: the compiler would
/// take the one above for false, and compute the value itself.
inline bool plantedAtStart(unsigned fault) noexcept { return chosen == fault; }

} // namespace Faults
