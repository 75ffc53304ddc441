#include "lumlog/Clock.h"

#include <algorithm>
#include <chrono>
#include <limits>

#if defined(__x86_64__)
#include <cpuid.h>
#endif

namespace Lumlog {
namespace {

U64 nanoseconds(std::chrono::nanoseconds time) { return static_cast<U64>(time.count()); }
U64 systemTime() { return nanoseconds(std::chrono::system_clock::now().time_since_epoch()); }
U64 steadyTime() { return nanoseconds(std::chrono::steady_clock::now().time_since_epoch()); }

#if defined(__x86_64__)
U64 ticksNow() { return __builtin_ia32_rdtsc(); }

/// Whether the processor says that its ticks come at one rate whatever its speed and sleep.
bool processorTicksAreSteady() {
    unsigned a = 0;
    unsigned b = 0;
    unsigned c = 0;
    unsigned d = 0;
    constexpr unsigned invariantTicks = 1u << 8;
    return __get_cpuid(0x80000007u, &a, &b, &c, &d) != 0 && (d & invariantTicks) != 0;
}
#else
U64 ticksNow() { return 0; }
bool processorTicksAreSteady() { return false; }
#endif

/// The three clocks at one moment, which was `duration` ticks long.
struct Reading {
    U64 ticks;
    U64 steady;
    U64 system;
    U64 duration;
};

/// Of a few readings the one that took the least time, since the thread may be put aside in the
/// middle of one.
Reading readClocks() {
    Reading best{};
    best.duration = std::numeric_limits<U64>::max();
    for (int attempt = 0; attempt < 3; ++attempt) {
        U64 const before = ticksNow();
        U64 const steady = steadyTime();
        U64 const system = systemTime();
        U64 const duration = ticksNow() - before;
        if (duration < best.duration) {
            best = {before + duration / 2, steady, system, duration};
        }
    }
    return best;
}

constexpr U64 shortestMeasurement = 1'000'000; // ns
constexpr U64 second = 1'000'000'000;          // ns
constexpr U64 longestReading = 50'000;         // ticks; a longer one is not of one moment
constexpr U64 mostTicks = 0xFFFFFFFFu; // so that their product with the rate fits into 64 bits

} // namespace

Clock::Clock() noexcept : ticksAreSteady_(processorTicksAreSteady()) {}

/// Measures the rate anew. The measured time at least doubles from one measurement to the next
/// until it is seconds long, so the error of a reading does not grow.
U64 Clock::anchored() noexcept {
    if (!ticksAreSteady_) {
        return systemTime();
    }
    Reading const reading = readClocks();
    if (reading.duration > longestReading) {
        return reading.system;
    }
    if (firstTicks_ == 0) {
        firstTicks_ = reading.ticks;
        firstTime_ = reading.steady;
    }
    U64 const time = reading.steady - firstTime_;
    U64 const ticks = reading.ticks - firstTicks_;
    if (time < shortestMeasurement) {
        return reading.system;
    }
    double const ticksPerNanosecond = static_cast<double>(ticks) / static_cast<double>(time);
    if (ticksPerNanosecond <= 1.0 || ticksPerNanosecond > 100.0) {
        ticksAreSteady_ = false; // too slow for the arithmetic, or set back
        validTicks_ = 0;
        return reading.system;
    }
    anchorTicks_ = reading.ticks;
    anchorTime_ = reading.system;
    nanosecondsPerTick_ = static_cast<U64>(4294967296.0 / ticksPerNanosecond);
    validTicks_ = std::min(
        {ticks, static_cast<U64>(static_cast<double>(second) * ticksPerNanosecond), mostTicks});
    return reading.system;
}

} // namespace Lumlog
