#include "VornicL3Shared/support/Capture.h"

#include "allocator/Trace.h"
#include "lumlog/Reader.h"

namespace Test {
namespace {

constexpr U64 allLevels = ~U64{0};

} // namespace

Capture::Capture(std::size_t ringSize)
    : ring_(ringSize), formerRing_(Lumlog::RingBuffer::currentIs(&ring_)) {
    VornicCentral::vpTraceHandle().levelsMaskIs(allLevels);
    formerTraceSink_ = Qor::traceSinkIs([this](Qor::TraceLine const& line) {
        traces_.push_back(std::to_string(line.level) + " " + std::string(line.text));
    });
    formerLogSink_ = Qor::logSinkIs([this](Qor::LogMessage const& message) {
        logs_.push_back(std::string(message.descriptor.id) + ": " + std::string(message.text));
    });
}

Capture::~Capture() {
    VornicCentral::vpTraceHandle().levelsMaskIs(0);
    Qor::traceSinkIs(formerTraceSink_);
    Qor::logSinkIs(formerLogSink_);
    Lumlog::RingBuffer::currentIs(formerRing_);
}

Lines Capture::ring() {
    Lines lines;
    for (auto const& record : Lumlog::Reader(ring_.bytes()).rest()) {
        if (record.sequence >= ringSeen_) {
            lines.push_back(std::to_string(record.level) + " " + record.text);
        }
    }
    ringSeen_ = ring_.recordCount();
    return lines;
}

} // namespace Test
