#include "group_service.h"

#include <iostream>

namespace Consumer {
namespace {

class GroupService final : public VornicL3::L3McastGroupApi {
public:
    ~GroupService() override { std::cout << "  the service is gone\n"; }

    void updateL2Bitmaps(Devbus::FapId fapId, bool post) override {
        std::cout << "  chip " << fapId << (post ? " and post\n" : "\n");
    }
    void updateAllL2Bitmaps() override { std::cout << "  all chips\n"; }
};

Pelo::AllocationTracker const* trackerOf(std::string_view type) {
    using namespace VornicCentral;
    if (type == "VpIndexConfig") {
        return &VpIndexConfig::allocationTracker();
    }
    if (type == "VpIndexConfigDir") {
        return &VpIndexConfigDir::allocationTracker();
    }
    if (type == "VpIndexAllocator") {
        return &VpIndexAllocator::allocationTracker();
    }
    return type == "VpIndexAllocatorDirSm" ? &VpIndexAllocatorDirSm::allocationTracker() : nullptr;
}

} // namespace

Pelo::Ptr<VornicL3::L3McastGroupApi> groupServiceFactory() { return Pelo::newNode<GroupService>(); }

Pelo::Ptr<VornicCentral::VpIndexConfig> configOfPlugIn() {
    return Pelo::newNode<VornicCentral::VpIndexConfig>("plug-in");
}

char const* sameTracker(std::string_view type, Pelo::AllocationTracker const* tracker) {
    return trackerOf(type) == tracker ? "one tracker" : "two trackers";
}

} // namespace Consumer
