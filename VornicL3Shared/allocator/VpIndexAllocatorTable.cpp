// The inspection table of a client's allocator.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "qor/TypeBuilder.h"

namespace VornicCentral {

Qor::TypeData const* VpIndexAllocator::typeData() const {
    using A = VpIndexAllocator;
    static Qor::TypeData const table =
        Qor::TypeBuilder<A>("VornicCentral::VpIndexAllocator")
            .constructor(&A::VpIndexAllocatorIs, {"vpIndexAllocatorDirSm", "vpIndexConfig",
                                                  "vpIndexStatus", "vpReference", "vfiForwarding"})
            .attribute(130, "vpIndexAllocatorDirSm", &A::vpIndexAllocatorDirSm)
            .attribute(131, "vpIndexConfig", &A::vpIndexConfig)
            .attribute(132, "vpIndexStatus", &A::vpIndexStatus)
            .attribute(133, "vpReference", &A::vpReference)
            .attribute(134, "vfiForwarding", &A::vfiForwarding)
            .attribute(135, "initialized", &A::initialized)
            .operation(136, "handleRemoteVport",
                       Qor::overload<void(RemoteVtepKey const&)>(&A::handleRemoteVport),
                       {"remoteVtepKey"})
            .operation(137, "handleMlagRemoteVport",
                       Qor::overload<void(RemoteVtepKey const&)>(&A::handleMlagRemoteVport),
                       {"remoteVtepKey"})
            .operation(138, "handleEdgeVport",
                       Qor::overload<void(PortVlanKey const&)>(&A::handleEdgeVport), {"pvKey"})
            .operation(139, "handleVlanVport",
                       Qor::overload<void(Bridging::VlanId)>(&A::handleVlanVport), {"vlan"})
            .operation(140, "handleEFilterDisableVport",
                       Qor::overload<void(Netzo::IntfId)>(&A::handleEFilterDisableVport), {"intf"})
            .operation(141, "verify", &A::verify)
            .operation(142, "verifyRemoteVpIndex", &A::verifyRemoteVpIndex)
            .operation(143, "verifyMlagRemoteVpIndex", &A::verifyMlagRemoteVpIndex)
            .operation(144, "verifyEdgeVpIndex", &A::verifyEdgeVpIndex)
            .operation(145, "verifyVlanVpIndex", &A::verifyVlanVpIndex)
            .operation(146, "verifyEFilterDisableVpIndex", &A::verifyEFilterDisableVpIndex)
            .build();
    return &table;
}

} // namespace VornicCentral
