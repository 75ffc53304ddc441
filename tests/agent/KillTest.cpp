#include "agent/KillableRun.h"
#include "agent/RunVpagent.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

using Commands = std::vector<std::string>;

std::string lines(Commands const& commands, std::size_t count) {
    std::string text;
    for (std::size_t at = 0; at < count; ++at) {
        text += commands[at] + '\n';
    }
    return text;
}

/// Every command that changes something: a table that fills up, hand-overs, a client that goes and
/// comes back, units, records written by hand, a restart.
Commands const everything{
    "client add bgp",
    "client add \"leaf \xC3\xA9\"",
    "start table-size=13",
    "request bgp edge Ethernet1/1:100",
    "request bgp vlan 7",
    "request \"leaf \xC3\xA9\" edge Ethernet1/1:100",
    "request \"leaf \xC3\xA9\" remote 10.0.0.2@17",
    "request \"leaf \xC3\xA9\" mlag 2001:db8::2@4294967295",
    "request bgp efilter \"Port channel 7\"",
    "request bgp vlan 8",
    "request bgp vlan 9",
    "request \"leaf \xC3\xA9\" vlan 9",
    "request \"leaf \xC3\xA9\" remote 10.0.0.3@17",
    "withdraw bgp vlan 7",
    "request bgp vlan 7",
    "withdraw bgp vlan 9",
    "request bgp vlan 9",
    "save-boot",
    "client remove bgp",
    "begin",
    "request \"leaf \xC3\xA9\" vlan 20",
    "withdraw \"leaf \xC3\xA9\" vlan 9",
    "request \"leaf \xC3\xA9\" vlan 9",
    "commit",
    "client add bgp",
    "stop",
    "withdraw bgp vlan 8",
    "request bgp vlan 30",
    "put boot vlan 40 9",
    "put status bgp vlan 41 65535",
    "put reference vlan 42 65535 bgp other \"leaf \xC3\xA9\"",
    "put waiting vlan 43",
    "drop status bgp vlan 41",
    "drop reference vlan 42",
    "drop waiting vlan 43",
    "drop boot vlan 40",
    "start table-size=16",
    "clear-stale",
    "restart table-size=20",
    "client retire \"leaf \xC3\xA9\"",
    "client add \"leaf \xC3\xA9\"",
    "client add third",
    "import " + Support::sourceFolder() + "/tests/agent/KillTest.json",
    "stop",
    "clear boot",
    "clear waiting",
    "clear references",
};

class Kill : public testing::Test {
protected:
    std::string path() const { return (folder_.path() / "state").string(); }

    /// The database that the next run finds.
    std::string found() const { return KillableRun(path()).database(); }

    TemporaryFolder folder_;
};

TEST_F(Kill, AfterAnyCommandTheNextRunFindsTheSameDatabase) {
    KillableRun memory("");
    std::string durable;
    for (std::size_t count = 1; count <= everything.size(); ++count) {
        std::string const& last = everything[count - 1];
        SCOPED_TRACE(last);
        TemporaryFolder const folder;
        std::string const path = (folder.path() / "state").string();
        KillableRun run(path);
        run.write(lines(everything, count));
        ASSERT_TRUE(run.readAnswers(count));
        run.kill();
        ASSERT_EQ(run.answers().back().substr(0, 6), "{\"ok\":");

        memory.write(last + '\n');
        std::string const now = memory.database();
        bool const pending = run.answers().back().find("\"pending\": true") != std::string::npos;
        durable = pending ? durable : now;
        ASSERT_EQ(KillableRun(path).database(), durable);
    }
}

TEST_F(Kill, AnOpenUnitLeavesNothingBehind) {
    KillableRun run(path());
    run.write("client add a\nrequest a vlan 1\n");
    std::string const before = run.database();
    run.write("begin\nrequest a vlan 2\nwithdraw a vlan 1\nclient add b\n");
    ASSERT_TRUE(run.readAnswers(7));
    EXPECT_EQ(run.answers()[3], "{\"ok\": \"begin\", \"line\": 4}");
    EXPECT_EQ(run.answers()[4], "{\"ok\": \"request\", \"line\": 5, \"pending\": true}");
    run.kill();
    EXPECT_EQ(found(), before);
}

/// Every third commit is acknowledged before the kill. The others are killed after a delay that
/// closes in on the moment of the commit: longer when the last one was too short for it, shorter
/// when it was not.
TEST_F(Kill, AUnitWhoseCommitIsUnderWayIsThereOrNot) {
    constexpr int fewestRounds = 30;
    constexpr int mostRounds = 150;
    constexpr useconds_t longestDelay = 500'000;
    useconds_t delay = 0;
    int kept = 0; // of those that nobody waited for
    int lost = 0;
    std::string before = found();
    for (int round = 0; round < fewestRounds || (round < mostRounds && (kept == 0 || lost == 0));
         ++round) {
        KillableRun run(path());
        std::string const number = std::to_string(round);
        run.write("begin\nclient add c" + number + "\n");
        for (int vlan = 1; vlan <= 100; ++vlan) {
            run.write("request c" + number + " vlan " + std::to_string(vlan) + "\n");
        }
        std::string const after = run.database();
        std::size_t const answers = run.answers().size();
        bool const awaited = round % 3 == 0;
        run.write("commit\n");
        if (awaited) {
            ASSERT_TRUE(run.readAnswers(answers + 1)) << round;
        } else {
            usleep(delay);
        }
        run.kill();
        bool const acknowledged = run.answers().size() > answers;
        std::string const now = found();
        ASSERT_TRUE(now == after || (now == before && !acknowledged))
            << "round " << round << ", killed after " << delay << " microseconds, "
            << (acknowledged ? "acknowledged: " + run.answers().back() : "not acknowledged")
            << "\nbefore: " << before << "\nafter: " << after << "\nfound: " << now;
        if (!awaited) {
            (now == after ? kept : lost) += 1;
            delay = now == after ? delay / 2 : std::min(delay * 2 + 50, longestDelay);
        }
        before = now;
    }
    EXPECT_GT(kept, 0);
    EXPECT_GT(lost, 0);
}

TEST_F(Kill, InputThatEndsWithoutCommitDropsTheUnit) {
    Outcome const outcome =
        runVpagent({"--json", "--state", path()}, "client add a\nbegin\nclient add b\n");
    EXPECT_EQ(outcome.status, 0);
    EXPECT_EQ(outcome.out, "{\"ok\": \"client\", \"line\": 1}\n"
                           "{\"ok\": \"begin\", \"line\": 2}\n"
                           "{\"ok\": \"client\", \"line\": 3, \"pending\": true}\n");
    KillableRun memory("");
    memory.write("client add a\n");
    EXPECT_EQ(found(), memory.database());
}

TEST_F(Kill, AFailedAssertionLeavesNothingOfItsCommand) {
    KillableRun run(path());
    run.write("client add a\nput status a vlan 7 9\nput boot edge Et1:1 9\nput boot vlan 7 0\n");
    std::string const before = run.database();
    run.write("start\n");
    EXPECT_FALSE(run.readAnswers(6));
    run.kill();
    EXPECT_EQ(found(), before);
}

TEST_F(Kill, ASecondProgramOnTheFileIsRefusedAndTheFirstGoesOn) {
    KillableRun run(path());
    run.write("client add a\n");
    ASSERT_TRUE(run.readAnswers(1));
    Outcome const second = runVpagent({"--state", path()}, "client add b\n");
    EXPECT_EQ(second.status, 2);
    EXPECT_EQ(second.out, "");
    EXPECT_EQ(second.err, "vpagent: cannot use the state file \"" + path() +
                              "\": another program uses it, expected to be the only one\n");
    run.write("client add c\n");
    std::string const before = run.database();
    run.kill();
    EXPECT_EQ(found(), before);
}

TEST_F(Kill, AnImportOfTheStateFileKeepsTheLock) {
    KillableRun run(path());
    run.write("client add a\nimport " + path() + " x\nshow ring --from " + path() + "\nring dump " +
              path() + '\n');
    ASSERT_TRUE(run.readAnswers(4));
    for (std::size_t at = 1; at < 4; ++at) {
        EXPECT_NE(run.answers()[at].find("(it belongs to the state file in use)"),
                  std::string::npos)
            << run.answers()[at];
    }
    Outcome const second = runVpagent({"--state", path()}, "client add b\n");
    EXPECT_EQ(second.status, 2);
    EXPECT_EQ(second.out, "");
    run.write("client add c\n");
    std::string const before = run.database();
    run.kill();
    EXPECT_EQ(found(), before);
}

TEST_F(Kill, OfTwoThatStartTogetherOneRuns) {
    constexpr int rounds = 15;
    KillableRun memory("");
    for (int round = 0; round < rounds; ++round) {
        std::vector<std::unique_ptr<KillableRun>> runs;
        for (char const* const name : {"a", "b"}) {
            runs.push_back(std::make_unique<KillableRun>(path()));
            runs.back()->write(std::string("client add ") + name + std::to_string(round) + '\n');
        }
        std::size_t const first = runs[0]->readAnswers(1) ? 0 : 1;
        ASSERT_TRUE(runs[first]->readAnswers(1)) << round;
        ASSERT_FALSE(runs[1 - first]->readAnswers(1)) << round;
        memory.write(std::string("client add ") + (first == 0 ? "a" : "b") + std::to_string(round) +
                     '\n');
        runs[first]->kill();
    }
    EXPECT_EQ(found(), memory.database());
}

TEST_F(Kill, OfTwoThatMakeTheFileTogetherOneRuns) {
    constexpr int rounds = 15;
    for (int round = 0; round < rounds; ++round) {
        TemporaryFolder const folder;
        std::string const fresh = (folder.path() / "state").string();
        std::array<std::unique_ptr<KillableRun>, 2> runs;
        for (auto& run : runs) {
            run = std::make_unique<KillableRun>(fresh);
            run->write("client add a\n");
        }
        ASSERT_NE(runs[0]->readAnswers(1), runs[1]->readAnswers(1)) << round;
    }
}

TEST_F(Kill, AStateFileWhoseLogIsLostIsRefused) {
    for (bool const idle : {true, false}) {
        TemporaryFolder const folder;
        std::string const path = (folder.path() / "state").string();
        KillableRun run(path);
        run.write(idle ? "echo started\n" : "client add a\n");
        ASSERT_TRUE(run.readAnswers(1));
        run.kill();
        std::filesystem::remove(path + "-wal");
        Outcome const next = runVpagent({"--state", path}, "dump\n");
        EXPECT_EQ(next.status, 2);
        EXPECT_EQ(next.out, "");
        EXPECT_EQ(next.err, "vpagent: cannot use the state file \"" + path +
                                "\": it is damaged (the run before was cut off, and its log beside "
                                "the file is missing or empty), expected it as vpagent left it\n");
    }
}

/// The story of a full table: what is left of it is the same whether the agent was restarted or
/// killed in the middle.
TEST_F(Kill, AnyMomentOfAFullTablesLifeLeadsToTheSameEnd) {
    Commands const first{"client add bgp",
                         "client add mlag",
                         "start table-size=12",
                         "request bgp vlan 10",
                         "request bgp vlan 20",
                         "request mlag vlan 20",
                         "request mlag edge Ethernet1:30",
                         "request bgp remote 10.0.0.1@4",
                         "request mlag vlan 50",
                         "request bgp vlan 60",
                         "withdraw bgp vlan 10",
                         "client remove mlag"};
    Commands const second{"client add mlag", "request mlag vlan 70", "withdraw mlag vlan 70",
                          "clear-stale",     "withdraw bgp vlan 60", "withdraw mlag vlan 50",
                          "verify"};
    for (std::size_t moment = 4; moment <= first.size(); ++moment) {
        SCOPED_TRACE(moment);
        std::string const middle = lines(first, first.size()).substr(lines(first, moment).size());
        std::string const end = middle + lines(second, second.size());
        KillableRun restarted("");
        restarted.write(lines(first, moment) + "restart\n" + end + "dump\n");
        ASSERT_TRUE(restarted.readAnswers(first.size() + second.size() + 2));

        TemporaryFolder const folder;
        std::string const path = (folder.path() / "state").string();
        KillableRun run(path);
        run.write(lines(first, moment));
        ASSERT_TRUE(run.readAnswers(moment));
        run.kill();
        KillableRun next(path);
        next.write("start table-size=12\n" + end + "dump\n");
        ASSERT_TRUE(next.readAnswers(first.size() - moment + second.size() + 2));
        auto const state = [](std::string const& answer) {
            return answer.substr(answer.find("\"state\""));
        };
        EXPECT_EQ(state(next.answers().back()), state(restarted.answers().back()));
        std::string const& verified = next.answers()[next.answers().size() - 2];
        EXPECT_NE(verified.find("\"passed\": true"), std::string::npos) << verified;
    }
}

} // namespace
} // namespace VpAgentTest
