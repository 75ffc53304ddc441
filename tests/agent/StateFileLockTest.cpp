#include "agent/FaultyDisk.h"
#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <chrono>
#include <memory>
#include <string>
#include <thread>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Operation = FaultyDisk::Operation;
using testing::HasSubstr;

/// Another user of a database file, as another program would be: SQLite keeps the connections of
/// one process apart as it does those of two.
class OtherProgram {
public:
    OtherProgram(fs::path const& path, char const* vfs) {
        sqlite3_open_v2(path.c_str(), &connection_, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE,
                        vfs);
    }
    ~OtherProgram() { sqlite3_close(connection_); }
    OtherProgram(OtherProgram const&) = delete;
    OtherProgram& operator=(OtherProgram const&) = delete;

    void run(char const* sql) const {
        EXPECT_EQ(sqlite3_exec(connection_, sql, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection_);
    }

private:
    sqlite3* connection_ = nullptr;
};

constexpr char const* takeFile =
    "PRAGMA locking_mode = EXCLUSIVE; SELECT count(*) FROM sqlite_schema";

class StateFileLock : public testing::Test {
protected:
    StateFileLock() : path_(folder_.path() / "state"), log_(path_.string() + "-wal") {}

    /// Tries to open the file, while another program takes it just before the first such operation;
    /// its log is empty then. Gives the refusal.
    std::string refusalWhenTakenBefore(Operation moment) {
        std::unique_ptr<OtherProgram> other;
        disk_.before([&](Operation operation) {
            if (operation == moment && other == nullptr) {
                if (fs::file_size(path_) == 0) {
                    KeptAgent(path_).commit();
                }
                other = std::make_unique<OtherProgram>(path_, nullptr);
                other->run(takeFile);
                EXPECT_TRUE(fs::exists(log_));
            }
        });
        std::string refusal = openedFile(path_).refusal;
        EXPECT_NE(other, nullptr);
        EXPECT_TRUE(fs::exists(log_) && fs::file_size(log_) == 0);
        disk_.before(nullptr);
        return refusal;
    }

    TemporaryFolder folder_;
    fs::path path_;
    fs::path log_;
    FaultyDisk disk_;
};

TEST_F(StateFileLock, WhoIsRefusedLeavesTheEmptyLogOfTheOneWhoHasTheFile) {
    KeptAgent(path_).commit();
    EXPECT_THAT(refusalWhenTakenBefore(Operation::lock),
                HasSubstr("another program uses it, expected to be the only one"));
}

TEST_F(StateFileLock, WhoIsRefusedWhileMakingTheFileLeavesTheLogToo) {
    EXPECT_THAT(refusalWhenTakenBefore(Operation::lock), HasSubstr("another program uses it"));
}

TEST_F(StateFileLock, ADatabaseOfAnotherProgramKeepsItsEmptyLog) {
    OtherProgram(path_, nullptr)
        .run("PRAGMA locking_mode = EXCLUSIVE; PRAGMA journal_mode = WAL;"
             "PRAGMA application_id = 4660; CREATE TABLE client (name)");
    EXPECT_THAT(refusalWhenTakenBefore(Operation::look),
                HasSubstr("it is the SQLite database of another program"));
}

TEST_F(StateFileLock, WhoMeetsAnotherThatOnlyLooksTriesAgain) {
    KeptAgent(path_).commit();
    auto other = std::make_unique<OtherProgram>(path_, "unix");
    other->run("BEGIN; SELECT count(*) FROM sqlite_schema");
    std::thread end([&] {
        std::this_thread::sleep_for(std::chrono::milliseconds(100));
        other = nullptr;
    });
    EXPECT_EQ(openedFile(path_).refusal, "");
    end.join();
}

TEST_F(StateFileLock, WhoMeetsAnotherThatStaysGivesUpWithinASecond) {
    KeptAgent(path_).commit();
    OtherProgram const other(path_, nullptr);
    other.run(takeFile);
    auto const start = std::chrono::steady_clock::now();
    EXPECT_THAT(openedFile(path_).refusal, HasSubstr("another program uses it"));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(1500));
}

} // namespace
} // namespace VpAgentTest
