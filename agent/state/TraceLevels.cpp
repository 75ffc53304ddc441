#include "state/TraceLevels.h"

#include "lumlog/RingBuffer.h"
#include "qor/TraceHandle.h"
#include "state/Database.h"
#include "state/Machine.h"

#include <stdexcept>

namespace VpAgent {

namespace {

constexpr char const* handleName = "VornicVpIndexAllocator";

/// The library makes its handle with the first trace. A state machine over empty records makes that
/// trace, without leaving it in the ring buffer.
void makeFirstTrace() {
    Lumlog::RingBuffer* const ring = Lumlog::RingBuffer::current();
    Lumlog::RingBuffer::currentIs(nullptr);
    Database const nobody;
    Machine(nobody, {.tableSize = 8}).start({.tableSize = 8});
    Lumlog::RingBuffer::currentIs(ring);
}

} // namespace

void traceLevelsAre(U64 mask) {
    if (Qor::TraceHandle::find(handleName) == nullptr) {
        if (mask == 0) {
            return; // as the handle will be made
        }
        makeFirstTrace();
    }
    Qor::TraceHandle* const handle = Qor::TraceHandle::find(handleName);
    if (handle == nullptr) {
        throw std::logic_error("the library has no trace handle of its name");
    }
    handle->levelsMaskIs(mask);
}

} // namespace VpAgent
