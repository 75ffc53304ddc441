// A type's allocation tracker is one in the process, wherever its objects are built and given back.

#include "agent.h"
#include "group_service.h"
#include "shows.h"

#include <iostream>

namespace Consumer {
namespace {

using namespace VornicCentral;

template <class T> void showTracker(char const* name) {
    std::cout << "  " << name << ": " << T::allocationTracker().live() << " live, "
              << sameTracker(name, &T::allocationTracker()) << '\n';
}

void showTrackers() {
    showTracker<VpIndexConfig>("VpIndexConfig");
    showTracker<VpIndexConfigDir>("VpIndexConfigDir");
    showTracker<VpIndexAllocator>("VpIndexAllocator");
    showTracker<VpIndexAllocatorDirSm>("VpIndexAllocatorDirSm");
}

} // namespace

void showAllocationTracking() {
    std::cout << "allocation tracking\n";
    {
        Agent agent;
        agent.start();
        agent.client("bgp");                                  // built by the libraries
        auto const own = Pelo::newNode<VpIndexConfig>("own"); // built here
        auto const plugIn = configOfPlugIn();                 // built by the plug-in
        showTrackers();
    }
    std::cout << "  all given back\n";
    showTrackers();
}

} // namespace Consumer
