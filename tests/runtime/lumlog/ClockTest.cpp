#include "lumlog/Clock.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace Lumlog {
namespace {

U64 systemTime() {
    auto const time = std::chrono::system_clock::now().time_since_epoch();
    return static_cast<U64>(std::chrono::nanoseconds(time).count());
}

/// From the first reading on, while the rate is measured, and for a while after that.
TEST(Clock, AgreesWithTheSystemClock) {
    constexpr U64 tolerance = 1'000'000; // ns
    Clock clock;
    auto const end = std::chrono::steady_clock::now() + std::chrono::milliseconds(100);
    while (std::chrono::steady_clock::now() < end) {
        U64 const before = systemTime();
        U64 const reading = clock.now();
        U64 const after = systemTime();
        ASSERT_GE(reading + tolerance, before);
        ASSERT_LE(reading, after + tolerance);
    }
}

TEST(Clock, AgreesAgainAfterALongPause) {
    constexpr U64 tolerance = 1'000'000; // ns
    Clock clock;
    for (int reading = 0; reading < 3; ++reading) {
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        clock.now();
    }
    std::this_thread::sleep_for(std::chrono::milliseconds(1200));
    U64 const before = systemTime();
    U64 const reading = clock.now();
    EXPECT_GE(reading + tolerance, before);
    EXPECT_LE(reading, systemTime() + tolerance);
}

} // namespace
} // namespace Lumlog
