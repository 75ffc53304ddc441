#pragma once

/// The VP allocator unit, all that its users need: the directory state machine, the allocators, the
/// directories of requests and results, and the records below them.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"
