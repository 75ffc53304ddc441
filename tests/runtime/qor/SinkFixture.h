#pragma once

#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "qor/Sinks.h"
#include "qor/TraceHandle.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace Qor {

/// Collects traces and log messages as texts, and has a ring buffer of its own that is the current
/// one. Puts back what was there before.
class SinkTest : public testing::Test {
protected:
    SinkTest() {
        formerTraceSink_ =
            traceSinkIs([this](TraceLine const& line) { lines_.emplace_back(line.text); });
        formerLogSink_ =
            logSinkIs([this](LogMessage const& message) { messages_.emplace_back(message.text); });
        formerRing_ = Lumlog::RingBuffer::current();
        Lumlog::RingBuffer::currentIs(&ring_);
    }
    ~SinkTest() override {
        traceSinkIs(std::move(formerTraceSink_));
        logSinkIs(std::move(formerLogSink_));
        Lumlog::RingBuffer::currentIs(formerRing_);
    }

    std::vector<std::string> records() const {
        std::vector<std::string> texts;
        for (Lumlog::DecodedRecord const& record : Lumlog::Reader(ring_.bytes()).rest()) {
            texts.push_back(record.text);
        }
        return texts;
    }

    std::vector<std::string> lines_;    ///< the trace lines so far
    std::vector<std::string> messages_; ///< the log messages so far
    Lumlog::RingBuffer ring_{std::size_t{1} << 16};

private:
    TraceSink formerTraceSink_;
    LogSink formerLogSink_;
    Lumlog::RingBuffer* formerRing_;
};

} // namespace Qor
