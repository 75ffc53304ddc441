#pragma once

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

#include <string>

namespace Bench {

/// The edge virtual port number `at`: 4,000 VLANs an interface.
inline VornicCentral::PortVlanKey edgeKey(U32 at) {
    return {Netzo::IntfId("Ethernet" + std::to_string(at / 4000)),
            Bridging::VlanId(static_cast<U16>(at % 4000 + 1))};
}

/// A state machine over its own records, with one client that requests `held` edge virtual ports.
struct Agent {
    static constexpr U32 largestTable = 65535;

    explicit Agent(U32 held, U32 size = largestTable) : tableSize(size) {
        statuses->vpIndexStatusIs("bgp", VornicCentral::vpIndexStatusFactory("bgp"));
        configs->vpIndexConfigIs("bgp", config);
        for (U32 at = 0; at < held; ++at) {
            config->edgeVportIs(edgeKey(at), true);
        }
        start();
    }

    void start() {
        stateMachine = VornicCentral::vpIndexAllocatorDirSmFactory(
            references, waiting, configs, statuses, tableSize, boot, true, false, capabilities);
    }

    U32 tableSize;
    Pelo::Ptr<VornicCentral::VpReferenceList> references =
        VornicCentral::vpReferenceListFactory("references");
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting =
        VornicCentral::vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VornicCentral::VpIndexConfig> config = VornicCentral::vpIndexConfigFactory("bgp");
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configs =
        VornicCentral::vpIndexConfigDirFactory("configs");
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statuses =
        VornicCentral::vpIndexStatusDirFactory("statuses");
    Pelo::Ptr<VornicCentral::VxlanBootStatus> boot = VornicCentral::vxlanBootStatusFactory("boot");
    Pelo::Ptr<VornicCentral::VxlanCapabilities> capabilities =
        VornicCentral::vxlanCapabilitiesFactory("capabilities", false);
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> stateMachine;
};

} // namespace Bench
