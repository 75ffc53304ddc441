#include "agent/CrashedRun.h"
#include "agent/RingScripts.h"
#include "agent/RunVpagent.h"
#include "lumlog/RingFormat.h"
#include "support/FileBytes.h"

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <filesystem>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Texts = std::vector<std::string>;

class RingFile : public RingFiles {
protected:
    std::string show(std::string_view name) const { return "show ring --from " + path(name); }
    Texts textsIn(std::string_view name) const { return ringTexts(lastJson(show(name))); }
    std::string errorFor(std::string_view name) const { return errorOf("", show(name)); }

    Texts const expected_ = ringTexts(lastJson(std::string(someRecords) + "show ring\n"));
};

TEST_F(RingFile, OfARingDumpHoldsTheRecordsOfTheRun) {
    std::vector<Json> const lines =
        jsonLines(someRecords + ("show ring\nring dump " + path("ring") + '\n'));
    Json const& dumped = lines.back();
    std::string const size = std::to_string(fs::file_size(path("ring")));
    EXPECT_EQ(dumped.dump(),
              R"({"ok":"ring","line":7,"file":")" + path("ring") + R"(","bytes":)" + size + '}');
    Json const answer = lastJson(show("ring"));
    EXPECT_EQ(answer.at("ring"), lines[lines.size() - 2].at("ring"));
    EXPECT_EQ(answer.at("from"), path("ring"));
    EXPECT_EQ(answer.at("damaged"), 0);
    EXPECT_EQ(textsIn("ring"), expected_);
}

TEST_F(RingFile, SaysToPeopleWhatWasWritten) {
    EXPECT_EQ(textOf("ring dump " + path("ring")),
              "ring buffer: 1,315,008 bytes written to \"" + path("ring") + "\"\n");
}

TEST_F(RingFile, IsFoundAnywhereInALargerFile) {
    std::string const ring = dumpOf(someRecords, "ring");
    std::string const magic(Lumlog::RingFormat::magic.data(), Lumlog::RingFormat::magic.size());
    std::string const before = "\x7f"
                               "ELF" +
                               magic + std::string(12345, 'L') + magic;
    folder_.write("core", before + ring + std::string(777, 'x'));
    EXPECT_EQ((before.size() + fs::file_size(path("ring"))) % 2, 1u) << "an odd offset";
    EXPECT_EQ(textsIn("core"), expected_);
}

TEST_F(RingFile, IsReadPastHeadersThatLieAbout) {
    std::string const ring = dumpOf(someRecords, "ring");
    std::string const header = ring.substr(0, sizeof(Lumlog::RingFormat::RingHeader));
    folder_.write("core", header + std::string(1000, '\0') + ring + header);
    EXPECT_EQ(textsIn("core"), expected_);
    EXPECT_EQ(errorOf("", show("core") + " --ring 2"),
              '"' + path("core") +
                  "\" has no such ring buffer, expected a number from 1 to 1 (column 18)");
}

TEST_F(RingFile, MayHoldSeveralRings) {
    folder_.write("core", dumpOf(someRecords, "one") + dumpOf("", "none") +
                              dumpOf("start table-size=8\n", "two"));
    EXPECT_EQ(textsIn("core"), expected_);
    EXPECT_EQ(ringTexts(lastJson(show("core") + " --ring 1")), expected_);
    EXPECT_EQ(ringTexts(lastJson(show("core") + " --ring 2")),
              (Texts{"handleInitialized", "reconcile"}));
    EXPECT_EQ(errorOf("", show("core") + " --ring 3"),
              '"' + path("core") +
                  "\" has no such ring buffer, expected a number from 1 to 2 (column 18)");
}

TEST_F(RingFile, MayHoldARingWithoutRecords) {
    dumpOf("", "ring");
    EXPECT_EQ(textOf(show("ring")), "RING BUFFER of \"" + path("ring") + "\"\n  no records\n");
    EXPECT_EQ(errorOf("", show("ring") + " --ring 2"),
              '"' + path("ring") +
                  "\" has no such ring buffer, expected a number from 1 to 1 (column 18)");
}

TEST_F(RingFile, MayBeCutOff) {
    std::string const ring = dumpOf(someRecords, "ring");
    folder_.write("half", ring.substr(0, 262336 + 1000));
    Texts const texts = textsIn("half");
    ASSERT_GT(texts.size(), 5u);
    ASSERT_LT(texts.size(), expected_.size());
    EXPECT_EQ(texts, Texts(expected_.begin(),
                           expected_.begin() + static_cast<std::ptrdiff_t>(texts.size())));
}

TEST_F(RingFile, LeavesOutRecordsThatAreDamagedAndCountsThem) {
    std::string ring = dumpOf(someRecords, "ring");
    std::size_t const name = ring.find(std::string("\x04\0leaf", 6), 262336);
    ASSERT_NE(name, std::string::npos);
    ring[name] = '\x7f';
    folder_.write("damaged", ring);
    Texts expected = expected_;
    expected.erase(std::ranges::find(expected, "reconcile clean up status for: leaf"));
    Json const answer = lastJson(show("damaged"));
    EXPECT_EQ(ringTexts(answer), expected);
    EXPECT_EQ(answer.at("damaged"), 1);
    EXPECT_TRUE(
        textOf(show("damaged")).ends_with("\n  1 record that could not be decoded left out\n"));
}

TEST_F(RingFile, ShowsNoControlCharacterAsItIs) {
    std::string ring = dumpOf(someRecords, "ring");
    std::size_t const name = ring.find(std::string("\x04\0leaf", 6), 262336);
    ASSERT_NE(name, std::string::npos);
    ring.replace(name + 2, 4, "\x1b[2J");
    folder_.write("forged", ring);
    std::string const text = textOf(show("forged"));
    EXPECT_NE(text.find("status for: \\x1B[2J\n"), std::string::npos);
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
    EXPECT_EQ(runJson(show("forged")).find('\x1b'), std::string::npos);
}

TEST_F(RingFile, IsRefusedWhenItCannotBeReadOrHoldsNoRing) {
    folder_.write("empty", "");
    folder_.write("text", "no ring");
    std::string cut = dumpOf(someRecords, "ring").substr(0, 100);
    folder_.write("cut", cut);
    fs::create_directory(path("folder"));
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    for (char const* const name : {"empty", "text", "cut"}) {
        EXPECT_EQ(errorFor(name), "no ring buffer in \"" + path(name) +
                                      "\", expected a core file or what 'ring dump' has written "
                                      "(column 18)");
    }
    std::vector<std::pair<std::string, std::string>> const reasons{
        {"missing", "No such file or directory"},
        {"folder", "a folder"},
        {"pipe", "not a regular file"},
        {"text/below", "Not a directory"},
    };
    for (auto const& [name, reason] : reasons) {
        EXPECT_EQ(errorFor(name), "cannot read \"" + path(name) + "\" (" + reason +
                                      "), expected a readable file (column 18)");
    }
    EXPECT_EQ(errorOf("", "show ring --from \"\""),
              "cannot read \"\" (No such file or directory), expected a readable file (column 18)");
}

TEST_F(RingFile, IsReplacedByADumpOnlyWhenItIsOne) {
    folder_.write("empty", "");
    folder_.write("text", "mine");
    std::string const ring = dumpOf("", "ring");
    folder_.write("core", "x" + ring);
    fs::create_symlink(path("ring"), path("link"));
    fs::create_directory(path("folder"));
    EXPECT_EQ(errorOf("", "ring dump " + path("text")),
              '"' + path("text") +
                  "\" is there and no dump of a ring buffer, expected one or a "
                  "new name (column 11)");
    EXPECT_EQ(Support::bytesOf(path("text")), "mine");
    EXPECT_NE(errorOf("", "ring dump " + path("core")), "no error");
    EXPECT_EQ(Support::bytesOf(path("core")), "x" + ring);
    EXPECT_EQ(errorOf("", "ring dump " + path("folder")),
              "cannot read \"" + path("folder") +
                  "\" (a folder), expected a readable file (column 11)");
    EXPECT_EQ(errorOf("", "ring dump " + path("missing/ring")),
              "cannot write \"" + path("missing/ring") +
                  "\" (No such file or directory), expected a file that can be written (column "
                  "11)");
    for (char const* const name : {"empty", "ring", "link"}) {
        dumpOf(someRecords, name);
        EXPECT_EQ(textsIn(name), expected_) << name;
    }
    EXPECT_TRUE(fs::is_symlink(path("link")));
    EXPECT_EQ(textsIn("ring"), expected_);
}

TEST_F(RingFile, IsReplacedByOneThatTheSamePeopleMayRead) {
    dumpOf(someRecords, "ring");
    for (fs::perms const mode : {fs::perms(0600), fs::perms(0644), fs::perms(0640)}) {
        fs::permissions(path("ring"), mode);
        dumpOf(someRecords, "ring");
        EXPECT_EQ(fs::status(path("ring")).permissions(), mode);
    }
}

TEST_F(RingFile, IsTheOnlyOneThatADumpLeaves) {
    dumpOf(someRecords, "ring");
    dumpOf(someRecords, "ring");
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(RingFile, ThatGrowsBeyondTheLargestSizeIsNotLeftAndTheFormerOneStays) {
    std::string const former = dumpOf("", "ring");
    auto const limitSize = [] {
        constexpr rlim_t most = 100'000;
        rlimit const bytes{most, most};
        ::setrlimit(RLIMIT_FSIZE, &bytes);
    };
    for (char const* const name : {"ring", "none"}) {
        Outcome const outcome =
            runVpagent({}, std::string(someRecords) + "ring dump " + path(name) + '\n', limitSize);
        EXPECT_EQ(outcome.status, 2);
        EXPECT_NE(outcome.err.find("cannot write \"" + path(name) +
                                   "\" (File too large), expected a file that can be written"),
                  std::string::npos)
            << outcome.err;
    }
    EXPECT_TRUE(Support::bytesOf(path("ring")) == former);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder_.path()), {}), 1);
}

TEST_F(RingFile, OfACrashedAgentHoldsWhatItDidLast) {
    std::string const before =
        std::string(someRecords) + "stop\nput reference vlan 1 9\nput reference vlan 2 9\n";
    folder_.write("core", memoryOfCrashedRun(before + "start\n"));
    Texts expected = ringTexts(lastJson(before + "show ring\n"));
    for (char const* const text :
         {"handleInitialized", "reconcile", "reconcile recovered vpIndex: 62 for vtep: 10.0.0.2",
          "handleInvalidRemoteVport vtep: 10.0.0.2",
          "handleInvalidRemoteVport vport addition/modification for: 62",
          "handleInvalidRemoteVport vport deleted : 62",
          "reconcile recovered vpIndex: 9 for vlan: 1"}) {
        expected.emplace_back(text);
    }
    EXPECT_EQ(textsIn("core"), expected);
}

} // namespace
} // namespace VpAgentTest
