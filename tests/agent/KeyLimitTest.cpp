#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"
#include "language/Arguments.h"
#include "language/CommandTable.h"
#include "state/KeyRoom.h"

#include <gtest/gtest.h>

#include <string>

namespace VpAgentTest {
namespace {

namespace Limits = VpAgent::Limits;
using VornicCentral::VirtualPort;
using VornicCentral::VpReference;

TEST(KeyRoom, CountsOnlyWhenAsManyWereAddedAsThereWasRoomFor) {
    std::size_t present = Limits::keys - 3;
    int counts = 0;
    VpAgent::KeyRoom room;
    auto const take = [&](std::size_t count) {
        bool const taken = room.take(count, [&] {
            ++counts;
            return present;
        });
        present += taken ? count : 0;
        return taken;
    };
    EXPECT_TRUE(take(1) && take(1) && take(0) && take(1));
    EXPECT_EQ(counts, 1);
    EXPECT_FALSE(take(1));
    EXPECT_TRUE(take(0));
    present -= 2;
    EXPECT_FALSE(take(3));
    EXPECT_TRUE(take(2));
    EXPECT_FALSE(take(1));
    EXPECT_EQ(present, Limits::keys);
    present += 7; // not by commands
    EXPECT_FALSE(take(1));
}

/// An agent with as many keys in one place as there may be, less one.
class KeyLimit : public testing::Test {
protected:
    /// Carries a command out; gives why it was refused.
    std::string run(std::string const& line) {
        VpAgent::Words words;
        words.read(line);
        VpAgent::Command const& command = VpAgent::findCommand(words);
        try {
            command.run(agent_, VpAgent::parseArguments(command, words));
        } catch (VpAgent::Refusal const& refusal) {
            return refusal.what();
        }
        return "";
    }

    /// Calls `add` for so many keys.
    template <class Add> static void fill(std::size_t count, Add add) {
        for (std::size_t at = 0; at < count; ++at) {
            Netzo::IntfId const intf("Et" + std::to_string(at >> 16));
            add(VornicCentral::PortVlanKey(intf, Bridging::VlanId(static_cast<U16>(at))));
        }
    }

    /// Of records with one entry less than they may have, one more is taken, also when it is put
    /// again or after another was dropped, and none beyond it.
    void expectRoomForOne(std::string const& record, std::string const& value) {
        SCOPED_TRACE(record);
        EXPECT_EQ(run("put " + record + " vlan 7" + value), "");
        EXPECT_EQ(run("put " + record + " vlan 7" + value), "");
        EXPECT_EQ(run("put " + record + " vlan 8" + value), tooMany);
        EXPECT_EQ(run("drop " + record + " vlan 7"), "");
        EXPECT_EQ(run("put " + record + " vlan 8" + value), "");
    }

    inline static std::string const tooMany =
        "too many keys, expected at most 1048576 in such records";
    QuietReporter reporter_;
    VpAgent::Agent agent_{reporter_, {}};
};

TEST_F(KeyLimit, AsManyRequestsOfAllClientsAsThereMayBe) {
    TemporaryFolder const folder;
    std::string const two =
        folder.write("two.json", R"({"VLAN_MEMBER": {"Vlan7|x": {}, "Vlan8|x": {}}})");
    std::string const message = "too many keys, expected at most 1048576 requests of all clients";
    auto const& a = agent_.database.add("a");
    auto const& b = agent_.database.add("b");
    fill(Limits::keys / 2, [&](auto const& key) { a.config->edgeVportIs(key, true); });
    fill(Limits::keys / 2 - 1, [&](auto const& key) { b.config->edgeVportIs(key, true); });
    EXPECT_EQ(run("import " + two + " c"), message);
    EXPECT_EQ(agent_.database.find("c"), nullptr);
    EXPECT_EQ(run("request b vlan 7"), "");
    EXPECT_EQ(run("request b vlan 7"), "");
    EXPECT_EQ(run("request a vlan 7"), message);
    EXPECT_EQ(run("client remove a"), "");
    EXPECT_EQ(run("request b vlan 8"), message);
    EXPECT_EQ(run("withdraw b vlan 7"), "");
    EXPECT_EQ(run("request b vlan 8"), "");
    EXPECT_EQ(run("client retire a"), "");
    EXPECT_EQ(run("import " + two + " c"), "");
}

TEST_F(KeyLimit, AsManyEntriesOfARecordAsThereMayBe) {
    auto& boot = *agent_.database.boot();
    fill(Limits::keys - 1, [&](auto const& key) { boot.edgeVportIs(key, VirtualPort(7)); });
    expectRoomForOne("boot", " 1");
    auto& references = *agent_.database.references();
    fill(Limits::keys - 1,
         [&](auto const& key) { references.edgeVportIs(key, VpReference(VirtualPort(7))); });
    expectRoomForOne("reference", " 1 a");
    auto& waiting = *agent_.database.waiting();
    fill(Limits::keys - 1, [&](auto const& key) { waiting.edgeVportIs(key, true); });
    expectRoomForOne("waiting", "");
}

TEST_F(KeyLimit, AsManyEntriesOfAllStatusesAsThereMayBe) {
    auto& a = *agent_.database.add("a").status;
    auto& b = *agent_.database.add("b").status;
    fill(Limits::keys / 2, [&](auto const& key) { a.edgeVportIs(key, VirtualPort(7)); });
    fill(Limits::keys / 2 - 1, [&](auto const& key) { b.edgeVportIs(key, VirtualPort(7)); });
    expectRoomForOne("status b", " 1");
    EXPECT_EQ(run("put status a vlan 9 1"), tooMany);
}

} // namespace
} // namespace VpAgentTest
