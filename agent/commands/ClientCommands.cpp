#include "Limits.h"
#include "commands/Handlers.h"
#include "import/JsonFile.h"
#include "import/RequestedKeys.h"
#include "language/Parse.h"
#include "state/Agent.h"
#include "text/Utf8.h"

#include <filesystem>

namespace VpAgent {

using namespace VornicCentral;

Client const& knownClient(Agent const& agent, Word const& name) {
    Client const* const client = agent.database.find(name.text);
    if (client == nullptr) {
        throw Refusal("no client " + inQuotes(name.text) +
                          ", expected one that 'client add' or 'import' made",
                      name.place());
    }
    return *client;
}

Refusal tooManyKeys(std::string_view where, Word const& word) {
    return {"too many keys, expected at most " + std::to_string(Limits::keys) + ' ' +
                std::string(where),
            word.place()};
}

namespace Handlers {

namespace {

/// Refuses a client that would be one too many; `client` is null when it is not known.
void checkRoomFor(Agent const& agent, Client const* client, Word const& name) {
    if (client == nullptr && !agent.database.roomForClient()) {
        throw Refusal("too many clients, expected at most " + std::to_string(Limits::clients),
                      name.place());
    }
}

/// What became of a request, for the person who made it.
std::string outcome(Agent const& agent, Client const& client, Vport const& vport) {
    std::string text = vport.text();
    if (!agent.machine.running()) {
        return text + ": requested; the state machine is not running";
    }
    vport.visit([&](auto kind, auto const& key) {
        VirtualPort const* const vPort = client.status->find<decltype(kind)>(key);
        text += vPort == nullptr ? ": requested"
                : vPort->valid() ? ": index " + vPort->stringValue()
                                 : ": the table is full, no index yet";
    });
    return text;
}

} // namespace

Reply clientAdd(Agent& agent, Arguments const& arguments) {
    Word const& name = *arguments.client;
    Client const* const client = agent.database.find(name.text);
    if (client != nullptr && agent.database.isListed(*client)) {
        throw Refusal("client " + inQuotes(name.text) + " is there already, expected a new name",
                      name.place());
    }
    checkRoomFor(agent, client, name);
    agent.database.add(name.text);
    return {};
}

Reply clientRemove(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    if (!agent.database.isListed(client)) {
        throw Refusal("client " + inQuotes(client.name) +
                          " is removed already, expected one that is not",
                      arguments.client->place());
    }
    agent.database.remove(client);
    return {};
}

Reply clientRetire(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    forEachKind([&](auto kind) { client.config->delAll<decltype(kind)>(); });
    agent.database.remove(client);
    if (agent.machine.running()) {
        agent.machine.stateMachine().vpIndexAllocatorDel(client.name);
    }
    agent.database.forget(client);
    return {};
}

Reply request(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    arguments.vport->visit([&](auto kind, auto const& key) {
        using Kind = decltype(kind);
        if (!agent.database.takeRoomForRequests(1) && !client.config->has<Kind>(key)) {
            throw tooManyKeys("requests of all clients", arguments.command);
        }
        client.config->is<Kind>(key, true);
    });
    Reply reply;
    if (agent.forPeople) {
        reply.note = outcome(agent, client, *arguments.vport);
    }
    return reply;
}

Reply withdraw(Agent& agent, Arguments const& arguments) {
    Client const& client = knownClient(agent, *arguments.client);
    Reply reply;
    arguments.vport->visit([&](auto kind, auto const& key) {
        using Kind = decltype(kind);
        if (agent.forPeople && !client.config->has<Kind>(key)) {
            reply.note = "it was not requested";
        }
        client.config->del<Kind>(key);
    });
    return reply;
}

Reply import(Agent& agent, Arguments const& arguments) {
    Word const& file = *arguments.word;
    std::filesystem::path const path(file.text);
    std::string const name(arguments.client != nullptr ? std::string(arguments.client->text)
                                                       : path.stem().string());
    if (auto const fault = nameFault(name)) {
        throw Refusal("the file's name " + inQuotes(name) + " is no client name, expected " +
                          fault->expected,
                      file.place());
    }
    try {
        RequestedKeys const keys(parseJson(readFile(path)));
        checkRoomFor(agent, agent.database.find(name), file);
        std::size_t count = 0;
        forEachKind([&](auto kind) { count += keys.of<decltype(kind)>().memberCount(); });
        if (!agent.database.takeRoomForRequests(count)) {
            throw tooManyKeys("requests of all clients", file);
        }
        Client const& client = agent.database.add(name);
        ImportReply reply{client.name, {}};
        forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            reply.requests[VornicCentral::kindOrder<Kind>] = keys.of<Kind>().memberCount();
            forEachMember(keys.of<Kind>(),
                          [&](auto const& key, bool) { client.config->is<Kind>(key, true); });
        });
        return {reply, {}};
    } catch (Refusal const& refusal) {
        throw Refusal(refusal.what(), file.place());
    }
}

} // namespace Handlers

} // namespace VpAgent
