// The text of the record alone, made by fmt: no time, no ring.

#include "tracing/RecordCase.h"

#include <fmt/format.h>

#include <iterator>

namespace {

class FmtText {
public:
    explicit FmtText(Bench::RecordTexts const& texts) : texts_(texts) {}

    void record(U32 number) {
        text_.clear();
        fmt::format_to(std::back_inserter(text_), "record name: {} intf: {} number: {}",
                       texts_.client.view(), texts_.intf.view(), number);
        benchmark::DoNotOptimize(text_.data());
    }

private:
    Bench::RecordTexts texts_;
    fmt::memory_buffer text_;
};

[[maybe_unused]] bool const added = [] {
    Bench::addRecordCases<FmtText>("fmt::format_to");
    return true;
}();

} // namespace
