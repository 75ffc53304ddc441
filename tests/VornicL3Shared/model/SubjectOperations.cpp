#include "VornicL3Shared/model/Subject.h"

/// The operations as the library's users carry them out.
namespace ModelTest {

bool Subject::agentOperation(Operation const& operation) {
    Pelo::String const name = nameOf(operation);
    switch (operation.verb) {
    case Verb::clientAdd:
        clientAdd(operation);
        return true;
    case Verb::clientRemove:
        world_.configDir->vpIndexConfigDel(name);
        return true;
    case Verb::clientRetire:
        clientRetire(operation);
        return true;
    case Verb::configReplace:
        world_.configDir->vpIndexConfigIs(name, newConfig(name));
        return true;
    case Verb::statusReplace:
        world_.statusDir->vpIndexStatusIs(name, newStatus(name));
        return true;
    case Verb::statusRemove:
        world_.statusDir->vpIndexStatusDel(name);
        return true;
    default:
        return false;
    }
}

template <class K> bool Subject::keyedRecordOperation(Operation const& operation) {
    auto const& key = keys_.get<K>(operation.key);
    VornicCentral::VirtualPort const vPort(static_cast<U16>(operation.number));
    switch (operation.verb) {
    case Verb::request:
        ownConfig(operation).is<K>(key, true);
        return true;
    case Verb::withdraw:
        ownConfig(operation).del<K>(key);
        return true;
    case Verb::putReference: {
        VornicCentral::VpReference reference(vPort);
        for (std::string const& name : operation.names) {
            reference.referenceIs(Pelo::String(name), true);
        }
        world_.references->is<K>(key, reference);
        return true;
    }
    case Verb::dropReference:
        world_.references->del<K>(key);
        return true;
    case Verb::putStatus:
        world_.statusDir->vpIndexStatus(nameOf(operation))->is<K>(key, vPort);
        return true;
    case Verb::dropStatus:
        world_.statusDir->vpIndexStatus(nameOf(operation))->del<K>(key);
        return true;
    case Verb::putWaiting:
        world_.waiting->is<K>(key, true);
        return true;
    case Verb::dropWaiting:
        world_.waiting->del<K>(key);
        return true;
    case Verb::putBoot:
        world_.boot->is<K>(key, vPort);
        return true;
    case Verb::dropBoot:
        world_.boot->del<K>(key);
        return true;
    default:
        return false;
    }
}

bool Subject::recordOperation(Operation const& operation) {
    switch (operation.verb) {
    case Verb::putTableSize:
        world_.statusDir->vpIndexStatus(nameOf(operation))->vpTableSizeIs(operation.number);
        return true;
    case Verb::clearReferences:
        VornicCentral::forEachKind([&](auto kind) { world_.references->delAll<decltype(kind)>(); });
        return true;
    case Verb::clearWaiting:
        VornicCentral::forEachKind([&](auto kind) { world_.waiting->delAll<decltype(kind)>(); });
        return true;
    case Verb::clearBoot:
        VornicCentral::forEachKind([&](auto kind) { world_.boot->delAll<decltype(kind)>(); });
        return true;
    case Verb::saveBoot:
        saveBoot();
        return true;
    default:
        return withKind(operation.kind,
                        [&](auto kind) { return keyedRecordOperation<decltype(kind)>(operation); });
    }
}

bool Subject::lifeOperation(Operation const& operation) {
    switch (operation.verb) {
    case Verb::start:
        start(operation.settings);
        return true;
    case Verb::restart:
        world_.start();
        return true;
    case Verb::stop:
        world_.stop();
        return true;
    case Verb::reactors:
        world_.sm->hasNotificationActiveIs(operation.flag);
        return true;
    case Verb::zombie:
        world_.sm->qorDoZombieReactors(operation.flag);
        return true;
    case Verb::clientReactors:
        allocator(operation).hasNotificationActiveIs(operation.flag);
        return true;
    case Verb::clientZombie:
        allocator(operation).qorDoZombieReactors(operation.flag);
        return true;
    case Verb::allocatorDel:
        world_.sm->vpIndexAllocatorDel(nameOf(operation));
        return true;
    case Verb::allocatorDelAll:
        world_.sm->vpIndexAllocatorDelAll();
        return true;
    default:
        return false;
    }
}

} // namespace ModelTest
