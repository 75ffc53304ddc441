// Following the allocator: log messages for the operator, trace lines for the developer, and the
// ring buffer, which records every trace whether or not it is shown.
//
// Without the sinks that this program sets, messages and trace lines go to standard error.

#include "AgentRecords.h"

#include <iostream>

using namespace VornicCentral;

namespace {

void showMessage(Qor::LogMessage const& message) {
    std::cout << "  message " << message.descriptor.id << " (severity "
              << message.descriptor.severity << ")\n          " << message.text << '\n';
}

/// The source unit and the line of the statement are in `line` too.
void showTrace(Qor::TraceLine const& line) {
    std::cout << "  trace " << line.level << "  " << line.text << '\n';
}

/// A record is made into text here, when it is read; it was stored as numbers.
void showRecords(Lumlog::RingBuffer const& ring, U64 from) {
    Lumlog::Reader reader(ring.bytes());
    while (auto const record = reader.next()) {
        if (record->sequence >= from) {
            std::cout << "  record " << record->sequence << ", level " << record->level << ": "
                      << record->text << '\n';
        }
    }
}

} // namespace

int main() {
    // The sinks, each for the whole process; an empty function brings the default sink back.
    Qor::logSinkIs(showMessage);
    Qor::traceSinkIs(showTrace);

    // A ring of one's own, to choose its size. It must outlive what traces, so it is made first.
    // Without this the library makes one, which Lumlog::RingBuffer::current() gives.
    Lumlog::RingBuffer ring(std::size_t{1} << 16);
    Lumlog::RingBuffer::currentIs(&ring);

    // The library makes its trace handle with its first trace, so no level can be on in the first
    // start-up; the ring has it all the same. Two entries of the table are free: 8 and 9.
    Examples::AgentRecords records;
    auto const stateMachine = records.start(10);
    auto const bgp = records.clientAdd("bgp");
    std::cout << "The ring after the start:\n";
    showRecords(ring, 0);

    // Levels are switched on and off by the handle's name, at any time. Level 1 is the entry of
    // each operation, 5 each step in it, 7 the hand-over of an index to a client that waited.
    auto* const traces = Qor::TraceHandle::find("VornicVpIndexAllocator");
    if (traces == nullptr) {
        std::cerr << "the library has no trace handle of that name\n";
        return 1;
    }
    std::cout << "A request, with levels 1 and 5:\n";
    traces->levelIs(1, true);
    traces->levelIs(5, true);
    bgp->vlanVportIs(Bridging::VlanId(10), true);
    traces->levelsMaskIs(0);

    // Log messages know no levels: one whenever the table is full, one when an index is handed
    // over.
    std::cout << "Two more requests, one more than there is room for, without traces:\n";
    bgp->vlanVportIs(Bridging::VlanId(20), true);
    bgp->vlanVportIs(Bridging::VlanId(30), true);

    std::cout << "VLAN 10 is given back, with level 7:\n";
    U64 const recordsBefore = ring.recordCount();
    traces->levelIs(7, true);
    bgp->vlanVportDel(Bridging::VlanId(10));

    std::cout << "The same in the ring, which has all levels:\n";
    showRecords(ring, recordsBefore);
}
