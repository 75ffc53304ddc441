#include "VornicL3Shared/model/Subject.h"

/// The directories and the state machine's life, as the library's users change them.
namespace ModelTest {
namespace {

/// What a removal from a directory returned.
template <class R> std::string removedText(Pelo::Ptr<R> const& record) {
    return record ? "removed " + std::string(record->name().view()) : "none";
}

} // namespace

bool Subject::directoryOperation(Operation const& operation) {
    Pelo::String const name = nameOf(operation);
    switch (operation.verb) {
    case Verb::clientAdd:
        clientAdd(operation);
        return true;
    case Verb::clientRemove:
        result_ = removedText(world_.configDir->vpIndexConfigDel(name));
        return true;
    case Verb::clientRetire:
        clientRetire(operation);
        return true;
    case Verb::configNull:
        world_.configDir->vpIndexConfigIs(name, nullptr);
        return true;
    case Verb::configClear:
        world_.configDir->vpIndexConfigDelAll();
        return true;
    case Verb::statusRemove:
        result_ = removedText(world_.statusDir->vpIndexStatusDel(name));
        return true;
    case Verb::statusNull:
        world_.statusDir->vpIndexStatusIs(name, nullptr);
        return true;
    case Verb::statusClear:
        world_.statusDir->vpIndexStatusDelAll();
        return true;
    default:
        return recordReplacement(operation);
    }
}

bool Subject::recordReplacement(Operation const& operation) {
    Pelo::String const name = nameOf(operation);
    Pelo::String const other(operation.other);
    switch (operation.verb) {
    case Verb::configReplace:
        world_.configDir->vpIndexConfigIs(name, newConfig(name));
        return true;
    case Verb::configAlias:
        world_.configDir->vpIndexConfigIs(name, ownConfigs_.at(operation.other));
        return true;
    case Verb::statusReplace:
        world_.statusDir->vpIndexStatusIs(name, newStatus(name));
        return true;
    case Verb::statusAlias:
        world_.statusDir->vpIndexStatusIs(name, world_.statusDir->vpIndexStatus(other));
        return true;
    default:
        return false;
    }
}

bool Subject::lifeOperation(Operation const& operation) {
    switch (operation.verb) {
    case Verb::start:
        start(operation.settings);
        return true;
    case Verb::restart:
        start(Settings(settings_));
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
