#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <unistd.h>

#include <algorithm>
#include <fstream>
#include <random>
#include <set>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using namespace VornicCentral;
using testing::HasSubstr;

void writeBytes(fs::path const& path, std::string_view bytes) {
    std::ofstream(path, std::ios::binary) << bytes;
}

/// Some of everything; `more` makes each call's content another one.
void fill(VpAgent::Database& database, unsigned more = 0) {
    for (U16 number = 1; number < 40; ++number) {
        std::string const text = std::to_string(number + more);
        auto const& client = database.add("client-" + std::to_string(number % 7));
        auto const edge = *PortVlanKey::parse("Ethernet" + text + "/1:" + text);
        auto const remote = *RemoteVtepKey::parse("10.0.0." + text + "@17");
        client.config->edgeVportIs(edge, true);
        client.status->edgeVportIs(edge, VirtualPort(number));
        client.status->vpAllocRequestsInc(1);
        VpReference reference{VirtualPort(number)};
        reference.referenceIs(client.name, true);
        database.references()->remoteVportIs(remote, reference);
        database.waiting()->vlanVportIs(Bridging::VlanId(number), true);
        database.boot()->eFilterDisableVportIs(Netzo::IntfId("Port" + text), VirtualPort(number));
    }
}

class Damage : public testing::Test {
protected:
    Damage() : path_(folder_.path() / "state") {}

    /// Makes a state file and remembers what it holds.
    void makeFile() {
        KeptAgent kept(path_);
        fill(kept.database());
        kept.commit();
        content_ = kept.content();
    }

    /// The file is refused, with these words, and left alone.
    void expectRefused(std::string const& words) {
        std::string const before = bytesOf(path_);
        std::string const refusal = openedFile(path_).refusal;
        EXPECT_THAT(refusal, HasSubstr(words));
        EXPECT_THAT(refusal, HasSubstr("the state file \"" + path_.string() + "\""));
        EXPECT_EQ(bytesOf(path_), before);
        EXPECT_EQ(names(), "state");
    }

    /// The files of the folder.
    std::string names() const {
        std::vector<std::string> found;
        for (auto const& entry : fs::directory_iterator(folder_.path())) {
            found.push_back(entry.path().filename().string());
        }
        std::sort(found.begin(), found.end());
        std::string text;
        for (std::string const& name : found) {
            text += (text.empty() ? "" : " ") + name;
        }
        return text;
    }

    /// Changes the file by SQL, as another program would.
    void sql(char const* text) const {
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, text, nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }

    TemporaryFolder folder_;
    fs::path path_;
    std::string content_;
};

TEST_F(Damage, AFileOfAnotherKindIsRefused) {
    writeBytes(path_, "client add bgp\n");
    expectRefused("it is not an SQLite database, expected one that vpagent made");
    writeBytes(path_, std::string(8192, 'x'));
    expectRefused("it is not an SQLite database");
}

TEST_F(Damage, ADatabaseOfAnotherProgramIsRefused) {
    sql("PRAGMA journal_mode = WAL; PRAGMA application_id = 4660; CREATE TABLE client (name)");
    expectRefused("it is the SQLite database of another program (application id 0x00001234)");
}

TEST_F(Damage, ANewerVersionIsRefused) {
    makeFile();
    sql("PRAGMA user_version = 2");
    expectRefused("its format is version 2, of a newer vpagent, expected version 1");
    sql("PRAGMA user_version = 0");
    expectRefused("its format is version 0, expected version 1");
}

TEST_F(Damage, OtherTablesAreRefused) {
    makeFile();
    sql("CREATE TRIGGER t AFTER INSERT ON client BEGIN DELETE FROM config; END");
    expectRefused("it is damaged (its tables are not those of a state file)");
}

TEST_F(Damage, ARowThatDoesNotFitItsSealIsRefused) {
    makeFile();
    std::string const good = bytesOf(path_);
    for (auto const& [change, words] : std::vector<std::pair<char const*, char const*>>{
             {"UPDATE status SET vp_index = 8 WHERE vp_index = 7", "its seal does not fit"},
             {"UPDATE boot SET key = 'Port999' WHERE vp_index = 7", "its seal does not fit"},
             {"UPDATE waiting SET position = 100000 WHERE key = '7'", "its seal does not fit"},
             {"UPDATE client SET vp_free_requests = 1", "its seal does not fit"},
             {"UPDATE reference SET clients = 'x' || char(9) WHERE vp_index = 7",
              "is no client name, or is there twice"},
             {"UPDATE config SET kind = 'egde' WHERE client = 1", "\"egde\" is no kind"},
             {"UPDATE config SET key = 'Ethernet1/1:01' WHERE key = 'Ethernet1/1:1'",
              "\"Ethernet1/1:01\" is no edge key"},
             {"UPDATE boot SET vp_index = 65536 WHERE vp_index = 7", "is above 65535"},
             {"UPDATE boot SET vp_index = -1 WHERE vp_index = 7", "is above 65535"},
             {"DELETE FROM client WHERE id = 1", "client 1 is not in the table \"client\""}}) {
        writeBytes(path_, good);
        sql(change);
        SCOPED_TRACE(change);
        expectRefused(words);
    }
}

TEST_F(Damage, AShorterFileIsRefused) {
    makeFile();
    std::string const good = bytesOf(path_);
    for (std::size_t size = good.size() - 1; size > 0; size -= std::min<std::size_t>(size, 509)) {
        writeBytes(path_, std::string_view(good).substr(0, size));
        SCOPED_TRACE(size);
        expectRefused("cannot use the state file");
    }
}

TEST_F(Damage, AFlippedBitIsRefusedOrHarmless) {
    makeFile();
    std::string const good = bytesOf(path_);
    std::mt19937 random(20240229);
    int refused = 0;
    for (int round = 0; round < 400; ++round) {
        std::string bytes = good;
        std::size_t const at =
            std::uniform_int_distribution<std::size_t>(0, good.size() - 1)(random);
        bytes[at] = static_cast<char>(bytes[at] ^ (1 << (round % 8)));
        writeBytes(path_, bytes);
        SCOPED_TRACE("bit " + std::to_string(round % 8) + " of byte " + std::to_string(at));
        Opened const opened = openedFile(path_);
        if (opened.refusal.empty()) {
            EXPECT_EQ(opened.content, content_);
        } else {
            ++refused;
            EXPECT_EQ(bytesOf(path_), bytes);
            EXPECT_EQ(names(), "state");
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(refused, 40);
}

TEST_F(Damage, ACopyMadeBySqliteIsTaken) {
    makeFile();
    fs::path const copy = folder_.path() / "copy";
    sql(("VACUUM INTO '" + copy.string() + "'").c_str());
    {
        KeptAgent kept(copy);
        EXPECT_EQ(kept.content(), content_);
        kept.database().add("another");
        kept.commit();
        content_ = kept.content();
    }
    EXPECT_EQ(KeptAgent(copy).content(), content_);
}

TEST_F(Damage, AnEmptyFileBecomesAStateFile) {
    writeBytes(path_, "");
    makeFile();
    EXPECT_EQ(KeptAgent(path_).content(), content_);
}

TEST_F(Damage, ALogWithoutItsFileIsRefused) {
    fs::path const log = path_.string() + "-wal";
    writeBytes(log, "something");
    EXPECT_THAT(openedFile(path_).refusal,
                HasSubstr("it is not there, but state-wal beside it is, expected both or neither"));
    EXPECT_EQ(bytesOf(log), "something");
    EXPECT_EQ(names(), "state-wal");
    writeBytes(path_, "");
    EXPECT_THAT(openedFile(path_).refusal,
                HasSubstr("it is empty, but state-wal beside it is not, expected both or neither"));
    EXPECT_EQ(bytesOf(log), "something");
    EXPECT_EQ(names(), "state state-wal");
}

/// The user's rights are those of the file's owner, or less.
TEST_F(Damage, AFileThatMayNotBeWrittenIsRefused) {
    makeFile();
    bool const isRoot = ::geteuid() == 0;
    constexpr uid_t nobody = 65534;
    fs::permissions(folder_.path(), fs::perms(0555));
    fs::permissions(path_, fs::perms(0444));
    ASSERT_TRUE(!isRoot || ::seteuid(nobody) == 0);
    std::string const ofFile = openedFile(path_).refusal;
    std::string const ofNewFile = openedFile(folder_.path() / "new").refusal;
    ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
    fs::permissions(path_, fs::perms(0666));
    ASSERT_TRUE(!isRoot || ::seteuid(nobody) == 0);
    std::string const ofFolder = openedFile(path_).refusal;
    ASSERT_TRUE(!isRoot || ::seteuid(0) == 0);
    fs::permissions(folder_.path(), fs::perms(0755));

    EXPECT_THAT(ofFile, HasSubstr("it may not be read and written (Permission denied)"));
    EXPECT_THAT(ofNewFile, HasSubstr("no file can be made in its folder (Permission denied)"));
    EXPECT_THAT(ofFolder, HasSubstr("no file can be made in its folder (Permission denied)"));
    EXPECT_EQ(names(), "state");
    EXPECT_EQ(KeptAgent(path_).content(), content_);
}

/// A file whose changes stand in its log, as a killed program leaves it.
class DamagedLog : public Damage {
protected:
    DamagedLog() : log_(path_.string() + "-wal") {
        {
            KeptAgent kept(path_);
            contents_.push_back(kept.content());
            for (unsigned round = 0; round < commits; ++round) {
                fill(kept.database(), round);
                kept.commit();
                contents_.push_back(kept.content());
            }
            goodFile_ = bytesOf(path_);
            goodLog_ = bytesOf(log_);
        }
        restore(goodLog_);
    }

    void restore(std::string_view log) const {
        writeBytes(path_, goodFile_);
        writeBytes(log_, log);
    }

    /// How many commits stand in the front of the log, by the ends of transactions in its frames.
    /// The first transaction is that of the beginning.
    std::size_t commitsIn(std::string_view log) const {
        auto const number = [&](std::size_t at) {
            auto const byte = [&](std::size_t each) {
                return static_cast<std::size_t>(static_cast<unsigned char>(log[at + each]));
            };
            return byte(0) << 24 | byte(1) << 16 | byte(2) << 8 | byte(3);
        };
        std::size_t const frame = 24 + number(8);
        std::size_t ends = 0;
        for (std::size_t at = 32; at + frame <= log.size(); at += frame) {
            ends += number(at + 4) != 0 ? 1u : 0u;
        }
        return ends == 0 ? 0 : ends - 1;
    }

    /// How many commits are not in a content.
    std::size_t lost(std::string const& content) const {
        auto const found = std::find(contents_.begin(), contents_.end(), content);
        EXPECT_NE(found, contents_.end()) << "another content: " << content;
        return static_cast<std::size_t>(contents_.end() - found) - 1;
    }

    static constexpr unsigned commits = 12;
    fs::path log_;
    std::string goodFile_;
    std::string goodLog_;
    std::vector<std::string> contents_;
};

TEST_F(DamagedLog, AWholeLogLosesNothing) { EXPECT_EQ(lost(openedFile(path_).content), 0u); }

TEST_F(DamagedLog, AFlippedBitIsRefusedUnlessItLooksLikeACrash) {
    std::mt19937 random(4711);
    int refused = 0;
    for (int round = 0; round < 150; ++round) {
        std::string log = goodLog_;
        std::size_t const at =
            std::uniform_int_distribution<std::size_t>(0, log.size() - 1)(random);
        log[at] = static_cast<char>(log[at] ^ (1 << (round % 8)));
        restore(log);
        SCOPED_TRACE("bit " + std::to_string(round % 8) + " of byte " + std::to_string(at) +
                     " of " + std::to_string(log.size()));
        Opened const opened = openedFile(path_);
        if (opened.refusal.empty()) {
            EXPECT_LE(lost(opened.content), 2u);
            EXPECT_GT(at, log.size() / 2);
        } else {
            ++refused;
            EXPECT_THAT(opened.refusal, HasSubstr("its log does not check out"));
            EXPECT_EQ(bytesOf(path_), goodFile_);
            EXPECT_EQ(bytesOf(log_), log);
            EXPECT_EQ(names(), "state state-wal");
        }
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(refused, 90);
}

/// Whatever is cut off, what is left of a log are the commits that stand in it as a whole.
TEST_F(DamagedLog, ALogThatWasCutOffHoldsWholeCommits) {
    ASSERT_EQ(commitsIn(goodLog_), commits);
    std::set<std::size_t> counts;
    for (std::size_t size = goodLog_.size(); size > 5000;
         size -= std::min<std::size_t>(size, 3001)) {
        std::string_view const log = std::string_view(goodLog_).substr(0, size);
        restore(log);
        SCOPED_TRACE(size);
        Opened const opened = openedFile(path_);
        EXPECT_EQ(opened.refusal, "");
        EXPECT_EQ(commits - lost(opened.content), commitsIn(log));
        counts.insert(commitsIn(log));
    }
    EXPECT_EQ(counts.size(), commits + 1);
}

TEST_F(DamagedLog, AMissingOrEmptyLogIsRefused) {
    fs::remove(log_);
    expectRefused("its log beside the file is missing or empty");
    constexpr std::size_t wholeFrame = 32 + 24 + 4096;
    for (std::size_t const size :
         {std::size_t{0}, std::size_t{1}, std::size_t{32}, wholeFrame - 1}) {
        std::string const log = goodLog_.substr(0, size);
        restore(log);
        SCOPED_TRACE(size);
        EXPECT_THAT(openedFile(path_).refusal,
                    HasSubstr("its log beside the file is missing or empty"));
        EXPECT_EQ(bytesOf(path_), goodFile_);
        EXPECT_EQ(bytesOf(log_), log);
        EXPECT_EQ(names(), "state state-wal");
    }
    restore(std::string(4096, '\0'));
    EXPECT_THAT(openedFile(path_).refusal,
                HasSubstr("its log beside the file is missing or empty"));
    restore(std::string_view(goodLog_).substr(0, wholeFrame));
    EXPECT_EQ(lost(openedFile(path_).content), std::size_t{commits});
}

TEST_F(DamagedLog, IsNotNeededOnceAnotherToolBroughtItIntoTheFile) {
    sql("SELECT count(*) FROM client");
    EXPECT_EQ(names(), "state");
    EXPECT_EQ(lost(openedFile(path_).content), 0u);
}

TEST_F(DamagedLog, IsNotNeededByACopyMadeBySqlite) {
    fs::path const copy = folder_.path() / "copy";
    sql(("VACUUM INTO '" + copy.string() + "'").c_str());
    EXPECT_EQ(lost(openedFile(copy).content), 0u);
}

TEST_F(DamagedLog, IsNotNeededWhenTheNextRunEndedByItself) {
    EXPECT_EQ(lost(openedFile(path_).content), 0u);
    EXPECT_EQ(names(), "state");
    EXPECT_EQ(lost(openedFile(path_).content), 0u);
}

} // namespace
} // namespace VpAgentTest
