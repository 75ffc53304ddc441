#include "commands/Handlers.h"
#include "language/Help.h"
#include "state/Agent.h"
#include "view/Show.h"

namespace VpAgent::Handlers {

Reply dump(Agent&, Arguments const&) { return {DumpReply{}, {}}; }

Reply show(Agent& agent, Arguments const& arguments) {
    return {TextReply{showView(agent, arguments.word, arguments.client)}, {}};
}

Reply begin(Agent& agent, Arguments const& arguments) {
    if (agent.unitOpen) {
        throw Refusal("a unit has begun already, expected 'commit' before",
                      arguments.command.place());
    }
    agent.unitOpen = true;
    return {};
}

Reply commit(Agent& agent, Arguments const& arguments) {
    if (!agent.unitOpen) {
        throw Refusal("no unit has begun, expected 'begin' before", arguments.command.place());
    }
    agent.unitOpen = false;
    return {};
}

Reply echo(Agent&, Arguments const& arguments) {
    std::string text;
    for (Word const& word : arguments.rest) {
        text += text.empty() && &word == arguments.rest.data() ? "" : " ";
        text += word.text;
    }
    return {TextReply{std::move(text)}, {}};
}

Reply help(Agent&, Arguments const& arguments) { return {TextReply{helpText(arguments.rest)}, {}}; }

Reply quit(Agent&, Arguments const&) { return {QuitReply{}, {}}; }

} // namespace VpAgent::Handlers
