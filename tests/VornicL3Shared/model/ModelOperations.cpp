#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

#include <algorithm>

/// The operations as the model carries them out.
namespace ModelTest {

RecordId Model::newConfig(std::string const& name) {
    state_.configs.push_back(Config{name, {}});
    RecordId const id = state_.configs.size() - 1;
    state_.ownConfig.is(name, id);
    return id;
}

RecordId Model::newStatus(std::string const& name) {
    state_.statuses.emplace_back();
    state_.statuses.back().name = name;
    return state_.statuses.size() - 1;
}

/// The status first, so that the name has one when its config appears.
void Model::clientAdd(std::string const& name) {
    if (!state_.statusDir.has(name)) {
        state_.statusDir.is(name, newStatus(name));
    }
    bool const known = state_.ownConfig.has(name);
    configDirIs(name, known ? state_.ownConfig.get(name) : newConfig(name));
}

void Model::clientRetire(std::string const& name) {
    RecordId const config = state_.ownConfig.get(name);
    for (Kind const kind : fixedOrder) {
        auto const keys = state_.configs[config].keys[kind];
        for (auto const& [key, present] : keys) {
            state_.configs[config].keys[kind].del(key);
            configChanged(config, kind, key);
        }
    }
    configDirDel(name);
    if (running()) {
        vpIndexAllocatorDel(name);
    }
    state_.statusDir.del(name);
    state_.ownConfig.del(name);
}

void Model::saveBoot() {
    for (Kind const kind : fixedOrder) {
        state_.boot[kind].walk([&](Key key) { bootDel(kind, key); });
        for (auto const& [key, reference] : state_.references[kind]) {
            if (reference.vPort.index != invalidIndex) {
                bootIs(kind, key, reference.vPort);
            }
        }
    }
}

bool Model::applies(Operation const& operation) const {
    std::string const& name = operation.client;
    bool const allocator =
        running() &&
        std::any_of(state_.machine->allocators.begin(), state_.machine->allocators.end(),
                    [&](auto const& each) { return each.first == name; });
    switch (operation.verb) {
    case Verb::clientRetire:
    case Verb::request:
    case Verb::withdraw:
        return state_.ownConfig.has(name);
    case Verb::configReplace:
        return state_.configDir.has(name);
    case Verb::statusReplace:
    case Verb::putStatus:
    case Verb::dropStatus:
    case Verb::putTableSize:
        return state_.statusDir.has(name);
    default:
        break;
    }
    if (operation.verb >= Verb::clientKeyed || operation.verb == Verb::clientReactors ||
        operation.verb == Verb::clientZombie) {
        return allocator;
    }
    return operation.verb < Verb::restart || running();
}

std::string Model::apply(Operation const& operation) {
    if (agentOperation(operation) || recordOperation(operation) || lifeOperation(operation)) {
        return "";
    }
    return operation.verb >= Verb::clientKeyed ? callClient(operation) : call(operation);
}

bool Model::agentOperation(Operation const& operation) {
    std::string const& name = operation.client;
    switch (operation.verb) {
    case Verb::clientAdd:
        clientAdd(name);
        return true;
    case Verb::clientRemove:
        configDirDel(name);
        return true;
    case Verb::clientRetire:
        clientRetire(name);
        return true;
    case Verb::configReplace:
        configDirIs(name, newConfig(name));
        return true;
    case Verb::statusReplace:
        state_.statusDir.is(name, newStatus(name));
        return true;
    case Verb::statusRemove:
        state_.statusDir.del(name);
        return true;
    case Verb::request:
    case Verb::withdraw: {
        RecordId const config = state_.ownConfig.get(name);
        auto& keys = state_.configs[config].keys[operation.kind];
        if (operation.verb == Verb::request ? keys.is(operation.key, {})
                                            : keys.del(operation.key)) {
            configChanged(config, operation.kind, operation.key);
        }
        return true;
    }
    default:
        return false;
    }
}

} // namespace ModelTest
