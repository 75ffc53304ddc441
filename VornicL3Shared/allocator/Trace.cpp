#include "allocator/Trace.h"

namespace VornicCentral {

Qor::TraceHandle& vpTraceHandle() {
    static Qor::TraceHandle handle("VornicVpIndexAllocator", false);
    return handle;
}

} // namespace VornicCentral
