#pragma once

#include "agent/RunVpagent.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

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

/// The error of the last line of a script, whose other lines must be carried out; and the state
/// must be as before.
inline std::string errorOf(std::string const& before, std::string const& command) {
    std::string const out = runJson(before + "dump\n" + command + "\ndump\n", 2, {"--keep-going"});
    std::vector<Json> lines;
    for (std::size_t at = 0; at < out.size(); at = out.find('\n', at) + 1) {
        lines.push_back(Json::parse(out.substr(at, out.find('\n', at) - at)));
    }
    EXPECT_GE(lines.size(), 3u);
    Json const& refused = lines[lines.size() - 2];
    EXPECT_EQ(lines[lines.size() - 3].at("state"), lines.back().at("state"));
    for (std::size_t at = 0; at + 2 < lines.size(); ++at) {
        EXPECT_TRUE(lines[at].contains("ok") || lines[at].contains("log")) << lines[at];
    }
    return refused.value("error", "no error");
}

} // namespace VpAgentTest
