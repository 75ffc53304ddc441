#pragma once

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

namespace Consumer {

/// The records of an agent and the state machine over them: a table of ten entries, two of which
/// are free.
struct Agent {
    Pelo::Ptr<VornicCentral::VpReferenceList> references =
        VornicCentral::vpReferenceListFactory("references");
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting =
        VornicCentral::vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configDir =
        VornicCentral::vpIndexConfigDirFactory("configDir");
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statusDir =
        VornicCentral::vpIndexStatusDirFactory("statusDir");
    Pelo::Ptr<VornicCentral::VxlanBootStatus> bootStatus =
        VornicCentral::vxlanBootStatusFactory("boot");
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> machine;

    /// Starts the state machine; it takes clients that come later too.
    void start() {
        machine = VornicCentral::vpIndexAllocatorDirSmFactory(
            references, waiting, configDir, statusDir, 10, bootStatus, true, false, nullptr);
    }

    /// Makes a client and returns its requests; its results are there before it is seen.
    Pelo::Ptr<VornicCentral::VpIndexConfig> client(char const* name) {
        statusDir->vpIndexStatusIs(name, VornicCentral::vpIndexStatusFactory(name));
        auto const config = VornicCentral::vpIndexConfigFactory(name);
        configDir->vpIndexConfigIs(name, config);
        return config;
    }
};

} // namespace Consumer
