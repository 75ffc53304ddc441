// The life of a client's allocator: construction, the first sweeps, switching its reactor.

#include "VornicL3Shared/VpIndexAllocator.h"

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"
#include "qor/Exceptions.h"

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
    Pelo::Ptr<VpIndexAllocatorDirSm> const stateMachine(vpIndexAllocatorDirSm_);
    Pelo::Ptr<VpIndexAllocator> const self(this);
    if (vpIndexStatus_) {
        vpIndexStatus_->vpTableSizeIs(vpIndexAllocatorDirSm_->vpTableSize());
    }
    handleAllKinds();
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
