#pragma once

#include "agent/State.h"
#include "support/FileBytes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgentTest {

/// Commands that leave 40 or so records in the ring.
inline constexpr char const* someRecords = "client add leaf\nstart table-size=64\n"
                                           "request leaf edge Ethernet1/1:100\n"
                                           "request leaf remote 10.0.0.2@17\n"
                                           "withdraw leaf edge Ethernet1/1:100\n";

/// The objects that a script gives with `--json`.
inline std::vector<Json> jsonLines(std::string_view script, int status = 0) {
    std::string const out = runJson(script, status, {"--keep-going"});
    std::vector<Json> lines;
    for (std::size_t at = 0; at < out.size(); at = out.find('\n', at) + 1) {
        lines.push_back(Json::parse(out.substr(at, out.find('\n', at) - at)));
    }
    return lines;
}

/// The last of them.
inline Json lastJson(std::string_view script) { return jsonLines(script).back(); }

/// What a script prints for people, which must run without an error.
inline std::string textOf(std::string_view script) {
    Outcome const outcome = runVpagent({}, script);
    EXPECT_EQ(outcome.status, 0) << outcome.err;
    return outcome.out;
}

/// The texts of the records in an answer to `show ring`.
inline std::vector<std::string> ringTexts(Json const& answer) {
    std::vector<std::string> texts;
    for (Json const& record : answer.at("ring")) {
        texts.push_back(record.at("text"));
    }
    return texts;
}

/// The files of a test, by their names.
class RingFiles : public testing::Test {
protected:
    std::string path(std::string_view name) const { return (folder_.path() / name).string(); }

    /// Writes the ring that a script leaves to a file and returns the file's bytes.
    std::string dumpOf(std::string const& script, std::string_view name) const {
        textOf(script + "ring dump " + path(name) + '\n');
        return Support::bytesOf(path(name));
    }

    TemporaryFolder folder_;
};

} // namespace VpAgentTest
