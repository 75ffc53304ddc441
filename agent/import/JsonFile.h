#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <string_view>

namespace VpAgent {

using Json = nlohmann::ordered_json;

/// Reads a JSON text, with the members of every object in the order of the text.
///
/// Throws `Refusal`, with line and column, for what is not JSON and for more than
/// `Limits::jsonDepth` containers within each other, so that whoever walks the tree may recurse. A
/// name that stands twice in one object is there twice: see `checkNames`. Cost: linear, also for an
/// object of many members, which `Json::parse` is not.
Json parseJson(std::string_view text);

/// Throws `Refusal` when one of the names that `counts` takes stands twice in an object: which of
/// the two would count is nobody's guess.
void checkNames(Json const& object, bool (*counts)(std::string_view name));

/// The whole content of a regular file of at most `Limits::importFile` bytes. Throws `Refusal` for
/// any other, when it cannot be read, and when it belongs to the state file in use.
std::string readFile(std::filesystem::path const& path);

} // namespace VpAgent
