#pragma once

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

#include <string>

namespace Examples {

/// The records of one agent, and the two steps that each example takes with them. SmallestHost.cpp
/// takes the same steps one by one and says what each record is for.
struct AgentRecords {
    Pelo::Ptr<VornicCentral::VpReferenceList> references =
        VornicCentral::vpReferenceListFactory("references");
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting =
        VornicCentral::vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configs =
        VornicCentral::vpIndexConfigDirFactory("configs");
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statuses =
        VornicCentral::vpIndexStatusDirFactory("statuses");
    Pelo::Ptr<VornicCentral::VxlanBootStatus> boot = VornicCentral::vxlanBootStatusFactory("boot");
    Pelo::Ptr<VornicCentral::VxlanCapabilities> capabilities =
        VornicCentral::vxlanCapabilitiesFactory("chip", false);

    /// Lets a client in, its status first, and returns the config into which it writes its
    /// requests.
    Pelo::Ptr<VornicCentral::VpIndexConfig> clientAdd(char const* name) {
        statuses->vpIndexStatusIs(name, VornicCentral::vpIndexStatusFactory(name));
        configs->vpIndexConfigIs(name, VornicCentral::vpIndexConfigFactory(name));
        return configs->vpIndexConfig(name);
    }

    /// A state machine over the records as they are, with reallocation. It serves every client that
    /// is there before this returns.
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> start(U32 tableSize) {
        bool const reallocation = true;
        bool const vfiForwarding = false;
        return VornicCentral::vpIndexAllocatorDirSmFactory(references, waiting, configs, statuses,
                                                           tableSize, boot, reallocation,
                                                           vfiForwarding, capabilities);
    }
};

/// A virtual port in words: its kind and its key, as "edge Ethernet1/1:100".
template <class Kind> std::string vportText(typename Kind::Key const& key) {
    return std::string(Kind::word) + ' ' + key.stringValue();
}

} // namespace Examples
