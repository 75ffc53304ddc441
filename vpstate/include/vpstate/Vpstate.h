#pragma once

/// What agents share about virtual ports: the kinds, their keys and values, and the records of
/// requests, results, references, waiting and recovered virtual ports. All that a user of
/// `Vornic::vpstate` needs.
///
/// Read `Kinds.h` first, then `VpRecord.h`: what they say holds for all five kinds and all five
/// records. `VpIndexConfig` is what a client writes, `VpIndexStatus` what it gets back.

#include "vpstate/Kinds.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VpReference.h"
#include "vpstate/VpReferenceList.h"
#include "vpstate/VxlanBootStatus.h"
#include "vpstate/VxlanCapabilities.h"
