#include "allocator/Messages.h"

namespace VornicCentral {
namespace {

constexpr U32 messageSeverity = 3;

/// In the order in which they follow each other in memory.
constexpr Qor::LogDescriptor messages[] = {
    {
        "VORNIC_VIRTUALPORT_RESOURCE_NORMAL",
        "Hardware resources are available to add virtual port for %s",
        "",
        "",
        messageSeverity,
    },
    {
        "VORNIC_VIRTUALPORT_RESOURCE_FULL",
        "Hardware resources are insufficient to add virtual port for %s",
        "The switch is unable to program virtual port (remote VTEP or edge vlan-port pair) for the "
        "vxlan end point "
        "due to insufficient hardware resources. Traffic forwarding will not happen on this "
        "virtual port.",
        "Reconfigure the network to reduce the number of entries in the hardware table like remote "
        "VTEPs or edge "
        "vlan-port pairs.",
        messageSeverity,
    },
};

constexpr double noGrowth = 1.0;

Qor::LogHandle normalHandle(messages[0], Pelo::Duration(0), noGrowth, 0, 0);
Qor::LogHandle fullHandle(messages[1], Pelo::Duration(0), noGrowth, 0, 0);

} // namespace

Qor::LogHandle& resourceNormalLog() { return normalHandle; }
Qor::LogHandle& resourceFullLog() { return fullHandle; }

} // namespace VornicCentral
