#pragma once

#include "agent/RunVpagent.h"

#include <nlohmann/json.hpp>

#include <string>
#include <string_view>

namespace VpAgentTest {

/// Keeps the order of members, which is part of what is compared.
using Json = nlohmann::ordered_json;

/// The state after a script, which must run without an error.
inline Json stateAfter(std::string_view script) {
    std::string const out = runJson(std::string(script) + "\ndump\n");
    std::size_t const lastLine = out.rfind('\n', out.size() - 2) + 1; // npos + 1 is 0
    return Json::parse(out.substr(lastLine)).at("state");
}

/// What of a record is not empty, as `{"vlanVport":{"7":15}}`.
inline std::string brief(Json const& record) {
    Json shown = Json::object();
    for (auto const& [name, value] : record.items()) {
        if (!value.is_structured() || !value.empty()) {
            shown[name] = value;
        }
    }
    return shown.dump();
}

} // namespace VpAgentTest
