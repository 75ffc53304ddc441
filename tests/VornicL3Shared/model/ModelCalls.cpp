#include "VornicL3Shared/model/Model.h"
#include "VornicL3Shared/model/Operation.h"

/// The operations on the records and the calls, as the model carries them out.
namespace ModelTest {
namespace {

Reference referenceOf(Operation const& operation) {
    Reference reference{{operation.number}, {}};
    for (std::string const& name : operation.names) {
        reference.add(name);
    }
    return reference;
}

} // namespace

bool Model::recordOperation(Operation const& operation) {
    Kind const kind = operation.kind;
    Key const key = operation.key;
    auto const status = [&] { return state_.statusDir.get(operation.client); };
    switch (operation.verb) {
    case Verb::putReference:
        referenceIs(kind, key, referenceOf(operation));
        return true;
    case Verb::dropReference:
        referenceDel(kind, key);
        return true;
    case Verb::putStatus:
        statusIs(status(), kind, key, {operation.number});
        return true;
    case Verb::dropStatus:
        statusDel(status(), kind, key);
        return true;
    case Verb::putTableSize:
        counterIs(status(), &Status::size, operation.number);
        return true;
    case Verb::putWaiting:
        waitingIs(kind, key);
        return true;
    case Verb::dropWaiting:
        waitingDel(kind, key);
        return true;
    case Verb::putBoot:
        bootIs(kind, key, {operation.number});
        return true;
    case Verb::dropBoot:
        bootDel(kind, key);
        return true;
    case Verb::saveBoot:
        saveBoot();
        return true;
    default:
        break;
    }
    if (operation.verb != Verb::clearReferences && operation.verb != Verb::clearWaiting &&
        operation.verb != Verb::clearBoot) {
        return false;
    }
    for (Kind const each : fixedOrder) {
        if (operation.verb == Verb::clearReferences) {
            state_.references[each].walk([&](Key member) { referenceDel(each, member); });
        } else if (operation.verb == Verb::clearWaiting) {
            state_.waiting[each].walk([&](Key member) { waitingDel(each, member); });
        } else {
            state_.boot[each].walk([&](Key member) { bootDel(each, member); });
        }
    }
    return true;
}

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
    default:
        return poolCall(operation);
    }
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
    case Verb::clientAllocStats:
        verifyAndUpdateAllocStats(client, operation.number);
        return "";
    case Verb::clientFreeStats:
        updateFreeStats(client, operation.number);
        return "";
    default: {
        Kind const kind = operation.flag ? Kind::mlag : Kind::remote;
        return valueText(getRemoteVportRef(kind, operation.key));
    }
    }
}

} // namespace ModelTest
