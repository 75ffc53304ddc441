#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/TraceHandle.h"
#include "qor/TraceLine.h"
#include "qor/TraceStream.h"

namespace Qor {

/// One trace line, opened when the helper is built and emitted to the trace sink when it is
/// destroyed.
///
///     Qor::TraceHelper line(handle, 5, file, number, __func__);
///     line.stream() << "freeVpIndex" << " index freed is: " << index;
///
/// The helper emits whatever the levels of the handle: who builds one has asked `isOn`. The texts
/// it is given must outlive it. An exception while the line is emitted ends the process. The
/// statements of `qor/Trace.h` do all this.
class VORNIC_RUNTIME_API TraceHelper {
public:
    TraceHelper(TraceHandle const& handle, U32 level, char const* file, U32 line,
                char const* function) noexcept
        : handle_(handle), level_(level), file_(file), line_(line), function_(function) {}
    ~TraceHelper();
    TraceHelper(TraceHelper const&) = delete;
    TraceHelper& operator=(TraceHelper const&) = delete;

    TraceStream& stream() noexcept { return stream_; }

private:
    TraceHandle const& handle_;
    U32 level_;
    char const* file_;
    U32 line_;
    char const* function_;
    TraceStream stream_;
};

} // namespace Qor
