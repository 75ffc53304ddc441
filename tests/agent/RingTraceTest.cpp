#include "agent/RingScripts.h"
#include "lumlog/RingFormat.h"
#include "support/FileBytes.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <map>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Lines = std::vector<std::string>;

/// Runs babeltrace2 on a folder, which must succeed without a warning, and gives its lines.
Lines babeltrace(std::string const& folder) {
    std::string const command =
        "babeltrace2 --clock-seconds --no-delta --color=never '" + folder + "' 2>&1";
    std::FILE* const pipe = ::popen(command.c_str(), "r");
    std::string out;
    for (int c = std::fgetc(pipe); c != EOF; c = std::fgetc(pipe)) {
        out += static_cast<char>(c);
    }
    EXPECT_EQ(::pclose(pipe), 0) << out;
    Lines lines;
    for (std::size_t at = 0; at < out.size(); at = out.find('\n', at) + 1) {
        lines.push_back(out.substr(at, out.find('\n', at) - at));
    }
    return lines;
}

/// The values of the arguments in a line of babeltrace2: `..., arg0 = 63, arg1 = "leaf" }`.
Lines argumentsIn(std::string const& line) {
    Lines values;
    std::size_t at = line.rfind("{ text = ");
    for (;;) {
        std::string const name = ", arg" + std::to_string(values.size()) + " = ";
        at = line.find(name, at);
        if (at == std::string::npos) {
            return values;
        }
        at += name.size();
        bool const quoted = line[at] == '"';
        std::size_t const end = quoted ? line.find('"', at + 1) + 1 : line.find_first_of(", ", at);
        values.push_back(line.substr(at, end - at));
    }
}

/// A wording with these values in its places, as the text of the record has them.
std::string filled(std::string const& wording, Lines const& values) {
    std::string text;
    std::size_t from = 0;
    for (std::string const& value : values) {
        std::size_t const at = wording.find('{', from);
        std::size_t const end = wording.find('}', from) + 1;
        std::string const place = wording.substr(at, end - at);
        bool const quoted = place == "{text}" || place == "{address}";
        text += wording.substr(from, at - from);
        text += place == "{bool}" ? (value == "1" ? "true" : "false")
                : quoted          ? value.substr(1, value.size() - 2)
                                  : value;
        from = end;
    }
    return text + wording.substr(from);
}

/// The line of babeltrace2 for a record, with these values as its arguments.
std::string lineFor(Json const& record, std::string const& wording, Lines const& values) {
    std::string const time = record.at("time").dump();
    std::string const unit = record.at("unit");
    std::string const line = record.at("line").dump();
    std::string text =
        '[' + time.substr(0, time.size() - 9) + '.' + time.substr(time.size() - 9) + "] " + unit +
        ':' + line + ' ' + wording + ": { sequence = " + record.at("sequence").dump() +
        ", time = " + time + ", msgId = " + record.at("msgId").dump() +
        ", level = " + record.at("level").dump() + ", unit = \"" + unit + "\", line = " + line +
        " }, { text = \"" + record.at("text").get<std::string>() + '"';
    for (std::size_t at = 0; at < values.size(); ++at) {
        text += ", arg" + std::to_string(at) + " = " + values[at];
    }
    return text + " }";
}

class RingTrace : public RingFiles {
protected:
    /// Compares all that babeltrace2 reads from a folder with records and messages as JSON.
    void expectTrace(std::string_view folder, Json const& records, Json const& messages) const {
        std::map<unsigned, std::string> wordings;
        for (Json const& message : messages) {
            wordings[message.at("msgId")] = message.at("format");
        }
        Lines const lines = babeltrace(path(folder));
        Lines expected;
        for (std::size_t at = 0; at < records.size() && at < lines.size(); ++at) {
            std::string const& wording = wordings[records[at].at("msgId")];
            Lines const values = argumentsIn(lines[at]);
            EXPECT_EQ(filled(wording, values), records[at].at("text"));
            expected.push_back(lineFor(records[at], wording, values));
        }
        EXPECT_EQ(lines, expected);
        EXPECT_EQ(lines.size(), records.size());
    }

    std::size_t filesBelow(std::string_view name) const {
        return static_cast<std::size_t>(
            std::distance(fs::recursive_directory_iterator(path(name)), {}));
    }
};

constexpr char const* allKinds = "client add leaf\nclient add spine\nstart table-size=11\n"
                                 "request leaf edge Ethernet1/1:100\nrequest leaf vlan 7\n"
                                 "request leaf remote 10.0.0.2@17\nrequest leaf mlag ::1@2\n"
                                 "request spine efilter \"port 7\"\nrequest spine vlan 7\n"
                                 "call allocVpIndex false\ncall isDefaultVp 3\n"
                                 "withdraw leaf edge Ethernet1/1:100\nclient retire leaf\n";

TEST_F(RingTrace, IsReadByBabeltraceRecordByRecord) {
    std::vector<Json> const lines =
        jsonLines(allKinds + ("show ring\nmessage\nshow ring --ctf " + path("trace") + '\n'));
    Json const& written = lines.back();
    Json const& messages = lines[lines.size() - 2];
    Json const& shown = lines[lines.size() - 3];
    ASSERT_GT(shown.at("ring").size(), 80u);
    expectTrace("trace", shown.at("ring"), messages.at("messages"));
    EXPECT_EQ(written.dump(), R"({"ok":"show","line":16,"ctf":")" + path("trace") +
                                  R"(","records":)" + std::to_string(shown.at("ring").size()) +
                                  '}');
    EXPECT_EQ(filesBelow("trace"), 2u);
}

TEST_F(RingTrace, IsMadeOfARingInAFileToo) {
    std::vector<Json> const lines =
        jsonLines(allKinds + ("show ring\nmessage\nring dump " + path("ring") + '\n'));
    folder_.write("core", std::string(12345, 'x') + Support::bytesOf(path("ring")));
    std::string const show = "show ring --from " + path("core") + " --ctf ";
    Json const written = lastJson(show + path("trace"));
    expectTrace("trace", lines[lines.size() - 3].at("ring"),
                lines[lines.size() - 2].at("messages"));
    EXPECT_EQ(written.at("from"), path("core"));
    EXPECT_EQ(written.at("damaged"), 0);
    EXPECT_EQ(textOf(show + path("again")),
              "ring buffer: " + std::to_string(written.at("records").get<int>()) +
                  " records written to \"" + path("again") + "\"\n");
    EXPECT_EQ(Support::bytesOf(path("again/stream")), Support::bytesOf(path("trace/stream")));
    EXPECT_EQ(Support::bytesOf(path("again/metadata")), Support::bytesOf(path("trace/metadata")));
}

TEST_F(RingTrace, HoldsOnlyTheLastRecordsWhenTheseAreAskedFor) {
    std::vector<Json> const lines = jsonLines(
        allKinds + ("show ring --last 3\nmessage\nshow ring --last 3 --ctf " + path("trace")));
    ASSERT_EQ(lines[lines.size() - 3].at("ring").size(), 3u);
    expectTrace("trace", lines[lines.size() - 3].at("ring"),
                lines[lines.size() - 2].at("messages"));
}

TEST_F(RingTrace, OfAnEmptyRingIsReadAsNothing) {
    EXPECT_EQ(lastJson("show ring --ctf " + path("trace")).at("records"), 0);
    EXPECT_EQ(babeltrace(path("trace")), Lines{});
}

/// Times as a clock that was set back, and damage, leave them.
TEST_F(RingTrace, IsReadWhateverTheTimesOfItsRecords) {
    std::string ring = dumpOf(allKinds, "ring");
    std::size_t at = 262336;
    for (U64 const time : {U64{5'000'000'000}, U64{4'000'000'000}, U64{6'000'000'001}, ~U64{0}}) {
        Lumlog::RingFormat::RecordHeader record{};
        std::memcpy(&record, ring.data() + at, sizeof record);
        record.time = time;
        std::memcpy(ring.data() + at, &record, sizeof record);
        at += record.units * Lumlog::RingFormat::unit;
    }
    folder_.write("set-back", ring);
    std::string const show = "show ring --from " + path("set-back");
    Json const written = lastJson(show + " --ctf " + path("trace"));
    Lines const lines = babeltrace(path("trace"));
    ASSERT_EQ(lines.size(), written.at("records").get<std::size_t>());
    Lines stamps;
    for (std::size_t line = 0; line < 5; ++line) {
        stamps.push_back(lines[line].substr(0, lines[line].find(']') + 1));
    }
    EXPECT_EQ(stamps, (Lines{"[5.000000000]", "[5.000000000]", "[6.000000001]",
                             "[9223372036.854775806]", "[9223372036.854775806]"}));
    EXPECT_NE(lines[1].find("time = 4000000000,"), std::string::npos);
    EXPECT_NE(lines[3].find("time = 18446744073709551615,"), std::string::npos);
}

TEST_F(RingTrace, IsRefusedWhereSomethingIs) {
    fs::create_directory(path("full"));
    folder_.write("full/note", "mine");
    folder_.write("file", "mine");
    fs::create_directory(path("empty"));
    std::vector<std::pair<std::string, std::string>> const reasons{
        {"full", "Directory not empty"},
        {"missing/trace", "No such file or directory"},
    };
    for (auto const& [name, reason] : reasons) {
        EXPECT_EQ(errorOf("", "show ring --ctf " + path(name)),
                  "cannot write a trace to \"" + path(name) + "\" (" + reason +
                      "), expected an empty folder or a new name (column 17)");
    }
    EXPECT_NE(errorOf("", "show ring --ctf " + path("file")), "no error");
    EXPECT_NE(errorOf("", "show ring --from " + path("file") + " --ctf " + path("new")),
              "no error");
    EXPECT_EQ(filesBelow(""), 4u) << "full, its note, file and empty";
    EXPECT_EQ(lastJson("show ring --ctf " + path("empty")).at("ok"), "show");
    EXPECT_EQ(filesBelow("empty"), 2u);
}

} // namespace
} // namespace VpAgentTest
