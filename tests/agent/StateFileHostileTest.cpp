#include "agent/KeptAgent.h"
#include "agent/MeasuredRun.h"
#include "statefile/Seal.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <functional>
#include <iostream>
#include <random>
#include <utility>
#include <vector>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using VpAgent::Seal;

/// A state file that somebody made who means harm.
class Hostile : public testing::Test {
protected:
    Hostile() : path_((folder_.path() / "state").string()) {
        EXPECT_EQ(runVpagent({"--state", path_},
                             "client add a\nstart table-size=32\nrequest a vlan 7\n"
                             "request a edge Et1:9\nsave-boot\nput waiting vlan 9\n")
                      .status,
                  0);
        good_ = bytesOf(path_);
    }

    void write(std::string_view bytes) const { folder_.write("state", bytes); }

    /// Changes the good file by SQL.
    void sql(std::string const& text) const {
        write(good_);
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(path_.c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, text.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection) << ": " << text;
        sqlite3_close(connection);
    }

    /// The file is refused as it stands, with these words, and left.
    void expectRefused(std::string const& words) const {
        std::string const before = bytesOf(path_);
        std::string const refusal = openedFile(path_).refusal;
        EXPECT_THAT(refusal, HasSubstr("cannot use the state file \"" + path_ + "\": "));
        EXPECT_THAT(refusal, HasSubstr(words));
        EXPECT_TRUE(bytesOf(path_) == before);
    }

    /// One row more, with the seal that fits it.
    static std::string row(std::string const& table, std::string const& kind,
                           std::string const& key, U64 position) {
        Seal seal;
        seal.add(table).add(kind).add(key);
        return "INSERT INTO " + table + " VALUES ('" + kind + "', '" + key + "', " +
               std::to_string(position) + ", " + std::to_string(seal.value() + position) + ");";
    }

    TemporaryFolder folder_;
    std::string path_;
    std::string good_;
};

TEST_F(Hostile, ASchemaThatDoesMoreIsRefusedAndNotRun) {
    std::string const rewrite = "PRAGMA writable_schema = 1; UPDATE sqlite_schema SET ";
    std::string const other = "its tables are not those of a state file";
    std::string const malformed = "malformed database schema (";
    std::pair<std::string, std::string> const changes[] = {
        {"CREATE TRIGGER t AFTER INSERT ON client BEGIN DELETE FROM config; END", other},
        {"CREATE VIEW v AS SELECT * FROM client", other},
        {"CREATE TABLE extra (x)", other},
        {"CREATE INDEX i ON client (abs(id))", other},
        {"CREATE TABLE g (x, y GENERATED ALWAYS AS (printf('%.*c', 1000000000, x)) STORED)", other},
        {rewrite +
             "sql = replace(sql, 'seal INTEGER', 'seal INTEGER CHECK (load_extension(''x''))')",
         other},
        {"DROP TABLE boot; CREATE VIEW boot AS SELECT 1 AS kind, 2 AS key", other},
        {"PRAGMA writable_schema = 1; INSERT INTO sqlite_schema VALUES"
         " ('table', 'w', 'w', 0, 'CREATE VIRTUAL TABLE w USING nothing(x)')",
         malformed + "w)"},
        {rewrite + "rootpage = 2 WHERE name = 'config'", "reference to page 2"},
        {rewrite + "rootpage = 1 WHERE name = 'config'", malformed + "config)"},
        {rewrite + "rootpage = 4294967295 WHERE name = 'config'", malformed + "config)"},
        {rewrite + "rootpage = -1 WHERE name = 'config'", malformed + "config)"},
        {rewrite + "sql = replace(sql, 'STRICT', '')", other},
        {rewrite + "sql = 'CREATE TABLE boot (' || hex(zeroblob(3000000)) || ')'"
                   " WHERE name = 'boot'",
         malformed + "boot)"},
        {rewrite + "sql = 'CREATE TABLE boot (x CHECK (' || replace(hex(zeroblob(50000)), '00',"
                   " '(') || ')' WHERE name = 'boot'",
         malformed + "boot)"},
        {rewrite + "type = 'trigger' WHERE name = 'boot'", malformed + "boot)"},
    };
    for (auto const& [change, reason] : changes) {
        SCOPED_TRACE(change);
        sql(change);
        expectRefused("it is damaged (");
        expectRefused(reason);
    }
}

/// The file says that its columns hold anything, is filled, and then says what it said before.
TEST_F(Hostile, ValuesOfOtherTypesAreRefused) {
    std::string const open =
        "PRAGMA writable_schema = 1; CREATE TABLE former AS SELECT name AS n, sql AS s FROM"
        " sqlite_schema WHERE sql IS NOT NULL; UPDATE sqlite_schema SET sql ="
        " replace(replace(replace(sql, 'STRICT, ', ''), 'STRICT', ''), 'NOT NULL', '')";
    std::string const close =
        "PRAGMA writable_schema = 1; UPDATE sqlite_schema SET sql = (SELECT s FROM former"
        " WHERE n = name) WHERE name IN (SELECT n FROM former); DROP TABLE former";
    std::pair<char const*, char const*> const changes[] = {
        {"UPDATE config SET position = NULL", "NULL value in config.position"},
        {"UPDATE config SET position = 1.5", "non-INTEGER value in config.position"},
        {"UPDATE config SET seal = 'x'", "non-INTEGER value in config.seal"},
        {"UPDATE boot SET vp_index = x'00'", "non-INTEGER value in boot.vp_index"},
        {"UPDATE boot SET vp_index = 1e300", "non-INTEGER value in boot.vp_index"},
        {"UPDATE waiting SET seal = NULL", "NULL value in waiting.seal"},
        {"UPDATE client SET name = zeroblob(100)", "non-TEXT value in client.name"},
        {"UPDATE client SET name = 7", "table \"client\", its seal does not fit"}, // a text again
        {"UPDATE client SET vp_table_size = -9223372036854775807",
         "the number in column 4 is above 4294967295"},
        {"UPDATE reference SET clients = NULL", "NULL value in reference.clients"},
        {"UPDATE reference SET clients = zeroblob(1000)", "non-TEXT value in reference.clients"},
    };
    for (auto const& [change, reason] : changes) {
        SCOPED_TRACE(change);
        sql(open);
        std::string const opened = bytesOf(path_);
        std::string const good = std::exchange(good_, opened);
        sql(change);
        good_ = bytesOf(path_);
        sql(close);
        good_ = good;
        expectRefused(reason);
    }
}

TEST_F(Hostile, ValuesOfAnySizeAreRefusedInBoundedMemory) {
    for (char const* const change : {"UPDATE reference SET clients = hex(zeroblob(9000000))",
                                     "UPDATE waiting SET key = cast(zeroblob(20000000) AS TEXT)"}) {
        SCOPED_TRACE(change);
        sql(change);
        Measured const run = measuredRun({"--state", path_});
        EXPECT_EQ(run.outcome.status, 2);
        EXPECT_THAT(run.outcome.err, HasSubstr("string or blob too big"));
        EXPECT_LT(run.peakMebibytes, memoryIsPadded() ? 500 : 150);
    }
    sql("UPDATE reference SET clients = hex(zeroblob(8000000))"); // one name
    expectRefused("is no client name, or is there twice");
    sql("UPDATE reference SET clients = replace(hex(zeroblob(2000000)), '0', 'x' || char(10))");
    expectRefused("is no client name, or is there twice");
}

/// The limit is that of a row as SQLite sorts it: beside the text it holds the other columns, and
/// where each of them ends.
TEST_F(Hostile, RowsOfTheLargestSizeAreReadAndNoLargerOnes) {
    constexpr int others = 21; // for a VLAN that waits
    auto const makeRow = [&](int bytes) {
        sql("UPDATE waiting SET key = printf('%.*c', " + std::to_string(bytes - others) + ", '1')");
    };
    makeRow(VpAgent::Limits::stateRow);
    expectRefused("is no vlan key");
    makeRow(VpAgent::Limits::stateRow + 1);
    expectRefused("string or blob too big; a row of a state file has at most 16777216 bytes");
}

TEST_F(Hostile, RowsThatFitTheirSealAreCheckedAllTheSame) {
    constexpr U64 last = Seal::bound - 1;
    sql(row("waiting", "vlan", "0", 1000) + row("waiting", "vlan", "65535", 1001));
    EXPECT_EQ(runVpagent({"--state", path_}, "start table-size=32\nstop\n").status, 0);
    sql(row("waiting", "vlan", "65536", 1000));
    expectRefused("\"65536\" is no vlan key, or is there twice");
    sql(row("waiting", "vlan", "07", 1000));
    expectRefused("\"07\" is no vlan key, or is there twice");
    sql(row("waiting", "efilter", "", 1000));
    expectRefused("\"\" is no efilter key, or is there twice");
    sql(row("waiting", "remote", "10.0.0.1@4294967296", 1000));
    expectRefused("is no remote key, or is there twice");
    sql(row("waiting", "", "", 1000));
    expectRefused("\"\" is no kind");
    sql(row("waiting", "vlan", "8", last));
    Outcome const outcome = runVpagent({"--state", path_}, "client add b\n");
    EXPECT_EQ(outcome.status, 2);
    EXPECT_THAT(outcome.err, HasSubstr("cannot be written: its numbers are used up"));
    sql(row("waiting", "vlan", "8", last + 1));
    expectRefused("is above " + std::to_string(last));
}

TEST_F(Hostile, SizesBeyondTheLimitAreRefusedAtOnce) {
    for (auto const& [name, size] : {std::pair("state", VpAgent::Limits::stateFile),
                                     std::pair("state-wal", 2 * VpAgent::Limits::stateFile),
                                     std::pair("state-journal", VpAgent::Limits::stateFile)}) {
        write(good_);
        fs::path const file = folder_.path() / name;
        makeSparse(file, size + 1, bytesOf(file));
        Measured const run = measuredRun({"--state", path_});
        EXPECT_EQ(run.outcome.status, 2);
        EXPECT_THAT(run.outcome.err, HasSubstr("has more than " + std::to_string(size) +
                                               " bytes, expected a smaller one"));
        EXPECT_LT(run.seconds, 5);
        fs::remove(file);
    }
}

TEST_F(Hostile, LinksThatLeadNowhereOrInACircleAreRefused) {
    fs::path const link = folder_.path() / "link";
    for (char const* const target :
         {"link", "/dev/null", "/dev/zero", "/proc/self/mem", "/", "/no/x"}) {
        fs::remove(link);
        fs::create_symlink(target, link);
        Measured const run = measuredRun({"--state", link.string()});
        EXPECT_EQ(run.outcome.status, 2) << target;
        EXPECT_THAT(run.outcome.err,
                    HasSubstr("vpagent: cannot use the state file \"" + link.string()));
    }
}

constexpr char const* const companions[] = {"state-wal", "state-journal"};

/// A pipe would keep whoever opens it waiting for its other end.
TEST_F(Hostile, CompanionsThatAreNoRegularFilesAreRefusedWithoutWaiting) {
    for (std::string const name : companions) {
        fs::path const companion = folder_.path() / name;
        std::vector<std::pair<char const*, std::function<void()>>> const kinds{
            {"pipe", [&] { ASSERT_EQ(::mkfifo(companion.c_str(), 0600), 0); }},
            {"folder", [&] { fs::create_directory(companion); }},
            {"link to a pipe",
             [&] {
                 ASSERT_EQ(::mkfifo((folder_.path() / "pipe").c_str(), 0600), 0);
                 fs::create_symlink("pipe", companion);
             }},
            {"link to a device", [&] { fs::create_symlink("/dev/zero", companion); }},
            {"link that leads nowhere", [&] { fs::create_symlink("nowhere", companion); }},
            {"link to itself", [&] { fs::create_symlink(name, companion); }},
        };
        for (auto const& [kind, make] : kinds) {
            SCOPED_TRACE(name + ": " + kind);
            make();
            for (std::string_view const content : {std::string_view(good_), std::string_view()}) {
                write(content);
                Outcome const outcome =
                    runVpagent({"--state", path_}, "client add b\n", [] { ::alarm(60); });
                EXPECT_EQ(outcome.status, 2);
                EXPECT_EQ(outcome.err, "vpagent: cannot use the state file \"" + path_ + "\": \"" +
                                           name +
                                           "\" beside it is not a regular file, expected one, or "
                                           "none\n");
                EXPECT_TRUE(bytesOf(path_) == content);
            }
            EXPECT_FALSE(fs::exists(folder_.path() / "nowhere"));
            fs::remove(companion);
            fs::remove(folder_.path() / "pipe");
        }
    }
}

/// What a link of the log's or the journal's name leads to is nobody's but its owner's.
TEST_F(Hostile, CompanionsThatLeadToAnotherFileAreRefusedAndItStays) {
    std::string const zeros(8, '\0'); // as a journal may begin
    for (std::string const name : companions) {
        fs::path const companion = folder_.path() / name;
        for (std::string const& content : {std::string(), zeros, std::string("notes")}) {
            SCOPED_TRACE(name + " of " + std::to_string(content.size()) + " bytes");
            fs::path const victim = folder_.write("victim", content);
            write(good_);
            fs::create_symlink("victim", companion);
            expectRefused('"' + name + "\" beside it is not a regular file");
            fs::remove(companion);
            fs::create_hard_link(victim, companion);
            expectRefused('"' + name + "\" beside it has a further name");
            EXPECT_EQ(runVpagent({"--state", path_}, "client add b\n").status, 2);
            EXPECT_EQ(bytesOf(victim), content);
            EXPECT_EQ(fs::hard_link_count(victim), 2u);
            fs::remove(companion);
        }
    }
    EXPECT_EQ(runVpagent({"--state", path_}, "client add b\n").status, 0);
}

/// Numbers at the places where SQLite finds its way: the header, and the head of each page.
TEST_F(Hostile, PagesThatPointAnywhereAreRefusedOrHarmless) {
    std::mt19937 random(77);
    auto const below = [&](std::size_t bound) {
        return std::uniform_int_distribution<std::size_t>(0, bound - 1)(random);
    };
    constexpr std::size_t page = 4096;
    std::size_t refused = 0;
    for (int round = 0; round < 300; ++round) {
        std::string bytes = good_;
        std::size_t const count = 1 + below(3);
        for (std::size_t each = 0; each < count; ++each) {
            std::size_t const start = page * below(bytes.size() / page);
            std::size_t const at = start + (start == 0 ? 16 + below(100) : below(32));
            std::size_t const choice = below(4);
            bytes[at] = choice == 0   ? '\0'
                        : choice == 1 ? '\xFF'
                        : choice == 2 ? static_cast<char>(below(12))
                                      : static_cast<char>(below(256));
        }
        write(bytes);
        SCOPED_TRACE(round);
        try {
            KeptAgent kept(path_);
            kept.database().add("more");
            kept.commit();
        } catch (VpAgent::Refusal const&) {
            ++refused;
            ASSERT_TRUE(bytesOf(path_) == bytes);
        } catch (VpAgent::StateFileError const&) {
        }
        fs::remove(path_ + "-wal");
    }
    EXPECT_GT(refused, 150u);
    std::cout << refused << " of 300 refused\n";
}

/// Whatever the records hold, the next run is carried out or ends by a check that says so.
TEST_F(Hostile, RecordsOfAnyContentLeadNowhereElse) {
    for (unsigned seed = 1; seed <= 8; ++seed) {
        std::mt19937 random(seed);
        auto const below = [&](unsigned bound) {
            return std::to_string(std::uniform_int_distribution<unsigned>(0, bound - 1)(random));
        };
        std::string script = "client add a\nclient add b\n";
        for (int line = 0; line < 40; ++line) {
            std::string const kind =
                below(3) == "0" ? "edge Et1:1" : "vlan " + below(6).insert(0, "1");
            std::string const index = below(4) == "0" ? below(65536) : below(40);
            std::string const client = below(2) == "0" ? "a" : "b";
            script += below(2) == "0" ? "put reference " + kind + ' ' + index + " a b ghost\n"
                                      : "put status " + client + ' ' + kind + ' ' + index + '\n';
            script += below(2) == "0" ? "put boot " + kind + ' ' + index + '\n'
                                      : "put waiting " + kind + '\n';
            script += "request " + client + ' ' + kind + '\n';
        }
        write("");
        ASSERT_EQ(runVpagent({"--state", path_}, script).status, 0);
        Outcome const outcome =
            runVpagent({"--keep-going", "--state", path_, "--table-size", below(64)},
                       "start\nverify\nrequest a vlan 10\nwithdraw a vlan 11\nclear-stale\nverify\n"
                       "restart table-size=" +
                           below(65536) + "\nclient retire a\nverify\ndump\n");
        SCOPED_TRACE("seed " + std::to_string(seed) + ": " + outcome.err.substr(0, 2000));
        EXPECT_THAT(outcome.status, testing::AnyOf(0, 1, 2, -SIGABRT));
        EXPECT_EQ(outcome.status == -SIGABRT, outcome.err.find("Assertion '") != std::string::npos);
        EXPECT_EQ(outcome.err.find("Sanitizer"), std::string::npos);
        EXPECT_EQ(outcome.err.find("runtime error"), std::string::npos);
        EXPECT_EQ(openedFile(path_).refusal, "");
    }
}

class StateFileLimit : public testing::Test {
protected:
    TemporaryFolder folder_;
    fs::path path_ = folder_.path() / "state";
};

TEST_F(StateFileLimit, AFileOfTheLargestSizeIsTakenAndNoLargerOne) {
    KeptAgent(path_).commit();
    U64 const size = fs::file_size(path_);
    VpAgent::Database database;
    EXPECT_NE(VpAgent::StateFile::open(path_, database, size), nullptr);
    VpAgent::Database another;
    try {
        VpAgent::StateFile::open(path_, another, size - 1);
        ADD_FAILURE() << "not refused";
    } catch (VpAgent::Refusal const& refusal) {
        EXPECT_THAT(refusal.what(), HasSubstr("it has more than " + std::to_string(size - 1) +
                                              " bytes, expected a smaller one"));
    }
}

TEST_F(StateFileLimit, ALogAndAJournalOfTheLargestSizeAreTakenAndNoLargerOnes) {
    KeptAgent(path_).commit();
    U64 const size = fs::file_size(path_);
    for (auto const& [name, most] :
         {std::pair("state-wal", 2 * size), std::pair("state-journal", size)}) {
        SCOPED_TRACE(name);
        fs::path const companion = folder_.path() / name;
        makeSparse(companion, most + 1);
        VpAgent::Database database;
        try {
            VpAgent::StateFile::open(path_, database, size);
            ADD_FAILURE() << "not refused";
        } catch (VpAgent::Refusal const& refusal) {
            EXPECT_THAT(refusal.what(),
                        HasSubstr(std::string(name) + " beside it has more than " +
                                  std::to_string(most) + " bytes, expected a smaller one"));
        }
        EXPECT_EQ(fs::file_size(companion), most + 1);
        fs::resize_file(companion, most);
        VpAgent::Database another;
        EXPECT_NE(VpAgent::StateFile::open(path_, another, size), nullptr);
        fs::remove(companion);
    }
}

TEST_F(StateFileLimit, AFileThatWouldGrowLargerIsNotWrittenAndLosesNothing) {
    constexpr U64 largest = U64{40} * 4096;
    unsigned acknowledged = 0;
    {
        VpAgent::Database database;
        auto const file = VpAgent::StateFile::open(path_, database, largest);
        auto const& client = database.add("a");
        try {
            for (; acknowledged < 1000; ++acknowledged) {
                std::string const name = std::to_string(acknowledged) + std::string(2000, 'x');
                client.config->eFilterDisableVportIs(Netzo::IntfId(name), true);
                file->commit();
            }
        } catch (VpAgent::StateFileError const& error) {
            EXPECT_THAT(error.what(), HasSubstr("cannot be written: database or disk is full; a "
                                                "state file has at most 4294967296 bytes"));
        }
    }
    EXPECT_GT(acknowledged, 10u);
    EXPECT_LT(acknowledged, 1000u);
    EXPECT_LE(fs::file_size(path_), largest);
    KeptAgent kept(path_);
    EXPECT_EQ(kept.database().find("a")->config->memberCount(), acknowledged);
}

} // namespace
} // namespace VpAgentTest
