// The smallest host of the allocator: one client requests one virtual port and is given its index.
//
// A host owns records and lets the state machine work on them. A client writes what it requests
// into its config; the state machine, which watches the configs, writes the index into the client's
// status, within the very call that made the request. All of it happens on one thread.

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

#include <iostream>

using namespace VornicCentral;

int main() {
    // The records of the whole system. Every factory returns a counted pointer and takes a name,
    // which is for people only. They are the host's, because they outlive the state machine.
    auto const references = vpReferenceListFactory("references");  // who uses which index
    auto const waiting = vpInvalidReferenceListFactory("waiting"); // who waits for an index
    auto const boot = vxlanBootStatusFactory("boot");              // used before a reboot: nothing
    auto const capabilities = vxlanCapabilitiesFactory("chip", true); // remote VTEPs: low indices

    // The directories, in which each client has two records: what it requests, what it was given.
    auto const configs = vpIndexConfigDirFactory("configs");
    auto const statuses = vpIndexStatusDirFactory("statuses");

    // The state machine works from its construction to the release of its last pointer. The size is
    // that of the chip's table, of which the system keeps the entries 0 to 7.
    U32 const tableSize = 4096;
    bool const reallocation = true;   // whoever finds the table full waits for a released index
    bool const vfiForwarding = false; // kept, and without influence on the indices
    auto const stateMachine =
        vpIndexAllocatorDirSmFactory(references, waiting, configs, statuses, tableSize, boot,
                                     reallocation, vfiForwarding, capabilities);

    // A client. Its config bears its name, and its status is there first: a config without a status
    // stops the process.
    auto const config = vpIndexConfigFactory("bgp");
    auto const status = vpIndexStatusFactory("bgp");
    statuses->vpIndexStatusIs("bgp", status);
    configs->vpIndexConfigIs("bgp", config);

    // A request is a key in the config. That it is there is the request; the value is not read.
    PortVlanKey const port(Netzo::IntfId("Ethernet1/1"), Bridging::VlanId(100));
    config->edgeVportIs(port, true);

    // The result is there when the call returns.
    std::cout << "edge " << port << " has the index " << status->edgeVport(port) << '\n';

    // Taking the key out gives the index back, and the key leaves the status.
    config->edgeVportDel(port);
    std::cout << "edge " << port << (status->edgeVportHas(port) ? " is there" : " is gone") << ", "
              << stateMachine->vpBitmap()->numBitsInSetState() << " of " << tableSize
              << " entries are in use\n";
}
