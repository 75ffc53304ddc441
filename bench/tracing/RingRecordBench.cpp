// A trace statement whose level is off and that the ring buffer records, beside the least that a
// ring can do.

#include "lumlog/Clock.h"
#include "lumlog/RingBuffer.h"
#include "qor/Trace.h"
#include "tracing/RecordCase.h"

#include <cstddef>
#include <cstring>
#include <string_view>
#include <vector>

namespace {

using Bench::RecordTexts;

class TraceStatement {
public:
    explicit TraceStatement(RecordTexts const& texts) : texts_(texts) {
        former_ = Lumlog::RingBuffer::currentIs(&ring_);
    }
    ~TraceStatement() { Lumlog::RingBuffer::currentIs(former_); }
    TraceStatement(TraceStatement const&) = delete;
    TraceStatement& operator=(TraceStatement const&) = delete;

    void record(U32 number) {
        QOR_TRACE(traces_, 5, "/bench/RingRecord", "record", " name: ", texts_.client,
                  " intf: ", texts_.intf, " number: ", number);
    }

private:
    RecordTexts texts_;
    Lumlog::RingBuffer ring_{Lumlog::RingBuffer::defaultSize};
    Lumlog::RingBuffer* former_;
    Qor::TraceHandle traces_{"VornicBench", false};
};

/// Copies the time and the values one behind the other into a ring, with nothing that would let a
/// reader find them again: no size, no message, no order in which a crash finds them whole.
class BareRing {
public:
    explicit BareRing(RecordTexts const& texts)
        : texts_(texts), bytes_(Lumlog::RingBuffer::defaultSize + overhang) {}

    void record(U32 number) {
        std::byte* const begin = bytes_.data() + (head_ & (Lumlog::RingBuffer::defaultSize - 1));
        std::byte* at = append(begin, clock_.now());
        at = append(at, texts_.client.view());
        at = append(at, texts_.intf.view());
        at = append(at, number);
        head_ += static_cast<std::size_t>(at - begin);
    }

private:
    static constexpr std::size_t overhang = 4096;

    template <class T> static std::byte* append(std::byte* at, T value) {
        std::memcpy(at, &value, sizeof value);
        return at + sizeof value;
    }
    static std::byte* append(std::byte* at, std::string_view text) {
        at = append(at, static_cast<U16>(text.size()));
        std::memcpy(at, text.data(), text.size());
        return at + text.size();
    }

    RecordTexts texts_;
    std::vector<std::byte> bytes_;
    std::size_t head_ = 0;
    Lumlog::Clock clock_;
};

/// What a record costs that has nothing but its time.
class ClockOnly {
public:
    explicit ClockOnly(RecordTexts const&) {}
    void record(U32) { benchmark::DoNotOptimize(clock_.now()); }

private:
    Lumlog::Clock clock_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addRecordCases<TraceStatement>("ours");
    Bench::addRecordCases<BareRing>("bareLoop");
    Bench::addRecordCases<ClockOnly>("clockOnly");
    return true;
}();

} // namespace
