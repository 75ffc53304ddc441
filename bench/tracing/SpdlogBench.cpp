// spdlog with a logger and a sink that lock nothing, and a sink that drops the message: what is
// measured is the reading of the clock and the formatting of the values. The sink of that library
// never asks for the line, with its time in text, so "spdlog+line" has one that does.

#include "tracing/RecordCase.h"

#include <spdlog/details/null_mutex.h>
#include <spdlog/logger.h>
#include <spdlog/sinks/base_sink.h>
#include <spdlog/sinks/null_sink.h>

#include <memory>
#include <string_view>

namespace {

using Bench::RecordTexts;

/// Makes the line that a file would get, by the pattern that spdlog has by itself, and drops it.
class LineSink final : public spdlog::sinks::base_sink<spdlog::details::null_mutex> {
    void sink_it_(spdlog::details::log_msg const& message) override {
        spdlog::memory_buf_t line;
        formatter_->format(message, line);
        benchmark::DoNotOptimize(line.data());
    }
    void flush_() override {}
};

template <class Sink> class SpdlogLogger {
public:
    explicit SpdlogLogger(RecordTexts const& texts)
        : texts_(texts), logger_("bench", std::make_shared<Sink>()) {}

    void record(U32 number) {
        logger_.info("record name: {} intf: {} number: {}", texts_.client.view(),
                     texts_.intf.view(), number);
    }

private:
    RecordTexts texts_;
    spdlog::logger logger_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addRecordCases<SpdlogLogger<spdlog::sinks::null_sink_st>>("spdlog");
    Bench::addRecordCases<SpdlogLogger<LineSink>>("spdlog+line");
    return true;
}();

} // namespace
