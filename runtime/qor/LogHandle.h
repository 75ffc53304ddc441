#pragma once

#include "pelo/Duration.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/LogDescriptor.h"

#include <chrono>
#include <functional>
#include <string_view>

namespace Qor {

/// One log message and its rate limit; built when its library is loaded, found by the message's id.
///
/// With `minInterval` zero, the default, every message passes. Otherwise:
/// - After a quiet time the first `burst` messages pass at once (one, when `burst` is 0 or 1).
/// - From then on a message passes when the interval has gone by since the last one that passed.
///   The interval begins at `minInterval`, and each message that passes this way multiplies it by
///   `factor`, up to `maxInterval` (or `minInterval`, when that is longer). All other messages are
///   suppressed.
/// - A quiet time is one interval, as long as it is by then, in which no message arrives, be it
///   one that would have been suppressed. After it the burst is free again and the interval is back
///   at `minInterval`. So a condition that lasts is reported ever more rarely, and a new one is
///   reported at once.
/// - Suppressed messages are counted up to `reported` (0: not at all), and the next message that
///   passes carries the count.
///
/// Cost: a comparison when nothing is limited, else a reading of the clock. Not thread-safe: event
/// thread only.
class VORNIC_RUNTIME_API LogHandle {
public:
    static constexpr Pelo::Duration maxInterval = std::chrono::hours(1);

    /// The descriptor must outlive the handle. Its format has exactly one `%s`; `minInterval` is
    /// not negative and `factor` is at least 1: anything else fails an assertion.
    explicit LogHandle(LogDescriptor const& descriptor,
                       Pelo::Duration minInterval = Pelo::Duration::zero(), double factor = 1.0,
                       U32 burst = 0, U32 reported = 0);
    ~LogHandle();
    LogHandle(LogHandle const&) = delete;
    LogHandle& operator=(LogHandle const&) = delete;

    LogDescriptor const& descriptor() const noexcept { return descriptor_; }

    /// Takes note of a message that arrives now and says whether it passes; `Qor::log` asks.
    bool passes();

    /// The suppressed messages to report with the message that passes; begins counting anew.
    U32 suppressedTake() noexcept;

    /// The handle of that message id, or null. Of several with one id, the one built last.
    static LogHandle* find(std::string_view id) noexcept;

    /// Walks all handles: `for (auto* h = LogHandle::first(); h != nullptr; h = h->next())`, the
    /// last built first.
    static LogHandle* first() noexcept { return first_; }
    LogHandle* next() const noexcept { return next_; }

private:
    bool passesAt(Pelo::Duration now);
    void lengthenInterval();

    LogDescriptor const& descriptor_;
    Pelo::Duration const minInterval_;
    double const factor_;
    U32 const burst_;
    U32 const reported_;

    Pelo::Duration interval_;
    Pelo::Duration lastArrival_{};
    Pelo::Duration lastPassed_{};
    U32 freePasses_ = 0; ///< of the burst, how many are left
    U32 suppressed_ = 0;
    bool idle_ = true; ///< no message has arrived yet
    LogHandle* next_ = nullptr;

    static LogHandle* first_;
};

/// The clock of all rate limits, as the time since any fixed moment; for tests. An empty function
/// stands for the steady clock. Returns the clock that was set before.
using LogClock = std::function<Pelo::Duration()>;
VORNIC_RUNTIME_API LogClock logClockIs(LogClock clock);

} // namespace Qor
