#pragma once

#include "output/McastEvent.h"

#include <string>

namespace VpAgent {

class Multicast;

/// An event as a line without its end: `l3/mcast/higig/hwStatus: 258 higigIntfs[1]: none ->
/// [Ethernet1]`, `sample: updateL2Bitmaps(1, true)`, `sample: released`.
std::string eventText(McastEvent const& event);

/// The multicast entities, as whole lines.
std::string viewMulticast(Multicast const& multicast);

} // namespace VpAgent
