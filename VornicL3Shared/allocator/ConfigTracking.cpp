// How the directory state machine follows the config directory: one allocator per client name.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"
#include "pelo/NoThrow.h"
#include "qor/Exceptions.h"

namespace VornicCentral {
namespace {

constexpr char const* allocatorType = "VpIndexAllocator";

/// Refuses arguments that differ from those with which the allocator was made, naming the first
/// that does.
void compareArguments(VpIndexAllocator const& allocator, VpIndexAllocatorDirSm const* stateMachine,
                      VpIndexConfig const* config, VpIndexStatus const* status,
                      VpReferenceList const* reference, bool vfiForwarding) {
    if (allocator.vpIndexAllocatorDirSm() != stateMachine) {
        Qor::throwMutatorReinstantiating(allocatorType, "vpIndexAllocatorDirSm");
    }
    if (allocator.vpIndexConfig() != config) {
        Qor::throwMutatorReinstantiating(allocatorType, "vpIndexConfig");
    }
    if (allocator.vpIndexStatus() != status) {
        Qor::throwMutatorReinstantiating(allocatorType, "vpIndexStatus");
    }
    if (allocator.vpReference() != reference) {
        Qor::throwMutatorReinstantiating(allocatorType, "vpReference");
    }
    if (allocator.vfiForwarding() != vfiForwarding) {
        Qor::throwMutatorReinstantiating(allocatorType, "vfiForwarding");
    }
}

} // namespace

void VpIndexAllocatorDirSm::handleVpIndexConfig() {
    if (!vpIndexConfigDir_) {
        return;
    }
    Pelo::Ptr<VpIndexAllocatorDirSm> const untilDone(this);
    for (VpIndexConfigDir::Entries::Iterator it(vpIndexConfigDir_->vpIndexConfig()); it;
         it.advance()) {
        handleVpIndexConfig(Pelo::String(it.key()));
    }
}

void VpIndexAllocatorDirSm::handleVpIndexConfig(Pelo::String const& name) {
    VP_TRACE_TWIN(entryLevel, "handleVpIndexConfig", (", Name ", name), (" name = ", name));
    auto const config = configOf(name);
    if (!config) {
        VP_TRACE(entryLevel, "handleVpIndexConfig", ", Name ", name, " ignore deletes");
        return;
    }
    VP_ASSERT(vpIndexStatusDir_ && vpIndexStatusDir_->vpIndexStatusHas(name),
              "vpIndexStatusDir()->vpIndexStatusHas( name )",
              "void VornicCentral::VpIndexAllocatorDirSm::handleVpIndexConfig(const String&)");
    vpIndexAllocatorIs(this, config, vpIndexStatusDir_->vpIndexStatus(name), vpReference_,
                       vfiForwarding_);
}

Pelo::Ptr<VpIndexAllocator>
VpIndexAllocatorDirSm::vpIndexAllocator(Pelo::String const& name) const {
    auto const* const member = vpIndexAllocator_.lookupNode(name);
    return member == nullptr ? nullptr : member->value();
}

Pelo::Ptr<VpIndexAllocator>
VpIndexAllocatorDirSm::vpIndexAllocatorIs(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                                          Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                                          Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                                          Pelo::Ptr<VpReferenceList> const& vpReference,
                                          bool vfiForwarding) {
    if (!vpIndexConfig) {
        Qor::throwMutatorArgNullPointerException("vpIndexAllocatorIs", "vpIndexConfig");
    }
    if (auto existing = vpIndexAllocator(vpIndexConfig->name())) {
        compareArguments(*existing, vpIndexAllocatorDirSm, vpIndexConfig.get(), vpIndexStatus.get(),
                         vpReference.get(), vfiForwarding);
        return existing;
    }
    Pelo::Ptr<VpIndexAllocator> created;
    inTurn([&] { // its sweep is one turn: it is listed before the next change is handled
        created = VpIndexAllocator::VpIndexAllocatorIs(vpIndexAllocatorDirSm, vpIndexConfig,
                                                       vpIndexStatus, vpReference, vfiForwarding);
        vpIndexAllocator_.newMember(vpIndexConfig->name(), created);
    });
    return created;
}

Pelo::Ptr<VpIndexAllocator> VpIndexAllocatorDirSm::vpIndexAllocatorDel(Pelo::String const& name) {
    return vpIndexAllocator_.deleteMember(name).value_or(nullptr);
}

void VpIndexAllocatorDirSm::vpIndexAllocatorDelAll() { vpIndexAllocator_.memberDelAll(); }

void VpIndexAllocatorDirSm::vpIndexConfigDirDispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber,
                                                     Pelo::FieldId field, void const* key,
                                                     void const*) noexcept {
    auto& self = subscriber->owner<VpIndexAllocatorDirSm>();
    if (field != VpIndexConfigDir::entriesField || self.isZombie()) {
        return;
    }
    Pelo::runNoThrow([&] { self.reactToConfig(*static_cast<Pelo::String const*>(key)); });
}

/// Handles a changed entry, or leaves it until the running handler is done.
void VpIndexAllocatorDirSm::reactToConfig(Pelo::String const& name) {
    if (!handlerTurns_.running()) {
        inTurn([&] { handleVpIndexConfig(name); });
        return;
    }
    handlerTurns_.leave(this, [this, name] {
        if (!isZombie()) {
            handleVpIndexConfig(name);
        }
    });
}

} // namespace VornicCentral
