#pragma once

#include "tracing/RecordCase.h"

/// Records with an LTTng-UST tracepoint; an error of the case if the tracepoint is off.
extern "C" [[gnu::visibility("default")]] void lttngRecordLoop(benchmark::State& state,
                                                               Bench::RecordTexts const& texts);
