#include "agent/KeptAgent.h"
#include "agent/RunVpagent.h"

#include <fcntl.h>
#include <grp.h>
#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdlib>
#include <set>
#include <sstream>
#include <string>

namespace VpAgentTest {
namespace {

namespace fs = std::filesystem;
using Names = std::set<std::string>;

/// Everything below a folder, by its path from there.
Names namesIn(fs::path const& folder) {
    Names names;
    for (auto const& entry : fs::recursive_directory_iterator(folder)) {
        names.insert(entry.path().lexically_relative(folder).string());
    }
    return names;
}

/// Runs of the program in folders that are watched: where it stands, where it is at home, where
/// temporary files go, and where the files are that it is told to write.
class Footprint : public testing::Test {
protected:
    std::string named(std::string const& name) const { return (named_.path() / name).string(); }

    /// Commands of every kind; those that write name their files.
    std::string script() const {
        return "client add a\nclient add b\nimport " +
               named_.write("a.json", R"({"VLAN_MEMBER|Vlan7|Et1": {}})") +
               " a\nstart table-size=32\nrequest b vlan 7\nbegin\nrequest b vlan 8\ncommit\n"
               "save-boot\nverify\nrestart\nmcast create\nmcast backplane Et1\nshow\nshow ring\n"
               "inspect machine\ncall-client a nonsense\nring dump " +
               named("ring") + "\nshow ring --from " + named("ring") + " --ctf " + named("trace") +
               "\ndump\nclient retire a\n";
    }

    /// Makes the process stand in an empty folder, with everything that names one set.
    void enter() const {
        for (char const* const name : {"TMPDIR", "TMP", "TEMP", "SQLITE_TMPDIR"}) {
            ::setenv(name, temporary_.path().c_str(), 1);
        }
        for (char const* const name :
             {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_STATE_HOME", "XDG_CACHE_HOME"}) {
            ::setenv(name, home_.path().c_str(), 1);
        }
        if (::chdir(standing_.path().c_str()) != 0) {
            ::_exit(126);
        }
    }

    void expectNothingElse(Names const& expected) const {
        EXPECT_EQ(namesIn(standing_.path()), Names{});
        EXPECT_EQ(namesIn(home_.path()), Names{});
        EXPECT_EQ(namesIn(temporary_.path()), Names{});
        Names names = namesIn(named_.path());
        std::erase_if(names, [](std::string const& name) { return name.starts_with("trace/"); });
        EXPECT_EQ(names, expected);
    }

    TemporaryFolder standing_;
    TemporaryFolder home_;
    TemporaryFolder temporary_;
    TemporaryFolder named_;
};

TEST_F(Footprint, IsTheFilesThatAreNamed) {
    Outcome const outcome =
        runVpagent({"--keep-going", "--state", named("state")}, script(), [&] { enter(); });
    EXPECT_EQ(outcome.status, 2); // one command is wrong
    expectNothingElse({"a.json", "ring", "state", "trace"});
}

TEST_F(Footprint, IsTheFileAndItsLogWhileItRunsAndAfterAKill) {
    std::array<int, 2> in{};
    std::array<int, 2> out{};
    ASSERT_EQ(::pipe2(in.data(), O_CLOEXEC), 0);
    ASSERT_EQ(::pipe2(out.data(), O_CLOEXEC), 0);
    pid_t const process = startVpagent({"--json", "--keep-going", "--state", named("state")}, in[0],
                                       out[1], STDERR_FILENO, [&] { enter(); });
    ::close(out[1]);
    std::string const text = script();
    ASSERT_EQ(::write(in[1], text.data(), text.size()), static_cast<ssize_t>(text.size()));
    std::string answers;
    for (char byte = 0; answers.find("\"ok\": \"client\", \"line\": 21") == std::string::npos &&
                        ::read(out[0], &byte, 1) == 1;) {
        answers += byte;
    }
    expectNothingElse({"a.json", "ring", "state", "state-wal", "trace"});
    ::kill(process, SIGKILL);
    EXPECT_EQ(statusOf(process), -SIGKILL);
    expectNothingElse({"a.json", "ring", "state", "state-wal", "trace"});
    for (int const end : {in[0], in[1], out[0]}) {
        ::close(end);
    }
}

TEST_F(Footprint, OfARunWithoutFilesIsNone) {
    EXPECT_EQ(
        runVpagent({}, "client add a\nstart\nrequest a vlan 7\nverify\ndump\n", [&] { enter(); })
            .status,
        0);
    expectNothingElse({});
}

/// Takes away all that a process may have beyond its user's rights, and those of root.
void dropPrivileges(bool toNobody) {
    for (unsigned long capability = 0; capability < 64; ++capability) {
        ::prctl(PR_CAPBSET_DROP, capability, 0, 0, 0);
    }
    constexpr id_t nobody = 65534;
    if (toNobody &&
        (::setgroups(0, nullptr) != 0 || ::setgid(nobody) != 0 || ::setuid(nobody) != 0)) {
        ::_exit(125);
    }
    ::prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
}

/// Ends the process by SIGSYS when it asks for a socket. It must have given up new privileges.
void forbidSockets() {
    std::array<sock_filter, 4> steps = {{
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_socket, 0, 1),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_KILL_PROCESS),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    }};
    sock_fprog const filter{steps.size(), steps.data()};
    if (::prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) != 0) {
        ::_exit(124);
    }
}

/// Whether anybody may run the program, whose folder may be its builder's alone.
bool isOpenToAll(fs::path path) {
    for (; path.has_relative_path(); path = path.parent_path()) {
        if ((fs::status(path).permissions() & fs::perms::others_exec) == fs::perms::none) {
            return false;
        }
    }
    return true;
}

TEST_F(Footprint, NeedsNoPrivilegesNoConnectionAndNoFolderThatMayBeWritten) {
    bool const toNobody = ::getuid() == 0 && isOpenToAll(vpagentProgram());
    std::string const commands = script();
    fs::permissions(named_.path(), fs::perms::all);
    for (TemporaryFolder const* const folder : {&standing_, &home_, &temporary_}) {
        fs::permissions(folder->path(), fs::perms(0555));
    }
    Outcome const outcome = runVpagent({"--json", "--keep-going", "--state", named("state")},
                                       commands + "call-client b nonsense\n", [&] {
                                           enter();
                                           dropPrivileges(toNobody);
                                           forbidSockets();
                                       });
    EXPECT_EQ(outcome.status, 2) << outcome.err;
    EXPECT_NE(outcome.out.find("{\"ok\": \"client\", \"line\": 21}"), std::string::npos)
        << outcome.out;
    EXPECT_NE(outcome.out.find("\"passed\": true"), std::string::npos);
    expectNothingElse({"a.json", "ring", "state", "trace"});
    EXPECT_EQ(openedFile(named("state")).refusal, "");
}

} // namespace
} // namespace VpAgentTest
