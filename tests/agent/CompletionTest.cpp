#include "language/Completion.h"

#include "lumlog/Record.h"
#include "lumlog/RingBuffer.h"
#include "output/JsonReporter.h"
#include "state/Agent.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace VpAgent {
namespace {

class CompletionTest : public testing::Test {
protected:
    CompletionTest() {
        agent_.database.add("bgp");
        agent_.database.add("bridging");
        agent_.database.add("two words");
    }

    std::vector<std::string> wordsFor(std::string_view typed) const {
        return complete(typed, agent_).words;
    }

    using Texts = std::vector<std::string>;

    Output output_;
    JsonReporter reporter_{output_};
    Agent agent_{reporter_, {}};
};

TEST_F(CompletionTest, OffersCommands) {
    EXPECT_EQ(wordsFor("re"), (Texts{"request", "restart"}));
    EXPECT_EQ(wordsFor("cl"), (Texts{"clear", "clear-stale", "client"}));
    EXPECT_EQ(wordsFor("client "), (Texts{"add", "remove", "retire"}));
    EXPECT_EQ(wordsFor("client re"), (Texts{"remove", "retire"}));
    EXPECT_EQ(wordsFor("help veri"), (Texts{"verify"}));
    EXPECT_EQ(wordsFor("help client re"), (Texts{"remove", "retire"}));
    EXPECT_EQ(wordsFor("help verify "), Texts{});
    EXPECT_EQ(wordsFor("help client add "), Texts{});
    EXPECT_EQ(wordsFor("nonsense "), Texts{});
}

TEST_F(CompletionTest, OffersClients) {
    EXPECT_EQ(wordsFor("request b"), (Texts{"bgp", "bridging"}));
    EXPECT_EQ(wordsFor("client retire "), (Texts{"\"two words\"", "bgp", "bridging"}));
    EXPECT_EQ(wordsFor("put reference vlan 7 12 bg"), (Texts{"bgp"}));
    EXPECT_EQ(wordsFor("put reference vlan 7 12 x bg"), (Texts{"bgp"}));
    EXPECT_EQ(wordsFor("show clients br"), (Texts{"bridging"}));
}

TEST_F(CompletionTest, OffersKindsButNoKeys) {
    EXPECT_EQ(wordsFor("request bgp "), (Texts{"edge", "efilter", "mlag", "remote", "vlan"}));
    EXPECT_EQ(wordsFor("put boot e"), (Texts{"edge", "efilter"}));
    EXPECT_EQ(wordsFor("request bgp vlan "), Texts{});
    EXPECT_EQ(wordsFor("put boot vlan 7 "), Texts{});
}

TEST_F(CompletionTest, OffersSettingsAndViews) {
    EXPECT_EQ(wordsFor("start ta"), (Texts{"table-size="}));
    EXPECT_EQ(wordsFor("restart table-size=7 re"),
              (Texts{"reallocation=off", "reallocation=on", "remote-low=off", "remote-low=on"}));
    EXPECT_EQ(wordsFor("show c"), (Texts{"clients", "counters"}));
}

TEST_F(CompletionTest, OffersOperationsOfWhatRuns) {
    EXPECT_EQ(wordsFor("call isD"), Texts{});
    EXPECT_EQ(wordsFor("call-client bgp handleVlan"), Texts{});
    agent_.machine.start({.tableSize = 64});
    agent_.database.add("mlag");
    EXPECT_EQ(wordsFor("call isDe"), (Texts{"isDefaultVp"}));
    EXPECT_EQ(wordsFor("call-client mlag handleVlan"), (Texts{"handleVlanVport"}));
    EXPECT_EQ(wordsFor("call isDefaultVp "), Texts{});
}

TEST_F(CompletionTest, OffersWhatTheMulticastEntitiesHold) {
    EXPECT_EQ(wordsFor("mcast hi"), (Texts{"higig", "higig-clear", "higig-del"}));
    EXPECT_EQ(wordsFor("mcast higig "), Texts{});
    EXPECT_EQ(wordsFor("mcast install "), Texts{});
    agent_.multicast.create();
    agent_.multicast.higig()->higigIntfsIs(Devbus::FapId(12), {});
    agent_.multicast.higig()->higigIntfsIs(Devbus::FapId(3), {Netzo::IntfId("Ethernet1")});
    agent_.multicast.install("group api");
    EXPECT_EQ(wordsFor("mcast higig "), (Texts{"12", "3"}));
    EXPECT_EQ(wordsFor("mcast higig-del 1"), (Texts{"12"}));
    EXPECT_EQ(wordsFor("mcast higig 3 "), Texts{});
    EXPECT_EQ(wordsFor("mcast install "), (Texts{"\"group api\""}));
    EXPECT_EQ(wordsFor("mcast update "), (Texts{"12", "3"}));
    EXPECT_EQ(wordsFor("mcast update 12 "), (Texts{"false", "true"}));
    output_.out().clear(); // what was reported meanwhile
}

TEST_F(CompletionTest, LeavesFilesToTheLineEditor) {
    EXPECT_EQ(complete("import le", agent_), (Completion{{}, true, false}));
    EXPECT_EQ(complete("import leaf.json b", agent_),
              (Completion{{"bgp", "bridging"}, false, false}));
}

TEST_F(CompletionTest, OffersTypesAndRootsToInspect) {
    EXPECT_EQ(wordsFor("inspect VpIndexC"), (Texts{"VpIndexConfig", "VpIndexConfigDir"}));
    EXPECT_EQ(wordsFor("inspect VornicCentral::Vx"),
              (Texts{"VornicCentral::VxlanBootStatus", "VornicCentral::VxlanCapabilities"}));
    EXPECT_EQ(wordsFor("inspect ma"), (Texts{"machine"}));
    EXPECT_EQ(wordsFor("inspect machine "), Texts{});
}

TEST_F(CompletionTest, OffersTheStepsOfAPath) {
    agent_.database.references()->edgeVportIs(*VornicCentral::PortVlanKey::parse("Ethernet1/1:100"),
                                              {});
    EXPECT_EQ(wordsFor("inspect configs/"), (Texts{"configs/name", "configs/vpIndexConfig"}));
    EXPECT_EQ(wordsFor("inspect configs/vpIndexConfig/b"),
              (Texts{"configs/vpIndexConfig/bgp", "configs/vpIndexConfig/bridging"}));
    EXPECT_EQ(wordsFor("inspect \"configs/vpIndexConfig/t"),
              (Texts{"\"configs/vpIndexConfig/two words"}));
    EXPECT_EQ(wordsFor("inspect \"configs/vpIndexConfig/two words/n"),
              (Texts{"\"configs/vpIndexConfig/two words/nameString\""}));
    EXPECT_EQ(wordsFor("inspect references/edgeVport/"),
              (Texts{"references/edgeVport/Ethernet1%2F1:100"}));
    EXPECT_EQ(wordsFor("inspect nothing/"), Texts{});
    EXPECT_EQ(wordsFor("inspect configs/name/"), Texts{});
    EXPECT_EQ(wordsFor("inspect machine/"), Texts{});
}

TEST_F(CompletionTest, OffersToCallWhatLeadsToOperations) {
    EXPECT_EQ(wordsFor("call references/"), Texts{});
    EXPECT_EQ(wordsFor("call configs/"), (Texts{"configs/vpIndexConfig"}));
    agent_.machine.start({.tableSize = 64});
    EXPECT_EQ(wordsFor("call mac"), (Texts{"machine"}));
    EXPECT_EQ(wordsFor("call machine/vpI"),
              (Texts{"machine/vpIndexAllocator", "machine/vpIndexConfigDir",
                     "machine/vpIndexStatusDir", "machine/vpInvalidReference"}));
    EXPECT_EQ(wordsFor("call machine/vpT"), Texts{});
    EXPECT_EQ(wordsFor("call machine/ve"), (Texts{"machine/verify"}));
    EXPECT_EQ(wordsFor("call machine/vpIndexAllocator/bgp/verifyV"),
              (Texts{"machine/vpIndexAllocator/bgp/verifyVlanVpIndex"}));
}

TEST_F(CompletionTest, SaysWhetherTheWordGoesOn) {
    agent_.machine.start({.tableSize = 64});
    for (auto const& [typed, goesOn] :
         {std::pair("start ta", true), std::pair("start reallocation=of", false),
          std::pair("inspect ref", true), std::pair("inspect configs/v", true),
          std::pair("inspect configs/n", false),
          std::pair("inspect configs/vpIndexConfig/bg", true), std::pair("inspect VxlanB", false),
          std::pair("call machine/ver", false), std::pair("call mach", true),
          std::pair("request bg", false), std::pair("inspect configs/vpIndexConfig/b", false)}) {
        EXPECT_EQ(complete(typed, agent_).goesOn, goesOn) << typed;
    }
}

TEST_F(CompletionTest, OffersTheOptionsOfShowRing) {
    EXPECT_EQ(wordsFor("show r"), (Texts{"references", "ring"}));
    EXPECT_EQ(wordsFor("show ring "), (Texts{"--all", "--ctf", "--from", "--last", "--ring"}));
    EXPECT_EQ(wordsFor("show ring --last 3 --c"), (Texts{"--ctf"}));
    EXPECT_EQ(complete("show ring --from co", agent_), (Completion{{}, true, false}));
    EXPECT_EQ(complete("show ring --from core --ctf ", agent_), (Completion{{}, true, false}));
    EXPECT_EQ(complete("show ring --last ", agent_), (Completion{{}, false, false}));
    EXPECT_EQ(complete("ring dump co", agent_), (Completion{{}, true, false}));
}

TEST_F(CompletionTest, OffersTheNumbersOfMessages) {
    Lumlog::RingBuffer ring(Lumlog::RingBuffer::minSize);
    Lumlog::RingBuffer* const former = Lumlog::RingBuffer::currentIs(&ring);
    EXPECT_EQ(wordsFor("message "), (Texts{"off", "on"}));
    EXPECT_EQ(wordsFor("message off "), Texts{});
    static constinit Lumlog::MsgDescriptor site("unit", 1, 1);
    Lumlog::record(ring, site, "text");
    Texts const number{std::to_string(site.msgId())};
    EXPECT_EQ(wordsFor("message off "), number);
    EXPECT_EQ(wordsFor("message on 0 "), number);
    EXPECT_EQ(wordsFor("message x "), Texts{});
    Lumlog::RingBuffer::currentIs(former);
}

TEST_F(CompletionTest, StaysWithinQuotes) {
    agent_.database.add("back\\slash");
    EXPECT_EQ(wordsFor("request \"tw"), (Texts{"\"two words\""}));
    EXPECT_EQ(wordsFor("request \"two "), (Texts{"\"two words\""}));
    EXPECT_EQ(wordsFor("request \"two words\""), (Texts{"\"two words\""}));
    EXPECT_EQ(wordsFor("request \"b"), (Texts{"\"back\\\\slash\"", "\"bgp\"", "\"bridging\""}));
    EXPECT_EQ(wordsFor("show \"clients\" \"two w"), (Texts{"\"two words\""}));
    EXPECT_EQ(wordsFor("show cli\"ents b"), Texts{});
    EXPECT_EQ(wordsFor("start \"reallocation=of"), (Texts{"\"reallocation=off\""}));
    EXPECT_EQ(complete("start \"ta", agent_), (Completion{{"\"table-size="}, false, true}));
    EXPECT_EQ(complete("inspect \"configs/vpIndexConfig/t", agent_),
              (Completion{{"\"configs/vpIndexConfig/two words"}, false, true}));
}

} // namespace
} // namespace VpAgent
