// The tracepoint and its loop. This is a module of its own, which is loaded when a session daemon
// is there: LTTng-UST looks for one when it is loaded, and has threads of its own from then on.

#include "tracing/LttngModule.h"

#include "pelo/Integers.h"

#define LTTNG_UST_TRACEPOINT_CREATE_PROBES
#define LTTNG_UST_TRACEPOINT_DEFINE
#include "tracing/LttngEvent.inc"

namespace {

class Tracepoint {
public:
    explicit Tracepoint(Bench::RecordTexts const& texts) : texts_(texts) {}
    void record(U32 number) {
        lttng_ust_tracepoint(vornic_bench, record, texts_.client.data(), texts_.intf.data(),
                             number);
    }

private:
    Bench::RecordTexts texts_;
};

} // namespace

void lttngRecordLoop(benchmark::State& state, Bench::RecordTexts const& texts) {
    if (!lttng_ust_tracepoint_enabled(vornic_bench, record)) {
        state.SkipWithError("the session daemon has not switched the tracepoint on");
        return;
    }
    Bench::recordLoop<Tracepoint>(state, texts);
}
