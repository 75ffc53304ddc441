#pragma once

#include "inspect/Found.h"
#include "output/JsonWriter.h"
#include "qor/TypeData.h"
#include "qor/TypeModule.h"

#include <string>
#include <variant>
#include <vector>

namespace VpAgent {

/// All modules with their types, and all roots.
struct InspectedModules {};

/// What a path leads to.
struct InspectedPath {
    std::string path;
    Found found;
};

/// What `inspect` shows.
using Inspected = std::variant<InspectedModules, Qor::TypeData const*, InspectedPath>;

/// For people: lines, the last one without its end.
std::string inspectedText(Inspected const& inspected);

/// As one JSON object. Its members, and those of the objects within, stand in an order that depends
/// on nothing but what is shown: modules by name, fields in the order of their declaration, members
/// in that of their collection.
void writeInspected(JsonWriter& json, Inspected const& inspected);

/// The registered modules in the order of their names.
std::vector<Qor::TypeModule const*> modulesByName();

} // namespace VpAgent
