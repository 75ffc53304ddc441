#include "agent/KeptAgent.h"

#include "output/Dump.h"

#include <map>

namespace VpAgentTest {

using namespace VpAgent;

std::string contentOf(Agent const& agent) {
    std::string text;
    JsonWriter json(text);
    writeState(json, agent);
    // Configs that were taken out of their directory are kept too, in no order among each other.
    std::map<std::string, std::string> removed;
    agent.database.forEachClient([&](Client const& client) {
        if (agent.database.isListed(client)) {
            return;
        }
        std::string& keys = removed[std::string(client.name)];
        VornicCentral::forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            forEachMember(client.config->collection<Kind>(), [&](auto const& key, bool) {
                keys += std::string(" ") + Kind::word + ' ' + key.stringValue();
            });
        });
    });
    for (auto const& [name, keys] : removed) {
        text += "\nremoved " + name + ':' + keys;
    }
    return text;
}

std::string KeptAgent::content() const { return contentOf(agent); }

Opened openedFile(std::filesystem::path const& path) {
    try {
        return {"", KeptAgent(path).content()};
    } catch (Refusal const& refusal) {
        return {refusal.what(), ""};
    }
}

} // namespace VpAgentTest
