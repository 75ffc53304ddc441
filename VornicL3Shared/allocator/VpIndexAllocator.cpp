// The life of a client's allocator: construction, the first sweeps, its reactor.

#include "VornicL3Shared/VpIndexAllocator.h"

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"
#include "qor/Exceptions.h"

#include <type_traits>

namespace VornicCentral {

VpIndexAllocator::VpIndexAllocator(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                                   Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                                   Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                                   Pelo::Ptr<VpReferenceList> const& vpReference,
                                   bool vfiForwarding)
    : vpIndexAllocatorDirSm_(vpIndexAllocatorDirSm),
      vpIndexConfig_(vpIndexConfig),
      configSubscriber_(this, &vpIndexConfigDispatch),
      vpIndexStatus_(vpIndexStatus),
      vpReference_(vpReference),
      vfiForwarding_(vfiForwarding) {
    subscribe(true);
    try {
        handleInitialized();
    } catch (...) {
        subscribe(false);
        vpIndexAllocatorDirSm_->handlerTurns_.forget(this);
        throw;
    }
}

VpIndexAllocator::~VpIndexAllocator() {
    hasNotificationActiveIs(false);
    qorDoZombieReactors(true);
}

Pelo::Ptr<VpIndexAllocator>
VpIndexAllocator::VpIndexAllocatorIs(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                                     Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                                     Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                                     Pelo::Ptr<VpReferenceList> const& vpReference,
                                     bool vfiForwarding) {
    if (vpIndexAllocatorDirSm == nullptr) {
        Qor::throwMutatorArgNullPointerException("VpIndexAllocatorIs", "vpIndexAllocatorDirSm");
    }
    auto allocator = Pelo::newNode<VpIndexAllocator>(vpIndexAllocatorDirSm, vpIndexConfig,
                                                     vpIndexStatus, vpReference, vfiForwarding);
    allocator->hasNotificationActiveIs(true);
    return allocator;
}

Pelo::Ptr<VpIndexAllocator>
vpIndexAllocatorFactory(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                        Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                        Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                        Pelo::Ptr<VpReferenceList> const& vpReference, bool vfiForwarding) {
    return VpIndexAllocator::VpIndexAllocatorIs(vpIndexAllocatorDirSm, vpIndexConfig, vpIndexStatus,
                                                vpReference, vfiForwarding);
}

Pelo::String const& VpIndexAllocator::name() const noexcept {
    static Pelo::String const nameless;
    return vpIndexConfig_ ? vpIndexConfig_->name() : nameless;
}

void VpIndexAllocator::handleInitialized() {
    VP_TRACE(entryLevel, "handleInitialized", " ", name());
    initialized_ = true;
    if (vpIndexStatus_) {
        vpIndexStatus_->vpTableSizeIs(vpIndexAllocatorDirSm_->vpTableSize());
    }
    handleRemoteVport();
    handleMlagRemoteVport();
    handleEdgeVport();
    handleVlanVport();
    handleEFilterDisableVport();
}

void VpIndexAllocator::vpIndexConfigDispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber,
                                             Pelo::FieldId field, void const* key,
                                             void const*) noexcept {
    auto& self = subscriber->owner<VpIndexAllocator>();
    if (self.isZombie()) {
        return;
    }
    switch (field) {
    case RemoteVport::field:
        self.react(key, &VpIndexAllocator::handleRemoteVport);
        break;
    case MlagRemoteVport::field:
        self.react(key, &VpIndexAllocator::handleMlagRemoteVport);
        break;
    case EdgeVport::field:
        self.react(key, &VpIndexAllocator::handleEdgeVport);
        break;
    case VlanVport::field:
        self.react(key, &VpIndexAllocator::handleVlanVport);
        break;
    case EFilterDisableVport::field:
        self.react(key, &VpIndexAllocator::handleEFilterDisableVport);
        break;
    default:
        break;
    }
}

/// Handles a changed key, or leaves it until the running handler is done. Whoever watches the
/// records may drop the allocator and the state machine meanwhile; both stay until the handler is
/// done.
template <class Argument>
void VpIndexAllocator::react(void const* changed, void (VpIndexAllocator::*handler)(Argument)) {
    auto const& key = *static_cast<std::remove_cvref_t<Argument> const*>(changed);
    Pelo::Ptr<VpIndexAllocatorDirSm> const stateMachine(vpIndexAllocatorDirSm_);
    Pelo::Ptr<VpIndexAllocator> const self(this);
    if (!stateMachine->handlerTurns_.running()) {
        (this->*handler)(key);
        return;
    }
    stateMachine->handlerTurns_.leave(this, [self, key, handler]() noexcept {
        if (!self->isZombie()) {
            ((*self).*handler)(key);
        }
    });
}

void VpIndexAllocator::hasNotificationActiveIs(bool active) {
    nodeFlagSet(Pelo::NodeFlag::notificationActive, active);
    subscribe(active);
}

void VpIndexAllocator::qorDoZombieReactors(bool zombie) noexcept {
    if (isZombie() != zombie) {
        markAndSweepFlagSet(zombie);
    }
}

void VpIndexAllocator::subscribe(bool on) {
    if (!vpIndexConfig_) {
        return;
    }
    if (on) {
        vpIndexConfig_->publisher()->subscriberAdd(&configSubscriber_, false);
    } else {
        vpIndexConfig_->publisher()->subscriberRemove(&configSubscriber_);
    }
}

} // namespace VornicCentral
