// Restarts: the agent's, which the records survive, and the switch's, which only the boot status
// survives. Traffic keeps its entries of the chip's table in both.

#include "AgentRecords.h"

#include <iostream>

using namespace VornicCentral;

namespace {

/// Every virtual port that holds an index, with the clients that use it.
void print(char const* when, VpReferenceList const& references) {
    std::cout << when << '\n';
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        using References = VpReferenceList::Collection<Kind>;
        for (typename References::Iterator it(references.collection<Kind>()); it; it.advance()) {
            std::cout << "    " << it.value().vPort() << ": " << Examples::vportText<Kind>(it.key())
                      << ' ' << it.value().references() << '\n';
        }
    });
}

/// What is left in the boot status when the switch goes down: the index of each reference.
void keepForReboot(VpReferenceList const& references, VxlanBootStatus& boot) {
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        using References = VpReferenceList::Collection<Kind>;
        for (typename References::Iterator it(references.collection<Kind>()); it; it.advance()) {
            boot.is<Kind>(it.key(), it.value().vPort());
        }
    });
}

} // namespace

int main() {
    U32 const tableSize = 4096;
    RemoteVtepKey const vtep(Vxlan::SwTunnelGroupId(17), Netzo::IpGenAddr({10, 0, 0, 2}));
    Bridging::VlanId const vlan10(10);
    Bridging::VlanId const vlan20(20);
    Bridging::VlanId const vlan30(30);

    Examples::AgentRecords records;
    auto const bridging = records.clientAdd("bridging");
    auto const bgp = records.clientAdd("bgp");
    auto stateMachine = records.start(tableSize);
    bridging->vlanVportIs(vlan10, true);
    bridging->vlanVportIs(vlan20, true);
    bgp->vlanVportIs(vlan20, true);
    bgp->remoteVportIs(vtep, true);
    print("The agent runs.", *records.references);

    // The agent ends. The state machine goes with its last pointer, and the records stay as they
    // are. While it is away, bridging changes its mind, and nobody notices.
    stateMachine = nullptr;
    bridging->vlanVportDel(vlan10);
    bridging->vlanVportIs(vlan30, true);

    // The next one, which must not be made before, takes every index over and then serves the
    // clients: VLAN 30 gets an index that was free. VLAN 10 keeps its own, although no client uses
    // it, since one may yet come back.
    stateMachine = records.start(tableSize);
    print("The agent has restarted; bridging wants vlan 30 now, and vlan 10 no more.",
          *records.references);

    // When every client has had the time to come back, the host releases what nobody came for. It
    // is the host's to decide when that is.
    stateMachine->clearStaleEntries();
    print("Stale entries are cleared.", *records.references);

    // A check of all records and the pool. It stops the process when they disagree, and also while
    // there are stale entries or waiting keys, so it comes last.
    stateMachine->verify();
    std::cout << "The records agree.\n";

    // The switch goes down, and every record is lost. The former run left its indices in the boot
    // status, which is read because the references are empty.
    stateMachine = nullptr;
    Examples::AgentRecords afterReboot;
    keepForReboot(*records.references, *afterReboot.boot);
    stateMachine = afterReboot.start(tableSize);
    print("The switch has rebooted, and no client is there yet.", *afterReboot.references);

    // The clients come back in another order, and each virtual port has the index that it had.
    auto const bgpAgain = afterReboot.clientAdd("bgp");
    auto const bridgingAgain = afterReboot.clientAdd("bridging");
    bgpAgain->remoteVportIs(vtep, true);
    bgpAgain->vlanVportIs(vlan20, true);
    bridgingAgain->vlanVportIs(vlan30, true);
    bridgingAgain->vlanVportIs(vlan20, true);
    stateMachine->clearStaleEntries();
    stateMachine->verify();
    print("The clients have come back.", *afterReboot.references);
}
