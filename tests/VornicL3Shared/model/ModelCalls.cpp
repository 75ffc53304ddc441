#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

/// The life of the state machine and the calls of operations, as the model carries them out.
namespace ModelTest {
bool Model::lifeOperation(Operation const& operation) {
    switch (operation.verb) {
    case Verb::start:
        start(operation.settings);
        return true;
    case Verb::restart:
        start(Settings(machine().settings));
        return true;
    case Verb::stop:
        state_.machine.reset();
        return true;
    case Verb::reactors:
        reactorsOn(operation.flag);
        return true;
    case Verb::zombie:
        machine().zombie = operation.flag;
        return true;
    case Verb::clientReactors:
        machine().allocator(operation.client)->active = operation.flag;
        return true;
    case Verb::clientZombie:
        machine().allocator(operation.client)->zombie = operation.flag;
        return true;
    case Verb::allocatorDel:
        vpIndexAllocatorDel(operation.client);
        return true;
    case Verb::allocatorDelAll:
        machine().allocators.clear();
        return true;
    default:
        return false;
    }
}

std::string Model::poolCall(Operation const& operation) {
    U32 const number = operation.number;
    switch (operation.verb) {
    case Verb::allocIndex:
        return std::to_string(allocVpIndex(operation.flag));
    case Verb::freeIndex:
        freeVpIndex(number);
        return "";
    case Verb::setIndex:
        setVpBitmap(number);
        return "";
    case Verb::defaultVp:
        return number >= 1 && number <= 7 ? "true" : "false";
    case Verb::recycle:
        recycleOrFreeVpIndex(number);
        return "";
    default:
        vpBitmapIs(number, operation.size, operation.flag);
        return std::to_string(setBits());
    }
}

std::string Model::call(Operation const& operation) {
    switch (operation.verb) {
    case Verb::handleConfig:
        handleVpIndexConfig(operation.client);
        return "";
    case Verb::handleConfigs:
        handleVpIndexConfig();
        return "";
    case Verb::handleInvalid:
        handleInvalid(operation.kind, operation.key);
        return "";
    case Verb::handleInvalidAll:
        handleInvalidAll(operation.kind);
        return "";
    case Verb::rebuild:
        machine().pool.reset();
        handleInitialized();
        return "";
    case Verb::initializeAgain:
        handleInitialized();
        return "";
    case Verb::reconcile:
        reconcile();
        return "";
    case Verb::clearStale:
        clearStaleEntries();
        return "";
    case Verb::allocatorIs:
        return callAllocatorIs(operation);
    default:
        return poolCall(operation);
    }
}

/// A null config is refused first. A null state machine is refused both where an allocator would
/// be made and where one is there, and so is what that one was not made with.
std::string Model::callAllocatorIs(Operation const& operation) {
    std::string const& name = operation.client;
    bool vfiForwarding = machine().settings.vfiForwarding;
    switch (operation.variant) {
    case Variant::withoutConfig:
        throw Refused{"vpIndexConfig"};
    case Variant::withoutStateMachine:
        throw Refused{"vpIndexAllocatorDirSm"};
    case Variant::withoutStatus:
    case Variant::withoutReferences:
        if (machine().allocator(name)->client.config != ownConfig(name)) {
            throw Refused{"vpIndexConfig"};
        }
        if (operation.variant == Variant::withoutStatus ||
            machine().allocator(name)->client.status != statusOf(name)) {
            throw Refused{"vpIndexStatus"};
        }
        throw Refused{"vpReference"};
    case Variant::otherSwitch:
        vfiForwarding = !vfiForwarding;
        break;
    default:
        break;
    }
    bool const others = operation.variant == Variant::statusOfOther;
    vpIndexAllocatorIs(ownConfig(name), statusOf(others ? operation.other : name), vfiForwarding);
    return name;
}

std::string Model::callClient(Operation const& operation) {
    Client const client = machine().allocator(operation.client)->client;
    switch (operation.verb) {
    case Verb::clientKeyed:
        handleKey(client, operation.kind, operation.key);
        return "";
    case Verb::clientSweep:
        sweep(client, operation.kind);
        return "";
    case Verb::clientInitialize:
        handleClientInitialized(client);
        return "";
    case Verb::clientVerify:
        verifyClient(client);
        return "";
    case Verb::clientVerifyKind:
        verifyClientKind(client, operation.kind);
        return "";
    case Verb::clientAllocStats:
        verifyAndUpdateAllocStats(client, operation.number);
        return "";
    case Verb::clientFreeStats:
        updateFreeStats(client, operation.number);
        return "";
    default:
        return callRemoteHelper(operation, client);
    }
}

std::string Model::callRemoteHelper(Operation const& operation, Client client) {
    Kind const kind = operation.flag ? Kind::mlag : Kind::remote;
    Key const key = operation.key;
    switch (operation.verb) {
    case Verb::clientRemoteRef:
        return valueText(getRemoteVportRef(kind, key));
    case Verb::clientRemoteCommon:
        handleRemoteCommon(client, kind, key);
        return "";
    case Verb::clientRemoteReferenced:
        return state_.references[kind].has(key) ? "true" : "false";
    case Verb::clientRemoteRequested:
        return requested(client, kind, key) ? "true" : "false";
    case Verb::clientRemoteIndex:
        return std::to_string(state_.statuses[client.status].vports[kind].get(key).index);
    case Verb::clientRemoteToStatus:
        statusIs(client.status, kind, key, {operation.number});
        return "";
    case Verb::clientRemoteToReference:
        referenceIs(kind, key, referenceOf(operation));
        return "";
    case Verb::clientRemoteFromReference:
        referenceDel(kind, key);
        return "";
    default:
        statusDel(client.status, kind, key);
        return "";
    }
}

} // namespace ModelTest
