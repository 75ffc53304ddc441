#include "commands/Handlers.h"
#include "commands/OperationCall.h"
#include "language/Parse.h"
#include "state/Agent.h"
#include "state/VerifyInCopy.h"
#include "text/Utf8.h"
#include "view/TextTable.h"

#include <algorithm>
#include <vector>

namespace VpAgent::Handlers {

using namespace VornicCentral;

namespace {

VpIndexAllocatorDirSm& runningMachine(Agent const& agent, Arguments const& arguments) {
    if (!agent.machine.running()) {
        throw Refusal("the state machine is not running, expected 'start' before",
                      arguments.command.place());
    }
    return agent.machine.stateMachine();
}

/// `settings` with those that the words give, each at most once.
StartSettings changedSettings(StartSettings settings, std::span<Word const> words) {
    std::vector<std::string_view> given;
    for (Word const& word : words) {
        std::size_t const equals = word.text.find('=');
        std::string_view const name = word.text.substr(0, equals);
        auto const& list = settingList();
        auto const* const setting = std::find_if(
            list.begin(), list.end(), [&](Setting const& each) { return each.name == name; });
        if (setting == list.end() || equals == std::string_view::npos) {
            throw badWord("setting", word, {0, settingWords()});
        }
        if (std::find(given.begin(), given.end(), name) != given.end()) {
            throw Refusal(std::string(name) + " is given twice, expected it once", word.place());
        }
        given.push_back(name);
        if (auto const fault = setting->set(settings, word.text.substr(equals + 1))) {
            throw badWord(name, word, {equals + 1 + fault->at, fault->expected});
        }
    }
    return settings;
}

/// What a start found, for the person who made it.
Reply started(Agent const& agent) {
    Reply reply;
    if (agent.forPeople) {
        auto const& pool = *agent.machine.stateMachine().vpBitmap();
        reply.note = "running: " + grouped(pool.numBitsInSetState()) + " indices" + " of " +
                     grouped(pool.size()) + " in use";
    }
    return reply;
}

} // namespace

Reply start(Agent& agent, Arguments const& arguments) {
    if (agent.machine.running()) {
        throw Refusal("the state machine is running already, expected 'restart' or 'stop'",
                      arguments.command.place());
    }
    agent.machine.start(changedSettings(agent.machine.defaults(), arguments.rest));
    return started(agent);
}

Reply stop(Agent& agent, Arguments const& arguments) {
    runningMachine(agent, arguments);
    agent.machine.stop();
    return {};
}

Reply restart(Agent& agent, Arguments const& arguments) {
    runningMachine(agent, arguments);
    StartSettings const settings = changedSettings(agent.machine.settings(), arguments.rest);
    agent.machine.stop();
    agent.machine.start(settings);
    return started(agent);
}

Reply call(Agent& agent, Arguments const& arguments) {
    if (arguments.word->text.find('/') != std::string_view::npos) {
        return callAtPath(agent, *arguments.word, arguments.rest);
    }
    return callOperation(runningMachine(agent, arguments), *arguments.word, arguments.rest);
}

Reply callClient(Agent& agent, Arguments const& arguments) {
    VpIndexAllocatorDirSm& stateMachine = runningMachine(agent, arguments);
    auto const allocator = stateMachine.vpIndexAllocator(arguments.client->text);
    if (!allocator) {
        throw Refusal("no allocator for the client " + inQuotes(arguments.client->text) +
                          ", expected a client that the state machine serves",
                      arguments.client->place());
    }
    return callOperation(*allocator, *arguments.word, arguments.rest);
}

Reply clearStale(Agent& agent, Arguments const& arguments) {
    Word operation = arguments.command;
    operation.text = "clearStaleEntries";
    return callOperation(runningMachine(agent, arguments), operation, {});
}

Reply verify(Agent& agent, Arguments const& arguments) {
    runningMachine(agent, arguments);
    return {verifyInCopy(agent), {}};
}

} // namespace VpAgent::Handlers
