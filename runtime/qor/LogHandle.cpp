#include "qor/LogHandle.h"

#include "qor/Assert.h"

#include <algorithm>
#include <utility>

namespace Qor {
namespace {

LogClock& clock() {
    static LogClock& instance = *new LogClock;
    return instance;
}

Pelo::Duration now() {
    return clock() ? clock()() : std::chrono::steady_clock::now().time_since_epoch();
}

bool hasOneArgument(std::string_view format) {
    std::size_t const at = format.find("%s");
    return at != format.npos && format.find("%s", at + 1) == format.npos;
}

} // namespace

constinit LogHandle* LogHandle::first_ = nullptr;

LogHandle::LogHandle(LogDescriptor const& descriptor, Pelo::Duration minInterval, double factor,
                     U32 burst, U32 reported)
    : descriptor_(descriptor),
      minInterval_(minInterval),
      factor_(factor),
      burst_(std::max(burst, 1u)),
      reported_(reported),
      interval_(minInterval),
      next_(first_) {
    QOR_ASSERT(hasOneArgument(descriptor.format));
    QOR_ASSERT(minInterval >= Pelo::Duration::zero());
    QOR_ASSERT(factor >= 1.0);
    first_ = this;
}

LogHandle::~LogHandle() {
    LogHandle** link = &first_;
    while (*link != this) {
        link = &(*link)->next_;
    }
    *link = next_;
}

bool LogHandle::passes() { return minInterval_ == Pelo::Duration::zero() || passesAt(now()); }

bool LogHandle::passesAt(Pelo::Duration now) {
    bool const afterQuietTime = idle_ || now - lastArrival_ >= interval_;
    idle_ = false;
    lastArrival_ = now;
    if (afterQuietTime) {
        interval_ = minInterval_;
        freePasses_ = burst_;
    }
    if (freePasses_ > 0) {
        --freePasses_;
    } else if (now - lastPassed_ >= interval_) {
        lengthenInterval();
    } else {
        suppressed_ += suppressed_ < reported_ ? 1 : 0;
        return false;
    }
    lastPassed_ = now;
    return true;
}

void LogHandle::lengthenInterval() {
    Pelo::Duration const longest = std::max(minInterval_, maxInterval);
    double const next = static_cast<double>(interval_.count()) * factor_;
    interval_ = next < static_cast<double>(longest.count())
                    ? Pelo::Duration(static_cast<Pelo::Duration::rep>(next))
                    : longest;
}

U32 LogHandle::suppressedTake() noexcept { return std::exchange(suppressed_, 0u); }

LogHandle* LogHandle::find(std::string_view id) noexcept {
    for (LogHandle* handle = first_; handle != nullptr; handle = handle->next_) {
        if (handle->descriptor_.id == id) {
            return handle;
        }
    }
    return nullptr;
}

LogClock logClockIs(LogClock replacement) { return std::exchange(clock(), std::move(replacement)); }

} // namespace Qor
