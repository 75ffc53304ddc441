#include "Session.h"

#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

/// Remembers what is refused, and breaks off at the report of one command.
class BreakingReporter final : public VpAgent::Reporter {
public:
    void trace(U32, std::string_view) override {}
    void log(std::string_view, U32, std::string_view) override {}
    void multicast(VpAgent::McastEvent const&) override {}
    void done(VpAgent::CommandLine const& line, std::string_view, VpAgent::Reply const&,
              VpAgent::Agent const&) override {
        if (line.text == "client add broken") {
            throw std::length_error("out of room");
        }
    }
    void refused(VpAgent::CommandLine const& line, VpAgent::Refusal const& refusal) override {
        refusals += std::string(line.text) + ": " + refusal.what() + '\n';
    }
    void flush() noexcept override {}

    std::string refusals;
};

class GivenLines final : public VpAgent::LineSource {
public:
    explicit GivenLines(std::vector<std::string> lines) : lines_(std::move(lines)) {}

    bool next(VpAgent::CommandLine& line) override {
        if (at_ == lines_.size()) {
            return false;
        }
        line = {"test", at_ + 1, lines_[at_], false};
        ++at_;
        return true;
    }

private:
    std::vector<std::string> lines_;
    std::size_t at_ = 0;
};

TEST(Session, ACommandThatBreaksOffEndsTheRunAndLeavesNothingInTheStateFile) {
    TemporaryFolder const folder;
    auto const path = folder.path() / "state";
    {
        BreakingReporter reporter;
        VpAgent::Agent agent(reporter, {});
        auto const file = VpAgent::StateFile::open(path, agent.database);
        VpAgent::Session session(agent, true, file.get());
        GivenLines lines({"client add a", "nonsense", "begin", "client add b", "client add broken",
                          "client add c", "commit"});
        EXPECT_FALSE(session.run(lines));
        EXPECT_EQ(session.exitStatus(), 2);
        EXPECT_EQ(reporter.refusals.substr(reporter.refusals.find('\n') + 1),
                  "client add broken: out of room\n");
        EXPECT_EQ(reporter.refusals.substr(0, 10), "nonsense: ");
    }
    KeptAgent expected(folder.path() / "expected");
    expected.database().add("a");
    EXPECT_EQ(KeptAgent(path).content(), expected.content());
}

} // namespace
} // namespace VpAgentTest
