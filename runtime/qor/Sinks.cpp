#include "qor/Sinks.h"

#include "pelo/NoThrow.h"
#include "pelo/Stack.h"
#include "qor/TraceHandle.h"

#include <atomic>
#include <chrono>
#include <cstdio>
#include <iterator>
#include <type_traits>
#include <utility>

namespace Qor {
namespace {

/// The sinks are never destroyed: objects with static storage may report until the very end of the
/// process.
template <class Sink> Sink& sinkOf() {
    static Sink& sink = *new Sink;
    return sink;
}

template <class Sink> Sink sinkIs(Sink sink) {
    return std::exchange(sinkOf<Sink>(), std::move(sink));
}

struct UtcText {
    char text[40];
};

/// Needs no storage, since a failed assertion may mean that there is none.
UtcText utcText(U64 nanoseconds) noexcept {
    using namespace std::chrono;
    sys_time<microseconds> const time(microseconds(nanoseconds / 1000));
    auto const day = floor<days>(time);
    year_month_day const date(day);
    hh_mm_ss const clock(time - day);
    UtcText result;
    std::snprintf(result.text, std::size(result.text), "%04d-%02u-%02uT%02d:%02d:%02d.%06dZ",
                  static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
                  static_cast<unsigned>(date.day()), static_cast<int>(clock.hours().count()),
                  static_cast<int>(clock.minutes().count()),
                  static_cast<int>(clock.seconds().count()),
                  static_cast<int>(clock.subseconds().count()));
    return result;
}

UtcText nowText() noexcept {
    auto const now = std::chrono::system_clock::now().time_since_epoch();
    return utcText(static_cast<U64>(std::chrono::nanoseconds(now).count()));
}

int width(std::string_view text) { return static_cast<int>(text.size()); }

void writeLine(std::string line) {
    line += '\n';
    std::fwrite(line.data(), 1, line.size(),
                stderr); // one write, so that lines of several processes do not mix
}

void writeDefault(AssertionFailure const& failure) noexcept {
    std::fprintf(stderr, "%s %.*s:%u: %.*s: Assertion '%.*s' failed.\n", nowText().text,
                 width(failure.unit), failure.unit.data(), failure.line, width(failure.function),
                 failure.function.data(), width(failure.text), failure.text.data());
}

void writeDefault(TraceLine const& line) {
    std::string text = nowText().text;
    text.append(" ").append(line.handle.name()).append(" ").append(std::to_string(line.level));
    text.append(" ").append(line.file).append(":").append(std::to_string(line.line));
    text.append(" ").append(line.text);
    writeLine(std::move(text));
}

void writeDefault(LogMessage const& message) {
    std::string text = nowText().text;
    text.append(" ").append(message.descriptor.id);
    text.append(" (severity ").append(std::to_string(message.descriptor.severity)).append("): ");
    text.append(message.text);
    if (message.suppressed != 0) {
        text.append(" (").append(std::to_string(message.suppressed)).append(" more suppressed)");
    }
    writeLine(std::move(text));
}

template <class Sink, class Report> void emit(Report const& report) {
    if constexpr (!std::is_same_v<Sink, AssertionSink>) {
        QOR_ASSERT(!Pelo::Stack::low()); // a sink that reports may call itself without end
    }
    Sink const sink = sinkOf<Sink>(); // a copy, because the sink may set another one
    if (sink) {
        sink(report);
    } else {
        writeDefault(report);
    }
}

} // namespace

AssertionSink assertionSinkIs(AssertionSink sink) { return sinkIs(std::move(sink)); }
TraceSink traceSinkIs(TraceSink sink) { return sinkIs(std::move(sink)); }
LogSink logSinkIs(LogSink sink) { return sinkIs(std::move(sink)); }

void assertionEmit(AssertionFailure const& failure) noexcept {
    static std::atomic<bool> failing = false;
    if (failing.exchange(true)) {
        writeDefault(failure);
    } else {
        emit<AssertionSink>(failure);
    }
}

void traceEmit(TraceLine const& line) noexcept {
    Pelo::runNoThrow([&] { emit<TraceSink>(line); });
}
void logEmit(LogMessage const& message) noexcept {
    Pelo::runNoThrow([&] { emit<LogSink>(message); });
}

std::string utcTimeText(U64 nanoseconds) { return utcText(nanoseconds).text; }

} // namespace Qor
