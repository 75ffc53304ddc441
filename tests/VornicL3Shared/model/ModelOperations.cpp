#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

/// The agent around the library, and when an operation can be carried out.
namespace ModelTest {
namespace {

/// What a removal from a directory returns: the record of that name, or nothing.
template <class R>
std::string removedText(Members<std::string, RecordId> const& directory,
                        std::vector<R> const& records, std::string const& name) {
    RecordId const* const id = directory.find(name);
    return id == nullptr ? "none" : "removed " + records[*id].name;
}

} // namespace

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
        statusDirIs(name, newStatus(name));
    }
    bool const known = state_.ownConfig.has(name);
    configDirIs(name, known ? ownConfig(name) : newConfig(name));
}

void Model::clientRetire(std::string const& name) {
    RecordId const config = ownConfig(name);
    for (Kind const kind : fixedOrder) {
        state_.configs[config].keys[kind].walk([&](Key key) { configDel(config, kind, key); });
    }
    configDirDel(name);
    if (running()) {
        vpIndexAllocatorDel(name);
    }
    statusDirDel(name);
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
    switch (operation.verb) {
    case Verb::clientRetire:
    case Verb::request:
    case Verb::withdraw:
    case Verb::putRequest:
    case Verb::withdrawAll:
        return state_.ownConfig.has(name);
    case Verb::configReplace:
        return state_.configDir.has(name);
    case Verb::configAlias:
        return state_.ownConfig.has(operation.other);
    case Verb::statusAlias:
        return state_.statusDir.has(operation.other);
    case Verb::statusReplace:
    case Verb::putStatus:
    case Verb::dropStatus:
    case Verb::clearStatus:
    case Verb::putTableSize:
    case Verb::putCounter:
    case Verb::addToCounter:
        return state_.statusDir.has(name);
    case Verb::allocatorIs:
        return running() && applies(operation.variant, operation);
    default:
        break;
    }
    if (operation.verb >= Verb::clientKeyed || operation.verb == Verb::clientReactors ||
        operation.verb == Verb::clientZombie) {
        return running() && state_.machine->allocatorHas(name);
    }
    return operation.verb < Verb::restart || running();
}

/// An allocator without status or references could not serve a single request, so those two are
/// offered only where an allocator is there already and they are refused.
bool Model::applies(Variant variant, Operation const& operation) const {
    std::string const& name = operation.client;
    bool const refused = variant == Variant::withoutStatus || variant == Variant::withoutReferences;
    std::string const& status = variant == Variant::statusOfOther ? operation.other : name;
    return state_.ownConfig.has(name) && state_.statusDir.has(status) &&
           (!refused || state_.machine->allocatorHas(name));
}

std::string Model::apply(Operation const& operation) {
    result_.clear();
    if (directoryOperation(operation) || requestOperation(operation) ||
        recordOperation(operation) || statusOperation(operation) || clearOperation(operation) ||
        lifeOperation(operation)) {
        return result_;
    }
    return operation.verb >= Verb::clientKeyed ? callClient(operation) : call(operation);
}

bool Model::directoryOperation(Operation const& operation) {
    std::string const& name = operation.client;
    switch (operation.verb) {
    case Verb::clientAdd:
        clientAdd(name);
        return true;
    case Verb::clientRemove:
        result_ = removedText(state_.configDir, state_.configs, name);
        configDirDel(name);
        return true;
    case Verb::clientRetire:
        clientRetire(name);
        return true;
    case Verb::configReplace:
        configDirIs(name, newConfig(name));
        return true;
    case Verb::configNull:
        configDirDel(name);
        return true;
    case Verb::configAlias:
        configDirIs(name, ownConfig(operation.other));
        return true;
    case Verb::configClear:
        state_.configDir.walk([&](std::string const& each) { configDirDel(each); });
        return true;
    case Verb::statusReplace:
        statusDirIs(name, newStatus(name));
        return true;
    case Verb::statusRemove:
        result_ = removedText(state_.statusDir, state_.statuses, name);
        statusDirDel(name);
        return true;
    case Verb::statusNull:
        statusDirDel(name);
        return true;
    case Verb::statusAlias:
        statusDirIs(name, statusOf(operation.other));
        return true;
    case Verb::statusClear:
        state_.statusDir.walk([&](std::string const& each) { statusDirDel(each); });
        return true;
    default:
        return false;
    }
}

} // namespace ModelTest
