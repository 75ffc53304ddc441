#include "agent/FaultyDisk.h"
#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"
#include "statefile/Seal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <filesystem>
#include <set>
#include <string>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::StartsWith;
using Names = std::set<std::string>;

/// What a refusal leaves where it happened.
class Refused : public testing::Test {
protected:
    Refused() : path_(folder_.path() / "state") {}

    Names names() const {
        Names found;
        for (auto const& entry : fs::directory_iterator(folder_.path())) {
            found.insert(entry.path().filename().string());
        }
        return found;
    }

    TemporaryFolder folder_;
    fs::path path_;
};

/// None is made to find that out.
TEST_F(Refused, AFileThatIsNotThereIsNotMadeBesideAStrangeCompanion) {
    std::string const here = "vpagent: cannot use the state file \"" + path_.string() + "\": ";
    auto const expectRefused = [&](std::string const& companion, std::string const& words) {
        SCOPED_TRACE(companion + ": " + words);
        Outcome const outcome = runVpagent({"--state", path_.string()}, "client add x\n");
        EXPECT_EQ(outcome.status, 2);
        EXPECT_THAT(outcome.err, StartsWith(here + words));
        EXPECT_EQ(names(), Names{companion});
        fs::remove(folder_.path() / companion);
    };
    folder_.write("state-wal", "garbage\n");
    expectRefused("state-wal",
                  "it is not there, but state-wal beside it is, expected both or neither\n");
    for (std::string const companion : {"state-wal", "state-journal"}) {
        std::string const words = '"' + companion + "\" beside it is not a regular file";
        fs::create_symlink("nowhere", folder_.path() / companion);
        expectRefused(companion, words);
        fs::create_directory(folder_.path() / companion);
        expectRefused(companion, words);
    }
}

/// Whether the disk fails for good or once, at whatever step of the making: what was not there is
/// not there afterwards, or is a file that the next run takes.
TEST_F(Refused, AFileThatCouldNotBeMadeIsRemoved) {
    for (auto const lasting : {FaultyDisk::Lasting::once, FaultyDisk::Lasting::forEver}) {
        unsigned refusals = 0;
        for (unsigned at = 0;; ++at) {
            SCOPED_TRACE(at);
            FaultyDisk disk;
            disk.failAt(at, FaultyDisk::Fault::full, lasting, FaultyDisk::writing);
            std::string const refusal = openedFile(path_).refusal;
            if (!disk.failed()) {
                EXPECT_EQ(refusal, "");
                break;
            }
            if (!refusal.empty()) {
                ++refusals;
                EXPECT_THAT(refusal, HasSubstr("database or disk is full"));
                EXPECT_EQ(names(), Names{});
            }
            for (std::string const& name : names()) {
                fs::remove(folder_.path() / name);
            }
            ASSERT_LT(at, 1000u);
        }
        EXPECT_GT(refusals, 10u);
        fs::remove(path_);
    }
}

/// It is somebody's, who may have put it there with an owner and rights.
TEST_F(Refused, AnEmptyFileThatWasThereStays) {
    for (unsigned at = 0; at < 12; ++at) {
        folder_.write("state", "");
        FaultyDisk disk;
        disk.failAt(at, FaultyDisk::Fault::full, FaultyDisk::Lasting::forEver, FaultyDisk::writing);
        EXPECT_THAT(openedFile(path_).refusal, HasSubstr("database or disk is full"));
        EXPECT_TRUE(fs::exists(path_));
        fs::remove(path_);
    }
}

/// What is kept in a file that nobody can open any more is lost.
TEST_F(Refused, AFileThatIsTakenAwayWhileItIsOpenedIsNotWritten) {
    for (bool const isNew : {true, false}) {
        SCOPED_TRACE(isNew ? "new" : "kept");
        if (!isNew) {
            KeptAgent(path_).commit();
        }
        FaultyDisk disk;
        bool removed = false;
        disk.before([&](FaultyDisk::Operation operation) {
            if (operation == FaultyDisk::Operation::lock && !removed) {
                removed = true;
                fs::remove(path_);
            }
        });
        {
            KeptAgent kept(path_);
            kept.database().add("a");
            kept.commit();
        }
        EXPECT_TRUE(removed);
        EXPECT_THAT(openedFile(path_).content, HasSubstr("\"a\""));
        fs::remove(path_);
    }
}

TEST_F(Refused, NamesThatAreNotPrintedAsTheyStandDoNotReadBack) {
    ASSERT_EQ(runVpagent({"--state", path_.string()},
                         "client add bgp\nput reference vlan 7 3 bgp\nput reference vlan 8 4\n")
                  .status,
              0);
    auto const setNames = [&](std::string const& names) {
        VpAgent::Seal seal;
        seal.add(std::string_view("reference"))
            .add(std::string_view("vlan"))
            .add(std::string_view("7"))
            .add(U64{3})
            .add(std::string_view(names));
        std::string const sql = "UPDATE reference SET clients = '" + names +
                                "', seal = position + " + std::to_string(seal.value()) +
                                " WHERE key = '7'";
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    };
    for (std::string const names : {"bgp\n", "bgp\nother\n"}) {
        setNames(names);
        EXPECT_THAT(openedFile(path_).refusal,
                    HasSubstr("in row 1 of the table \"reference\", the names of its clients do "
                              "not read back as they are printed"));
    }
    for (std::string const names : {"\n", "\nbgp", "bgp\n\nother", "bgp\nbgp"}) {
        setNames(names);
        EXPECT_THAT(openedFile(path_).refusal, HasSubstr("is no client name, or is there twice"));
    }
    for (std::string const names : {"", "bgp", "other\nbgp\nthird"}) {
        setNames(names);
        EXPECT_EQ(openedFile(path_).refusal, "");
    }
}

/// A ring buffer's file in the place of a companion would have the next run refused.
TEST_F(Refused, NoRingIsWrittenInThePlaceOfACompanion) {
    fs::path const link = folder_.path() / "link";
    fs::create_symlink(".", link);
    for (std::string const ending : {"", "-wal", "-journal", "-shm"}) {
        for (std::string const& name :
             {path_.string() + ending, (link / ("state" + ending)).string()}) {
            SCOPED_TRACE(name);
            Outcome const outcome =
                runVpagent({"--state", path_.string()}, "client add a\nring dump " + name + '\n');
            EXPECT_EQ(outcome.status, 2);
            EXPECT_THAT(outcome.err, HasSubstr("cannot write \"" + name +
                                               "\" (it belongs to the state file in use)"));
            EXPECT_EQ(names(), (Names{"link", "state"}));
            Outcome const trace =
                runVpagent({"--state", path_.string()}, "show ring --ctf " + name);
            EXPECT_EQ(trace.status, 2);
            EXPECT_THAT(trace.err, HasSubstr("cannot write a trace to \"" + name +
                                             "\" (it belongs to the state file in use)"));
            EXPECT_EQ(names(), (Names{"link", "state"}));
            fs::remove(path_);
        }
    }
    std::string const other = path_.string() + "-ring";
    EXPECT_EQ(runVpagent({"--state", path_.string()}, "ring dump " + other + '\n').status, 0);
    EXPECT_TRUE(fs::exists(other));
}

} // namespace
} // namespace VpAgentTest
