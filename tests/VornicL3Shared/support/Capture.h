#pragma once

#include "lumlog/RingBuffer.h"
#include "qor/Sinks.h"

#include <cstddef>
#include <string>
#include <utility>
#include <vector>

namespace Test {

using Lines = std::vector<std::string>;

/// Receives everything that the library reports while it lives: trace lines of the levels given (as
/// "5 text"), log messages (as "ID: text") and the records of a ring buffer of its own (as "5
/// text").
class Capture {
public:
    /// `ringSize` in bytes; the default is more than a test writes.
    explicit Capture(std::size_t ringSize = std::size_t{1} << 22);
    ~Capture();
    Capture(Capture const&) = delete;
    Capture& operator=(Capture const&) = delete;

    /// What has been reported since the last call.
    Lines traces() { return std::exchange(traces_, {}); }
    Lines logs() { return std::exchange(logs_, {}); }
    Lines ring();

    void forget() {
        traces();
        logs();
        ringSeen_ = ring_.recordCount();
    }

private:
    Lines traces_;
    Lines logs_;
    Lumlog::RingBuffer ring_;
    U64 ringSeen_ = 0;
    Lumlog::RingBuffer* formerRing_;
    Qor::TraceSink formerTraceSink_;
    Qor::LogSink formerLogSink_;
};

} // namespace Test
