// Uses the records without the library that allocates.

#include "vpstate/Vpstate.h"

#include <iostream>

int main() {
    using namespace VornicCentral;
    auto const list = vpReferenceListFactory("references");
    VpReference reference(VirtualPort(12));
    reference.referenceIs("bgp", true);
    list->vlanVportIs(Bridging::VlanId(100), reference);
    std::cout << list->vlanVport(Bridging::VlanId(100)) << ", "
              << VpReferenceList::allocationTracker().live() << " list\n";
}
