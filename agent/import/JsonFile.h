#pragma once

#include <nlohmann/json.hpp>

#include <filesystem>
#include <string>
#include <string_view>

namespace VpAgent {

using Json = nlohmann::ordered_json;

/// Reads a JSON text, with the members of every object in the order of the text.
///
/// Throws `Refusal` for what is not JSON, with line and column, and for a name that stands twice in
/// one object: which of the two would count is nobody's guess. Cost: linear, also for an object of
/// many members, which `Json::parse` is not.
Json parseJson(std::string_view text);

/// The whole content of a file. Throws `Refusal` when it cannot be read.
std::string readFile(std::filesystem::path const& path);

} // namespace VpAgent
