#include "output/Output.h"

#include "agent/RunVpagent.h"
#include "support/FileBytes.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <unistd.h>

#include <string>

namespace VpAgent {
namespace {

/// Standard output and standard error are files while it is there.
class OutputTest : public testing::Test {
protected:
    OutputTest() : out_(::dup(STDOUT_FILENO)), err_(::dup(STDERR_FILENO)) {
        become(STDERR_FILENO, path("err"));
    }
    ~OutputTest() override {
        ::dup2(out_, STDOUT_FILENO);
        ::dup2(err_, STDERR_FILENO);
        ::close(out_);
        ::close(err_);
    }

    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    static void become(int stream, std::string const& file) {
        int const opened = ::open(file.c_str(), O_WRONLY | O_CREAT, 0600);
        ::dup2(opened, stream);
        ::close(opened);
    }

    std::string content(std::string const& name) const { return Support::bytesOf(path(name)); }

private:
    VpAgentTest::TemporaryFolder folder_;
    int out_;
    int err_;
};

TEST_F(OutputTest, WritesNothingMoreToAStreamThatFailed) {
    become(STDOUT_FILENO, "/dev/full");
    Output output;
    output.out() += "the beginning of a li";
    output.flush();
    become(STDOUT_FILENO, path("out"));
    output.out() += "ne\nanother\n";
    output.err() += "why\n";
    output.out() += "and another\n";
    output.flush();
    EXPECT_TRUE(output.failed());
    EXPECT_EQ(content("out"), "");
    EXPECT_EQ(content("err"), "why\n");
}

TEST_F(OutputTest, KeepsWritingToTheStreamThatDidNotFail) {
    become(STDOUT_FILENO, path("out"));
    become(STDERR_FILENO, "/dev/full");
    Output output;
    output.err() += "why\n";
    output.out() += "one\n";
    output.flush();
    EXPECT_TRUE(output.failed());
    EXPECT_EQ(content("out"), "one\n");
}

TEST_F(OutputTest, WritesToTheFilesThatStandForTheStreams) {
    become(STDOUT_FILENO, path("out"));
    int const out = ::open(path("other out").c_str(), O_WRONLY | O_CREAT, 0600);
    int const err = ::open(path("other err").c_str(), O_WRONLY | O_CREAT, 0600);
    {
        Output output(out, err);
        output.out() += "one\n";
        output.err() += "why\n";
        output.out() += "two\n";
    }
    EXPECT_EQ(::close(out), 0); // it stayed open
    EXPECT_EQ(::close(err), 0);
    EXPECT_EQ(content("other out"), "one\ntwo\n");
    EXPECT_EQ(content("other err"), "why\n");
    EXPECT_EQ(content("out"), "");
    EXPECT_EQ(content("err"), "");
}

} // namespace
} // namespace VpAgent
