#pragma once

#include "VornicL3Shared/L3McastGroupApi.h"
#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

#include <string_view>

#define CONSUMER_API __attribute__((visibility("default")))

namespace Consumer {

/// A multicast group service that shows what it is asked to do; only the plug-in knows its type.
CONSUMER_API Pelo::Ptr<VornicL3::L3McastGroupApi> groupServiceFactory();

/// A record that the plug-in builds with its own code.
CONSUMER_API Pelo::Ptr<VornicCentral::VpIndexConfig> configOfPlugIn();

/// Whether the plug-in sees the same tracker for the type of that name.
CONSUMER_API char const* sameTracker(std::string_view type, Pelo::AllocationTracker const* tracker);

} // namespace Consumer
