#pragma once

#include <sys/types.h>

#include <filesystem>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgentTest {

/// The path of the program: of the one that was built with the tests, or of an installed one that
/// `VORNIC_VPAGENT` in the environment names.
std::string vpagentProgram();
bool isInstalledProgram();

/// How a run of the program ended, and what it printed.
struct Outcome {
    int status = 0; ///< the exit status, or minus the signal that ended it
    std::string out;
    std::string err;
};

/// Runs the program to its end, with `input` as its standard input.
Outcome runVpagent(std::vector<std::string> const& arguments, std::string_view input = {},
                   std::function<void()> const& prepare = nullptr);

/// Lets signals do to this process what they do to a program that a person starts, whatever whoever
/// started the tests has chosen: a shell starts what runs in its background with interrupts
/// ignored.
void signalsAsUsual() noexcept;

/// Starts the program with these files as its standard input, output and error. `prepare` is called
/// in the process that becomes the program.
pid_t startVpagent(std::vector<std::string> const& arguments, int in, int out, int err,
                   std::function<void()> const& prepare = nullptr);

/// Waits for the end of a program: its exit status, or minus the signal that ended it.
int statusOf(pid_t process);

/// Runs one script with `--json` and further options, which must exit with `status`. Gives its
/// standard output.
std::string runJson(std::string_view script, int status = 0,
                    std::vector<std::string> const& options = {});

/// A program that is spoken to through pipes while it runs.
class Driven {
public:
    explicit Driven(std::vector<std::string> const& arguments);
    ~Driven(); ///< ends the program's input and waits for it
    Driven(Driven const&) = delete;
    Driven& operator=(Driven const&) = delete;

    void write(std::string_view text) const;

    /// Sends a signal.
    void signal(int number) const;

    /// Waits until the program has ended: its exit status, or minus the signal that ended it.
    int status();

    /// Waits, for at most 20 seconds, until a whole line has come, and returns it.
    std::string readLine();

private:
    int input_;
    int output_;
    pid_t process_;
    std::string pending_;
};

/// A folder that is there as long as the object.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(TemporaryFolder const&) = delete;
    TemporaryFolder& operator=(TemporaryFolder const&) = delete;

    std::filesystem::path const& path() const noexcept { return path_; }

    /// Writes a file and returns its path.
    std::string write(std::string_view name, std::string_view content) const;

private:
    std::filesystem::path path_;
};

} // namespace VpAgentTest
