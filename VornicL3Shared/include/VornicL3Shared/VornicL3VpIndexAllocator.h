#pragma once

/// The VP allocator unit, all that its users need: the directory state machine, the allocators, the
/// directories of requests and results, and the records below them; the sinks and the handle of
/// their messages and traces, the ring buffer of the traces, the exceptions that refuse, and access
/// by name and number.
///
/// The agent builds the state machine over the records, and everything else happens when a record
/// changes. Read `VpIndexAllocatorDirSm.h` first, then `vpstate/VpRecord.h`.
///
///     using namespace VornicCentral;
///     auto const configDir = vpIndexConfigDirFactory("config");
///     auto const statusDir = vpIndexStatusDirFactory("status");
///     bool const vpReallocationEnabled = true, vfiForwarding = false, remoteVportLowIndex = true;
///     auto const stateMachine = vpIndexAllocatorDirSmFactory(
///         vpReferenceListFactory("references"), vpInvalidReferenceListFactory("waiting"),
///         configDir, statusDir, 4096, vxlanBootStatusFactory("boot"), vpReallocationEnabled,
///         vfiForwarding, vxlanCapabilitiesFactory("chip", remoteVportLowIndex));
///
///     auto const config = vpIndexConfigFactory("bgp");
///     auto const status = vpIndexStatusFactory("bgp");
///     statusDir->vpIndexStatusIs("bgp", status); // before the config
///     configDir->vpIndexConfigIs("bgp", config);
///     config->vlanVportIs(Bridging::VlanId(100), true);
///     U16 const index = status->vlanVport(Bridging::VlanId(100)).vpIndex(); // 4095

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"
#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"
#include "qor/Sinks.h"
#include "qor/TraceHandle.h"
#include "qor/TypeModule.h"
#include "vpstate/Vpstate.h"
