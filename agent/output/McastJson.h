#pragma once

#include "output/JsonWriter.h"
#include "output/McastEvent.h"

namespace VpAgent {

class Multicast;

/// An event as one JSON object:
///
///     {"notification": "l3/mcast/higig/hwStatus", "field": 258, "attribute": "higigIntfs",
///      "key": 1, "previous": null, "value": ["Ethernet1"]}
///     {"called": "sample", "operation": "updateL2Bitmaps", "fapId": 1, "post": true}
///     {"released": "sample"}
void writeEvent(JsonWriter& json, McastEvent const& event);

/// The multicast entities as one JSON object; null while there are none.
void writeMulticast(JsonWriter& json, Multicast const& multicast);

} // namespace VpAgent
