#include "agent/MeasuredRun.h"

#include <gtest/gtest.h>

#include <vector>

namespace VpAgentTest {
namespace {

TEST(MeasuredRun, CountsTheMemoryOfTheProgramAlone) {
    long const before = measuredRun({"--version"}).peakMebibytes;
    std::size_t constexpr mebibyte = std::size_t{1} << 20;
    std::vector<char> const ours(600 * mebibyte, 'x');
    Measured const run = measuredRun({"--version"});
    EXPECT_EQ(ours.back(), 'x');
    EXPECT_EQ(run.outcome.status, 0);
    EXPECT_NE(run.outcome.out, "");
    EXPECT_GT(run.peakMebibytes, 0);
    EXPECT_LT(run.peakMebibytes, before + 50);
}

TEST(MeasuredRun, PassesOnTheWordsTheInputAndTheStatus) {
    TemporaryFolder const folder;
    Measured const run = measuredRun({"--json", "--keep-going"},
                                     folder.write("input", "echo  a $b 'c'\nnonsense\n"));
    EXPECT_EQ(run.outcome.status, 2);
    EXPECT_EQ(run.outcome.out.substr(0, run.outcome.out.find('\n')),
              runVpagent({"--json"}, "echo  a $b 'c'\n").out.substr(0, run.outcome.out.find('\n')));
    EXPECT_EQ(measuredRun({"a  b \"$HOME\".vp"}).outcome.err,
              runVpagent({"a  b \"$HOME\".vp"}).err);
}

} // namespace
} // namespace VpAgentTest
