// The program without memory: a command is carried out, or is an error, or ends the program by a
// message; and what was acknowledged stands in the state file.

#include "Program.h"
#include "agent/KeptAgent.h"
#include "agent/KillableRun.h"
#include "agent/RunVpagent.h"
#include "support/Allocations.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <fstream>
#include <iostream>
#include <string>
#include <vector>

namespace VpAgentTest {
namespace {

using Support::FailingAllocations;
using Support::Shortage;

/// A run, and the one before it, if any, which is killed and so leaves a state file with a log.
struct Runs {
    char const* name;
    std::vector<std::string> before;
    std::vector<std::string> commands;
};

std::vector<Runs> const allRuns = {
    {"OnNoStateFileYet",
     {},
     {"client add bgp", "start table-size=9 reallocation=on", "request bgp edge Ethernet1/1:100",
      "request bgp remote 10.0.0.1@7", "withdraw bgp edge Ethernet1/1:100", "save-boot"}},
    {"OnAStateFileWithALog",
     {"client add bgp", "start table-size=9", "request bgp edge Ethernet1/1:100",
      "request bgp vlan 7", "mcast create", "mcast backplane Ethernet1/1"},
     {"start table-size=9 reallocation=on", "request bgp remote 10.0.0.1@7",
      "withdraw bgp edge Ethernet1/1:100"}},
};

class WithoutMemory : public testing::TestWithParam<Runs> {
protected:
    WithoutMemory() {
        options_.stateFile = (folder_.path() / "run" / "state").string();
        prepare();
        for (std::size_t count = 0; count <= commands_.size(); ++count) {
            options_.scripts = {folder_.write("script.vp", scriptOf(count))};
            EXPECT_EQ(run(0, Shortage::momentary), 0);
            contents_.push_back(openedFile(*options_.stateFile).content);
        }
    }

    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    /// Each command is acknowledged by the line that follows it.
    std::string scriptOf(std::size_t count) const {
        std::string script;
        for (std::size_t at = 0; at < count; ++at) {
            script += commands_[at] + "\necho done\n";
        }
        return script;
    }

    /// Makes what each run finds.
    void prepare() const {
        std::filesystem::create_directory(path("before"));
        if (!GetParam().before.empty()) {
            KillableRun run(path("before/state"));
            for (std::string const& command : GetParam().before) {
                run.write(command + '\n');
            }
            EXPECT_TRUE(run.readAnswers(GetParam().before.size()));
            run.kill();
            EXPECT_TRUE(std::filesystem::exists(path("before/state-wal")));
        }
    }

    /// Runs the script on what was there before, in a copy of this process. With 0 for `failing`
    /// nothing fails, else that allocation. Returns the status, or minus the signal.
    int run(U32 failing, Shortage shortage) const {
        std::filesystem::remove_all(path("run"));
        std::filesystem::copy(path("before"), path("run"));
        std::fflush(nullptr); // or the copy prints once more what is not printed yet
        pid_t const child = ::fork();
        if (child == 0) {
            runHere(failing, shortage);
        }
        return statusOf(child);
    }

    /// As the program's `main` does it.
    [[noreturn]] void runHere(U32 failing, Shortage shortage) const {
        ::alarm(60);
        rlimit const noCore{0, 0};
        ::setrlimit(RLIMIT_CORE, &noCore);
        ::dup2(::open(path("out").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDOUT_FILENO);
        ::dup2(::open(path("err").c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600), STDERR_FILENO);
        int status = VpAgent::failureStatus;
        try {
            Support::CountedAllocations const allocations;
            FailingAllocations const fail(failing - 1, shortage);
            status = VpAgent::runProgram(options_);
            FailingAllocations::end();
            std::ofstream(path("count")) << allocations.count();
        } catch (std::exception const& exception) {
            std::cerr << "vpagent: " << exception.what() << '\n';
        }
        ::_exit(status);
    }

    void expectOrderlyEnd(int status) const {
        std::string const err = bytesOf(path("err"));
        if (status == -SIGABRT) {
            EXPECT_NE(err.find("vpagent: ended"), err.npos) << err;
        } else if (status == VpAgent::failureStatus) {
            EXPECT_FALSE(err.empty());
        } else {
            EXPECT_EQ(status, 0) << err;
            EXPECT_EQ(err.find("vpagent:"), err.npos) << err;
        }
    }

    /// The file holds what was acknowledged, and at most one command more.
    void expectKept(int status) const {
        std::string const out = bytesOf(path("out"));
        auto const done = static_cast<std::size_t>(std::count(out.begin(), out.end(), '\n'));
        std::size_t const last = std::min(done + 1, commands_.size());
        EXPECT_TRUE(status != 0 || done == commands_.size()) << out;
        Opened const file = openedFile(*options_.stateFile);
        EXPECT_EQ(file.refusal, "");
        EXPECT_TRUE(file.content == contents_[done] || file.content == contents_[last])
            << done << " were acknowledged, the file holds:\n"
            << file.content;
    }

    int tryOne(U32 failing, Shortage shortage) const {
        int const status = run(failing, shortage);
        expectOrderlyEnd(status);
        expectKept(status);
        return status;
    }

    std::vector<std::string> const& commands_ = GetParam().commands;
    TemporaryFolder folder_;
    VpAgent::Options options_;
    std::vector<std::string> contents_; ///< of the file after the first commands
};

/// Of the allocations of a run every so many are refused, every single one in a long run.
U32 step() {
    char const* const chosen = std::getenv("VORNIC_SHORTAGE_STEP");
    return chosen == nullptr ? 11 : static_cast<U32>(std::stoul(chosen));
}

TEST_P(WithoutMemory, EveryAllocationEndsInAnErrorOrAMessage) {
    ASSERT_EQ(run(0, Shortage::momentary), 0);
    expectKept(0);
    U32 const count = static_cast<U32>(std::stoul(bytesOf(path("count"))));
    std::array<U32, 3> ways{};
    for (U32 failing = 1; failing <= count && !HasFailure(); failing += step()) {
        SCOPED_TRACE("allocation " + std::to_string(failing));
        int const status = tryOne(failing, Shortage::momentary);
        ++ways[status < 0 ? 2 : status == 0 ? 0 : 1];
        // What ends the program at once does so too when there is no memory afterwards.
        if (status >= 0) {
            tryOne(failing, Shortage::lasting);
        }
    }
    std::cout << count << " allocations: " << ways[0] << " done, " << ways[1] << " errors, "
              << ways[2] << " ends\n";
}

INSTANTIATE_TEST_SUITE_P(Runs, WithoutMemory, testing::ValuesIn(allRuns),
                         [](auto const& each) { return std::string(each.param.name); });

} // namespace
} // namespace VpAgentTest
