#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/Assert.h"
#include "qor/LogMessage.h"
#include "qor/TraceLine.h"

#include <functional>
#include <string>

namespace Qor {

/// The three places where a host receives what the runtime and the libraries above it report.
///
/// Each has one sink. The default sink, which an empty function stands for, writes one line to
/// standard error that begins with the time:
///
///     2024-05-17T08:30:00.123456Z HANDLE 5 UNIT:LINE allocVpIndex index allocated is: 12
///     2024-05-17T08:30:00.123456Z MESSAGE_ID (severity 3): text (2 more suppressed)
///     2024-05-17T08:30:00.123456Z UNIT:LINE: SIGNATURE: Assertion 'TEXT' failed.
///
/// Each setter returns the sink that was set before. A sink may trace, log and change sinks; the
/// sink under way is the one that was set when its message began. An exception that leaves a sink
/// ends the process, and so does a sink that goes on tracing or logging from within itself, with
/// the assertion "!Pelo::Stack::low()".
///
/// Not thread-safe: set and called on the event thread. Only a failed assertion may come from
/// another thread.
using AssertionSink = std::function<void(AssertionFailure const&)>;
using TraceSink = std::function<void(TraceLine const&)>;
using LogSink = std::function<void(LogMessage const&)>;

VORNIC_RUNTIME_API AssertionSink assertionSinkIs(AssertionSink sink);
VORNIC_RUNTIME_API TraceSink traceSinkIs(TraceSink sink);
VORNIC_RUNTIME_API LogSink logSinkIs(LogSink sink);

/// Hand a report to the sink; for the runtime's own use.
VORNIC_RUNTIME_API void assertionEmit(AssertionFailure const& failure) noexcept;
VORNIC_RUNTIME_API void traceEmit(TraceLine const& line) noexcept;
VORNIC_RUNTIME_API void logEmit(LogMessage const& message) noexcept;

/// A point in time, in nanoseconds since 1970 in UTC, in the form "2024-05-17T08:30:00.123456Z".
VORNIC_RUNTIME_API std::string utcTimeText(U64 nanoseconds);

} // namespace Qor
