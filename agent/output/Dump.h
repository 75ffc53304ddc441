#pragma once

#include "output/JsonWriter.h"

namespace VpAgent {

class Agent;

/// Writes the whole database and the pool as one JSON object, every collection in its own order.
void writeState(JsonWriter& json, Agent const& agent);

} // namespace VpAgent
