#include "agent/FaultyDisk.h"
#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdlib>
#include <string>
#include <string_view>
#include <tuple>

namespace VpAgentTest {
namespace {

using namespace VornicCentral;
using Fault = FaultyDisk::Fault;
using Lasting = FaultyDisk::Lasting;
using testing::AnyOf;
using testing::ContainsRegex;
using testing::HasSubstr;

/// The changes of one commit.
void change(VpAgent::Database& database, unsigned round) {
    auto const& client = database.add(std::string(1, static_cast<char>('a' + round % 3)));
    for (U16 vlan = 0; vlan < 20; ++vlan) {
        client.config->vlanVportIs(Bridging::VlanId(static_cast<U16>(round * 5 + vlan)), true);
    }
    client.status->vpAllocRequestsInc(1);
    if (round % 2 == 1) {
        client.config->vlanVportDel(Bridging::VlanId(static_cast<U16>(round * 5 + 7)));
    }
}

/// What a life on a faulty disk came to: the content at the last commit that returned, and the one
/// that the next commit would have brought.
struct Life {
    bool opened = false;
    std::string complaint;
    std::string acknowledged;
    std::string underWay;
};

Life liveOn(std::filesystem::path const& path) {
    constexpr unsigned commits = 4;
    Life life;
    try {
        KeptAgent kept(path);
        life.opened = true;
        life.acknowledged = life.underWay = kept.content();
        for (unsigned round = 0; round < commits; ++round) {
            change(kept.database(), round);
            life.underWay = kept.content();
            kept.commit();
            life.acknowledged = life.underWay;
        }
    } catch (VpAgent::Refusal const& refusal) {
        life.complaint = refusal.what();
        EXPECT_THAT(refusal.what(), HasSubstr("cannot use the state file \"" + path.string()));
    } catch (VpAgent::StateFileError const& error) {
        life.complaint = error.what();
        EXPECT_THAT(error.what(), HasSubstr("\"" + path.string() + "\" cannot be written: "));
    }
    return life;
}

std::size_t countOf(std::string_view text, std::string_view part) {
    std::size_t count = 0;
    for (std::size_t at = text.find(part); at != std::string_view::npos;
         at = text.find(part, at + part.size())) {
        ++count;
    }
    return count;
}

/// How the disk fails, in which operations, and how often at least a life meets them: one that
/// makes its file, one that begins with what a kill left, and a commit with a long log.
struct Trouble {
    char const* name;
    unsigned steps;
    Fault fault;
    char const* words; ///< of which the message holds some, with '|' between
    unsigned least;
    unsigned leastAfterKill;
    unsigned leastWithLongLog;
};

constexpr Trouble troubles[] = {
    {"FullAtAnyChange", FaultyDisk::changing, Fault::full, "database or disk is full", 40, 40, 100},
    {"BrokenAtAnyChange", FaultyDisk::changing, Fault::broken, "disk I/O error", 40, 40, 100},
    {"ReadOnlyAtAnyChange", FaultyDisk::changing, Fault::readOnly,
     "attempt to write a readonly database", 40, 40, 100},
    {"WritesThatAreCut", FaultyDisk::writing, Fault::cut, "disk I/O error", 30, 30, 100},
    {"Openings", FaultyDisk::opening, Fault::broken, "unable to open database file", 2, 2, 0},
    {"Reads", FaultyDisk::reading, Fault::broken,
     "disk I/O error|its header cannot be read|unable to get the page", 8, 20, 100},
    {"Locks", FaultyDisk::locking, Fault::broken, "disk I/O error", 3, 3, 1},
    {"Sizes", FaultyDisk::asking, Fault::broken, "disk I/O error|its header cannot be read", 8, 6,
     1},
};

/// The files of a state file, as a kill leaves them.
struct Files {
    std::string file;
    std::string log;
    std::string content;
};

Files killedRun() {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    KeptAgent kept(path);
    for (unsigned round = 5; round < 8; ++round) {
        change(kept.database(), round);
        kept.commit();
    }
    return {bytesOf(path), bytesOf(path.string() + "-wal"), kept.content()};
}

class DiskFault : public testing::TestWithParam<std::tuple<Trouble, Lasting>> {
protected:
    /// Lives on a disk that fails at the first such operation, at the second and so on, until a
    /// life meets none. Gives how many there were.
    unsigned liveAtEachOperation(Files const& before);

    FaultyDisk disk_;
};

unsigned DiskFault::liveAtEachOperation(Files const& before) {
    auto const& [trouble, lasting] = GetParam();
    unsigned at = 0;
    for (bool met = true; met; ++at) {
        SCOPED_TRACE(at);
        TemporaryFolder const folder;
        auto const path = folder.path() / "state";
        if (!before.file.empty()) {
            folder.write("state", before.file);
            folder.write("state-wal", before.log);
        }
        disk_.failAt(at, trouble.fault, lasting, trouble.steps);
        Life const life = liveOn(path);
        met = disk_.failed();
        disk_.repair();
        Opened const found = openedFile(path);
        EXPECT_EQ(found.refusal, "");
        if (!life.opened) {
            EXPECT_TRUE(before.file.empty() || found.content == before.content);
        } else if (found.content != life.underWay) {
            EXPECT_EQ(found.content, life.acknowledged);
        }
        // Only when the run was over may a fault go unsaid.
        EXPECT_TRUE(!met || !life.complaint.empty() || life.acknowledged == life.underWay);
        EXPECT_THAT(life.complaint, AnyOf("", ContainsRegex(trouble.words)));
        if (at == 2000) {
            ADD_FAILURE() << "there is no end of operations";
        }
        if (HasFailure()) {
            return 0;
        }
    }
    return at - 1;
}

TEST_P(DiskFault, InANewFileLosesNothingThatWasAcknowledged) {
    EXPECT_GE(liveAtEachOperation({}), std::get<0>(GetParam()).least);
}

TEST_P(DiskFault, InAFileWithTheLogOfAKilledRunLosesNothingThatWasAcknowledged) {
    EXPECT_GE(liveAtEachOperation(killedRun()), std::get<0>(GetParam()).leastAfterKill);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DiskFault,
                         testing::Combine(testing::ValuesIn(troubles),
                                          testing::Values(Lasting::once, Lasting::forEver)),
                         [](auto const& each) {
                             return std::string(std::get<0>(each.param).name) +
                                    (std::get<1>(each.param) == Lasting::once ? "Once" : "ForEver");
                         });

/// Of the operations of a commit with a long log, of which there are a hundred and forty, every so
/// many fail.
unsigned longLogStep() {
    char const* const chosen = std::getenv("VORNIC_DISK_STEP");
    return chosen == nullptr ? 97u : static_cast<unsigned>(std::stoul(chosen));
}

/// Requests and withdraws a long key until the next commit brings the log into the file.
void growLog(KeptAgent& kept, std::string const& log) {
    auto const& client = kept.database().add("a");
    Netzo::IntfId const key(std::string(std::size_t{128} * 4096, 'x'));
    while (!std::filesystem::exists(log) ||
           std::filesystem::file_size(log) < std::uintmax_t{1010} * 4096) {
        client.config->eFilterDisableVportDel(key);
        kept.commit();
        client.config->eFilterDisableVportIs(key, true);
        kept.commit();
    }
}

/// A run of which the log has grown so long that the next commit brings it into the file: at any
/// operation of that commit, the disk fails.
TEST_P(DiskFault, WhileALongLogIsBroughtIntoTheFileLosesNothingThatWasAcknowledged) {
    auto const& [trouble, lasting] = GetParam();
    std::string acknowledged; // the same each time, and long
    std::string underWay;
    unsigned at = 0;
    unsigned reached = 0; ///< with the step behind the last operation that was met
    for (bool met = true; met; at += at < 1 ? 1u : longLogStep()) {
        SCOPED_TRACE(at);
        TemporaryFolder const folder;
        auto const path = folder.path() / "state";
        std::string complaint;
        {
            KeptAgent kept(path);
            growLog(kept, path.string() + "-wal");
            acknowledged = at == 0 ? kept.content() : acknowledged;
            change(kept.database(), 1);
            underWay = at == 0 ? kept.content() : underWay;
            disk_.failAt(at, trouble.fault, lasting, trouble.steps);
            try {
                kept.commit();
            } catch (VpAgent::StateFileError const& error) {
                complaint = error.what();
            }
        } // the disk fails while the file is closed, too
        met = disk_.failed();
        reached = met ? at + longLogStep() : reached;
        disk_.repair();
        Opened const found = openedFile(path);
        EXPECT_EQ(found.refusal, "");
        EXPECT_TRUE(found.content == underWay ||
                    (!complaint.empty() && found.content == acknowledged));
        EXPECT_THAT(complaint, AnyOf("", ContainsRegex(trouble.words)));
        ASSERT_FALSE(HasFailure());
        ASSERT_LT(at, 20000u);
    }
    EXPECT_GE(reached, trouble.leastWithLongLog);
}

TEST(StateFile, ForcesEachCommitToTheDisk) {
    FaultyDisk const disk;
    TemporaryFolder const folder;
    KeptAgent kept(folder.path() / "state");
    for (unsigned round = 0; round < 3; ++round) {
        unsigned const before = disk.syncs();
        change(kept.database(), round);
        EXPECT_EQ(disk.syncs(), before);
        kept.commit();
        EXPECT_GT(disk.syncs(), before);
    }
}

TEST(StateFileProgram, StopsWithAMessageWhenTheDiskTakesNoMore) {
    TemporaryFolder const folder;
    std::string const path = (folder.path() / "state").string();
    std::string script = "client add a\n";
    for (int vlan = 1; vlan <= 400; ++vlan) {
        script += "request a vlan " + std::to_string(vlan) + "\n";
    }
    // A limit on the size of files stands for a full disk.
    std::string const out = (folder.path() / "out").string();
    std::string const command = "ulimit -f 400; exec " + vpagentProgram() +
                                " --json --keep-going --state " + path + ' ' +
                                folder.write("script.vp", script) + " > " + out;
    int const status = std::system(command.c_str());
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 2);

    std::string const text = bytesOf(out);
    std::size_t const acknowledged = countOf(text, "{\"ok\": \"request\"");
    EXPECT_EQ(countOf(text, "\"error\""), 1u);
    EXPECT_THAT(text,
                HasSubstr("{\"error\": \"the state file \\\"" + path + "\\\" cannot be written: "));
    EXPECT_GT(acknowledged, 10u);
    KeptAgent kept(path);
    EXPECT_EQ(kept.database().find("a")->config->vlanVport().memberCount(), acknowledged);
}

} // namespace
} // namespace VpAgentTest
