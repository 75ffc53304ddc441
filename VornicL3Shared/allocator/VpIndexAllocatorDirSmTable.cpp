// The inspection table of the directory state machine.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "bask/BitmapTraits.h"
#include "qor/TypeBuilder.h"

namespace VornicCentral {
namespace {

using Sm = VpIndexAllocatorDirSm;

void addRecords(Qor::TypeBuilder<Sm>& table) {
    table
        .doc("the allocator directory state machine: the pool of VP indices and an allocator a "
             "client")
        .constructor(&Sm::VpIndexAllocatorDirSmIs,
                     {"vpReference", "vpInvalidReference", "vpIndexConfigDir", "vpIndexStatusDir",
                      "vpTableSize", "vxlanBootStatus", "vpReallocationEnabled", "vfiForwarding",
                      "vxlanCapabilities"})
        .attribute(130, "vpReference", &Sm::vpReference)
        .doc("who uses which virtual port; watched")
        .attribute(131, "vpInvalidReference", &Sm::vpInvalidReference)
        .doc("which virtual ports wait for an index")
        .attribute(132, "vpIndexConfigDir", &Sm::vpIndexConfigDir)
        .doc("what the clients request; watched")
        .attribute(133, "vpIndexStatusDir", &Sm::vpIndexStatusDir)
        .doc("what the clients were given")
        .attribute(134, "vpTableSize", &Sm::vpTableSize)
        .doc("the size of the chip's VP table, in entries")
        .attribute(135, "vxlanBootStatus", &Sm::vxlanBootStatus)
        .doc("which indices were held before the restart")
        .attribute(136, "vpReallocationEnabled", &Sm::vpReallocationEnabled)
        .doc("whether virtual ports that find the table full wait for a released index")
        .attribute(137, "vfiForwarding", &Sm::vfiForwarding)
        .doc("a switch that is handed down to every allocator")
        .attribute(138, "vxlanCapabilities", &Sm::vxlanCapabilities)
        .doc("what the chip supports");
}

void addOwned(Qor::TypeBuilder<Sm>& table) {
    table.attribute(139, "vpBitmap", &Sm::vpBitmap)
        .create(&Sm::vpBitmapIs, {"id", "size", "initialBitState"})
        .detach(&Sm::vpBitmapDel)
        .doc("the pool of VP indices, a bit an index, set while it is in use; null before the "
             "start-up")
        .collection(140, "vpIndexAllocator", "name", &Sm::vpIndexAllocator)
        .create(&Sm::vpIndexAllocatorIs, {"vpIndexAllocatorDirSm", "vpIndexConfig", "vpIndexStatus",
                                          "vpReference", "vfiForwarding"})
        .del(&Sm::vpIndexAllocatorDel)
        .delAll(&Sm::vpIndexAllocatorDelAll)
        .doc("the allocators, by client name");
}

void addHandlers(Qor::TypeBuilder<Sm>& table) {
    table
        .operation(141, "handleVpIndexConfig",
                   Qor::overload<void(Pelo::String const&)>(&Sm::handleVpIndexConfig), {"name"})
        .doc("makes the allocator of a client that has a config and no allocator yet")
        .operation(142, "handleInvalidRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&Sm::handleInvalidRemoteVport),
                   {"remoteVtepKey"})
        .doc("lets a remote VTEP wait exactly if its reference has no index; does nothing without "
             "reallocation")
        .operation(143, "handleInvalidMlagRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&Sm::handleInvalidMlagRemoteVport),
                   {"remoteVtepKey"})
        .doc("the same for a remote VTEP of an MLAG pair")
        .operation(144, "handleInvalidEdgeVport",
                   Qor::overload<void(PortVlanKey const&)>(&Sm::handleInvalidEdgeVport), {"pvKey"})
        .doc("the same for an edge port with its VLAN")
        .operation(145, "handleInvalidVlanVport",
                   Qor::overload<void(Bridging::VlanId)>(&Sm::handleInvalidVlanVport), {"vlan"})
        .doc("the same for a VLAN")
        .operation(146, "handleInvalidEFilterDisableVport",
                   Qor::overload<void(Netzo::IntfId)>(&Sm::handleInvalidEFilterDisableVport),
                   {"intf"})
        .doc("the same for an interface with egress filtering disabled");
}

void addOperations(Qor::TypeBuilder<Sm>& table) {
    table.operation(147, "allocVpIndex", &Sm::allocVpIndex, {"indexPreferenceHigh"})
        .doc("takes the highest or the lowest free index out of the pool; 65535 when the table is "
             "full")
        .operation(148, "freeVpIndex", &Sm::freeVpIndex, {"vpIndex"})
        .doc("gives an index back to the pool; 65535 is ignored")
        .operation(149, "setVpBitmap", &Sm::setVpBitmap, {"vpIndex"})
        .doc("marks an index as in use; one that is in use already stops the process")
        .operation(150, "isDefaultVp", &Sm::isDefaultVp, {"vpIndex"})
        .doc("whether an index is one of the system's default ones, 1 to 7")
        .operation(151, "recycleOrFreeVpIndex", &Sm::recycleOrFreeVpIndex, {"vpIndex"})
        .doc("hands an index that nobody uses to the first waiting virtual port, or frees it")
        .operation(152, "verify", &Sm::verify)
        .doc("checks that clients, references and pool agree; a check that fails stops the process")
        .operation(153, "reconcile", &Sm::reconcile)
        .doc("recovers the pool from the references or from the boot status, as the start-up does")
        .operation(154, "clearStaleEntries", &Sm::clearStaleEntries)
        .doc("removes every reference without clients and releases its index")
        .attribute(155, "initialized", &Sm::initialized)
        .doc("whether the start-up has finished")
        .operation(156, "handleInitialized", &Sm::handleInitialized)
        .doc("the start-up; stops the process when the pool is there already");
}

} // namespace

Qor::TypeData const& VpIndexAllocatorDirSm::typeTable() {
    static Qor::TypeData const table = [] {
        Qor::TypeBuilder<Sm> builder("VornicCentral::VpIndexAllocatorDirSm");
        addRecords(builder);
        addOwned(builder);
        addHandlers(builder);
        addOperations(builder);
        return builder.build();
    }();
    return table;
}

Qor::TypeData const* VpIndexAllocatorDirSm::typeData() const { return &typeTable(); }

} // namespace VornicCentral
