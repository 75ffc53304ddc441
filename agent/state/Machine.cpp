#include "state/Machine.h"

#include "vpstate/VxlanCapabilities.h"

namespace VpAgent {

void Machine::start(StartSettings const& settings) {
    settings_ = settings;
    stateMachine_ = VornicCentral::vpIndexAllocatorDirSmFactory(
        database_.references(), database_.waiting(), database_.configs(), database_.statuses(),
        settings.tableSize, database_.boot(), settings.reallocation, settings.vfiForwarding,
        VornicCentral::vxlanCapabilitiesFactory("vxlanCapabilities", settings.remoteLow));
}

} // namespace VpAgent
