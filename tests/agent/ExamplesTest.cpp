#include "agent/KillableRun.h"
#include "agent/RunVpagent.h"
#include "agent/State.h"
#include "support/FileBytes.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <set>
#include <string>

namespace VpAgentTest {
namespace {

std::string example(std::string const& name) {
    std::string script = Support::bytesOf(Support::sourceFolder() + "/examples/" + name);
    EXPECT_NE(script, "") << name;
    return script;
}

TEST(LeafSwitch, FitsWithEveryRequestServed) {
    Json const state = stateAfter(example("leaf-switch.vp"));
    // 8 reserved, 127 VTEPs from the low end with a gap at the one that left, and 2,193 more from
    // the high end.
    EXPECT_EQ(state.at("pool").dump(),
              R"({"size":4096,"used":2328,"runs":[[0,83],[85,135],[1903,4095]]})");
    Json const& references = state.at("references");
    EXPECT_EQ(references.at("remoteVport").size(), 127u);
    EXPECT_EQ(references.at("mlagRemoteVport").size(), 1u);
    EXPECT_EQ(references.at("edgeVport").size(), 1891u);
    EXPECT_EQ(references.at("vlanVport").size(), 300u);
    EXPECT_EQ(references.at("eFilterDisableVport").size(), 1u);
    EXPECT_EQ(brief(state.at("waiting")), "{}");
    EXPECT_EQ(references.at("remoteVport").at("10.255.0.1@1").dump(),
              R"({"vpIndex":8,"clients":["bgp"]})");
    EXPECT_EQ(references.at("remoteVport").at("2001:db8:ff::10@128").dump(),
              R"({"vpIndex":135,"clients":["bgp"]})");
    EXPECT_EQ(references.at("vlanVport").at("101").dump(),
              R"({"vpIndex":4093,"clients":["bgp","bridging"]})");
}

TEST(LeafSwitch, HasTrunksOf20To60Vlans) {
    std::map<std::string, std::set<std::string>> trunks;
    Json const state = stateAfter(example("leaf-switch.vp"));
    for (auto const& key : state.at("config").at("bridging").at("edgeVport")) {
        std::string const text = key;
        trunks[text.substr(0, text.find(':'))].insert(text.substr(text.find(':')));
    }
    EXPECT_EQ(trunks.size(), 48u);
    for (auto const& [port, vlans] : trunks) {
        EXPECT_GE(vlans.size(), 20u) << port;
        EXPECT_LE(vlans.size(), 60u) << port;
    }
}

TEST(FullTable, ServesThoseThatWaitInTheirOrder) {
    std::string const script = example("full-table.vp");
    Json const state = stateAfter(script);
    EXPECT_EQ(brief(state.at("waiting")), "{}");
    EXPECT_EQ(brief(state.at("references")),
              R"({"remoteVport":{"10.0.0.2@17":{"vpIndex":11,"clients":["bridging"]}},)"
              R"("edgeVport":{"Ethernet1:110":{"vpIndex":10,"clients":["bridging","bgp"]}},)"
              R"("vlanVport":{"101":{"vpIndex":15,"clients":["bridging"]},)"
              R"("102":{"vpIndex":14,"clients":["bgp"]},"108":{"vpIndex":8,"clients":["bgp"]},)"
              R"("201":{"vpIndex":13,"clients":["bridging"]},)"
              R"("202":{"vpIndex":12,"clients":["bridging"]}}})");
}

TEST(Crash, IsFollowedByWhatARunWithoutItComesTo) {
    std::string const before = example("before-a-crash.vp");
    std::string const after = example("after-a-crash.vp");
    std::string const noStart =
        after.substr(0, after.find("start ")) + "re" + after.substr(after.find("start "));
    Json const undisturbed = stateAfter(before + noStart);

    TemporaryFolder const folder;
    std::string const path = (folder.path() / "state").string();
    KillableRun killed(path);
    killed.write(before);
    constexpr std::size_t commands = 11;
    ASSERT_TRUE(killed.readAnswers(commands));
    killed.kill();
    KillableRun next(path);
    next.write(after + "dump\n");
    constexpr std::size_t furtherCommands = 10;
    ASSERT_TRUE(next.readAnswers(furtherCommands + 1));

    EXPECT_EQ(Json::parse(next.answers().back()).at("state"), undisturbed);
    EXPECT_EQ(brief(undisturbed.at("references")),
              R"({"edgeVport":{"Ethernet1:110":{"vpIndex":9,"clients":["bgp","bridging"]}},)"
              R"("vlanVport":{"101":{"vpIndex":11,"clients":["bgp"]},)"
              R"("104":{"vpIndex":8,"clients":["bgp"]},)"
              R"("201":{"vpIndex":10,"clients":["bridging"]}}})");
}

} // namespace
} // namespace VpAgentTest
