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
    bool complained = false;
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
        life.complained = true;
        EXPECT_THAT(refusal.what(), HasSubstr("cannot use the state file \"" + path.string()));
    } catch (VpAgent::StateFileError const& error) {
        life.complained = true;
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

class DiskFault : public testing::TestWithParam<std::tuple<Fault, Lasting>> {};

TEST_P(DiskFault, AtAnyWriteLosesNothingThatWasAcknowledged) {
    FaultyDisk disk;
    bool met = true;
    unsigned at = 0;
    for (; met; ++at) {
        ASSERT_LT(at, 1000u);
        SCOPED_TRACE(at);
        TemporaryFolder const folder;
        auto const path = folder.path() / "state";
        disk.failAt(at, std::get<0>(GetParam()), std::get<1>(GetParam()));
        Life const life = liveOn(path);
        met = disk.failed();
        disk.repair();
        std::string const content = KeptAgent(path).content();
        if (life.opened && content != life.underWay) {
            EXPECT_EQ(content, life.acknowledged);
        }
        // Only when the run was over may a fault go unsaid.
        EXPECT_TRUE(!met || life.complained || life.acknowledged == life.underWay);
        ASSERT_FALSE(HasFailure());
    }
    EXPECT_GT(at, 40u);
}

INSTANTIATE_TEST_SUITE_P(Kinds, DiskFault,
                         testing::Combine(testing::Values(Fault::full, Fault::broken),
                                          testing::Values(Lasting::once, Lasting::forEver)));

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
    // A limit on the size of files stands for a full disk; the write fails because the signal that
    // would end the program is ignored.
    std::string const out = (folder.path() / "out").string();
    std::string const command = "trap '' XFSZ; ulimit -f 400; exec " + vpagentProgram() +
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
