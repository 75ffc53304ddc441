#include "language/Completion.h"

#include "output/JsonReporter.h"
#include "state/Agent.h"

#include <gtest/gtest.h>

#include <string>
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

TEST_F(CompletionTest, LeavesFilesToTheLineEditor) {
    EXPECT_EQ(complete("import le", agent_), (Completion{{}, true}));
    EXPECT_EQ(complete("import leaf.json b", agent_), (Completion{{"bgp", "bridging"}, false}));
}

TEST_F(CompletionTest, OffersNothingInsideQuotes) {
    EXPECT_EQ(wordsFor("request \"two "), Texts{});
    EXPECT_EQ(wordsFor("request \"tw"), (Texts{"\"two words\""}));
}

} // namespace
} // namespace VpAgent
