#include "qor/TraceHelper.h"

#include "qor/Sinks.h"

namespace Qor {

TraceHelper::~TraceHelper() {
    traceEmit({handle_, level_, file_, line_, function_, stream_.text()});
}

} // namespace Qor
