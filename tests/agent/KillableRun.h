#pragma once

#include <sys/types.h>

#include <string>
#include <string_view>
#include <vector>

namespace VpAgentTest {

/// A run of the program with `--json` that is given commands through a pipe and may be killed at
/// any time.
class KillableRun {
public:
    /// With an empty state file name the database is in memory.
    explicit KillableRun(std::string const& stateFile);
    ~KillableRun() { kill(); }
    KillableRun(KillableRun const&) = delete;
    KillableRun& operator=(KillableRun const&) = delete;

    /// Hands over lines of commands; without effect when the program is gone.
    void write(std::string_view lines);

    /// Reads until so many commands in all have been answered by `ok` or `error`, or the program
    /// has ended. False when it has.
    bool readAnswers(std::size_t count);

    /// The answers that were read, in their order, without traces and log messages.
    std::vector<std::string> const& answers() const noexcept { return answers_; }

    /// The database as `dump` shows it, after all commands so far; empty when the program has
    /// ended.
    std::string database();

    void endInput();

    /// Ends the program by SIGKILL, if it has not ended, and reads what it had answered before. The
    /// test fails when a sanitizer has reported something on the way.
    void kill();

    /// How the program ended, as `waitpid` tells it; known after `kill`.
    int status() const noexcept { return status_; }

private:
    bool readMore();

    pid_t process_ = -1;
    int input_ = -1;
    int output_ = -1;
    int errors_ = -1; ///< a file in memory
    int status_ = 0;
    std::size_t written_ = 0; ///< commands
    std::string rest_;        ///< of a line that is not complete
    std::vector<std::string> answers_;
};

/// The part of an answer to `dump` that a state file keeps, as JSON.
std::string databaseOf(std::string const& dumpAnswer);

} // namespace VpAgentTest
