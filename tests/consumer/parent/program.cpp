#include "VornicL3Shared/L3McastGroupApi.h"
#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "VornicL3Shared/VornicNetworkGroup.h"

#include <iostream>

int main() {
    using namespace VornicCentral;
    auto const references = vpReferenceListFactory("references");
    auto const configs = vpIndexConfigDirFactory("configs");
    auto const statuses = vpIndexStatusDirFactory("statuses");
    auto const machine = vpIndexAllocatorDirSmFactory(
        references, vpInvalidReferenceListFactory("waiting"), configs, statuses, 16,
        vxlanBootStatusFactory("boot"), true, false, nullptr);
    statuses->vpIndexStatusIs("bgp", vpIndexStatusFactory("bgp"));
    configs->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp"));
    configs->vpIndexConfig("bgp")->vlanVportIs(Bridging::VlanId(100), true);
    std::cout << references->vlanVport(Bridging::VlanId(100)) << '\n';
}
