// The inspection table of a client's allocator.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "qor/TypeBuilder.h"

namespace VornicCentral {
namespace {

using A = VpIndexAllocator;

void addAttributes(Qor::TypeBuilder<A>& table) {
    table.doc("the allocator of one client: turns what it requests into VP indices")
        .constructor(&A::VpIndexAllocatorIs, {"vpIndexAllocatorDirSm", "vpIndexConfig",
                                              "vpIndexStatus", "vpReference", "vfiForwarding"})
        .attribute(130, "vpIndexAllocatorDirSm", &A::vpIndexAllocatorDirSm)
        .doc("the state machine that the allocator belongs to")
        .attribute(131, "vpIndexConfig", &A::vpIndexConfig)
        .doc("what the client requests; watched")
        .attribute(132, "vpIndexStatus", &A::vpIndexStatus)
        .doc("what the client was given, and its counters")
        .attribute(133, "vpReference", &A::vpReference)
        .doc("who uses which virtual port; all allocators share it")
        .attribute(134, "vfiForwarding", &A::vfiForwarding)
        .doc("a switch that the state machine hands down; the allocator does not use it")
        .attribute(135, "initialized", &A::initialized)
        .doc("whether the client's first requests have been taken up");
}

void addHandlers(Qor::TypeBuilder<A>& table) {
    table
        .operation(136, "handleRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&A::handleRemoteVport),
                   {"remoteVtepKey"})
        .doc("serves one remote VTEP as the config says: requested, requested again or withdrawn")
        .operation(137, "handleMlagRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&A::handleMlagRemoteVport),
                   {"remoteVtepKey"})
        .doc("the same for a remote VTEP of an MLAG pair")
        .operation(138, "handleEdgeVport",
                   Qor::overload<void(PortVlanKey const&)>(&A::handleEdgeVport), {"pvKey"})
        .doc("the same for an edge port with its VLAN")
        .operation(139, "handleVlanVport",
                   Qor::overload<void(Bridging::VlanId)>(&A::handleVlanVport), {"vlan"})
        .doc("the same for a VLAN")
        .operation(140, "handleEFilterDisableVport",
                   Qor::overload<void(Netzo::IntfId)>(&A::handleEFilterDisableVport), {"intf"})
        .doc("the same for an interface with egress filtering disabled");
}

void addChecks(Qor::TypeBuilder<A>& table) {
    table.operation(141, "verify", &A::verify)
        .doc("runs the checks of all kinds; a check that fails stops the process")
        .operation(142, "verifyRemoteVpIndex", &A::verifyRemoteVpIndex)
        .doc("checks that config, status, references and pool agree on the client's remote VTEPs")
        .operation(143, "verifyMlagRemoteVpIndex", &A::verifyMlagRemoteVpIndex)
        .doc("the same for its remote VTEPs of MLAG pairs")
        .operation(144, "verifyEdgeVpIndex", &A::verifyEdgeVpIndex)
        .doc("the same for its edge ports")
        .operation(145, "verifyVlanVpIndex", &A::verifyVlanVpIndex)
        .doc("the same for its VLANs")
        .operation(146, "verifyEFilterDisableVpIndex", &A::verifyEFilterDisableVpIndex)
        .doc("the same for its interfaces with egress filtering disabled");
}

} // namespace

Qor::TypeData const& VpIndexAllocator::typeTable() {
    static Qor::TypeData const table = [] {
        Qor::TypeBuilder<A> builder("VornicCentral::VpIndexAllocator");
        addAttributes(builder);
        addHandlers(builder);
        addChecks(builder);
        return builder.build();
    }();
    return table;
}

Qor::TypeData const* VpIndexAllocator::typeData() const { return &typeTable(); }

} // namespace VornicCentral
