#include "Session.h"

#include "language/Arguments.h"
#include "language/CommandTable.h"
#include "statefile/StateFile.h"

#include <exception>
#include <variant>

namespace VpAgent {

bool Session::run(LineSource& source) {
    CommandLine line;
    while (source.next(line)) {
        if (!runLine(line)) {
            return false;
        }
    }
    return true;
}

/// False when no more lines are to be run.
bool Session::runLine(CommandLine const& line) {
    try {
        return execute(line);
    } catch (Refusal const& refusal) {
        agent_.reporter.refused(line, refusal);
        commandFailed_ = true;
        return keepGoing_ || line.terminal;
    } catch (std::exception const& error) {
        // The database is ahead of the file, or the command broke off in its middle: nothing more
        // may be brought to disk or acknowledged.
        agent_.reporter.refused(line, Refusal(error.what()));
        commandFailed_ = true;
        return false;
    }
}

bool Session::execute(CommandLine const& line) {
    words_.read(line.text);
    if (words_.all().empty()) {
        return true;
    }
    Command const& command = findCommand(words_);
    Arguments const arguments = parseArguments(command, words_);
    agent_.forPeople = line.terminal;
    bool const unitWasOpen = agent_.unitOpen;
    Reply reply = command.run(agent_, arguments);
    reply.pending = unitWasOpen && agent_.unitOpen;
    bool const kept = keepChanges();
    agent_.reporter.done(line, command.word, reply, agent_);
    if (kept) {
        agent_.reporter.flush(); // so that no more than one command is on disk and not acknowledged
    }

    auto const* const verified = std::get_if<VerifyReply>(&reply.content);
    verifyFailed_ = verifyFailed_ || (verified != nullptr && !verified->passed);
    return !std::holds_alternative<QuitReply>(reply.content);
}

/// Brings what commands changed to disk, unless `commit` will. Whether there was anything.
bool Session::keepChanges() {
    return stateFile_ != nullptr && !agent_.unitOpen && stateFile_->commit();
}

} // namespace VpAgent
