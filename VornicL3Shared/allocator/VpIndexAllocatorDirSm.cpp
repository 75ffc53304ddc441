// The life of the directory state machine: construction, start-up, reactors, destruction.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"

#include "allocator/Trace.h"

namespace VornicCentral {

VpIndexAllocatorDirSm::VpIndexAllocatorDirSm(
    Pelo::Ptr<VpReferenceList> const& vpReference,
    Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
    Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
    Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
    Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus, bool vpReallocationEnabled,
    bool vfiForwarding, Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities)
    : vpReference_(vpReference),
      vpInvalidReference_(vpInvalidReference),
      vpIndexConfigDir_(vpIndexConfigDir),
      vpIndexStatusDir_(vpIndexStatusDir),
      vpTableSize_(vpTableSize),
      vxlanBootStatus_(vxlanBootStatus),
      vpReallocationEnabled_(vpReallocationEnabled),
      vfiForwarding_(vfiForwarding),
      vxlanCapabilities_(vxlanCapabilities),
      referenceSubscriber_(this, &vpReferenceDispatch),
      configDirSubscriber_(this, &vpIndexConfigDirDispatch) {
    subscribe(true);
    try {
        handleInitialized();
    } catch (...) {
        subscribe(false);
        vpBitmapDel();
        vpIndexAllocator_.memberDelAll();
        releaseAll();
        throw;
    }
}

VpIndexAllocatorDirSm::~VpIndexAllocatorDirSm() {
    hasNotificationActiveIs(false);
    qorDoZombieReactors(true);
    subscribe(false);
    switchAllocators(false); // those too that were made while the reactors were off
    vpBitmapDel();
    vpIndexAllocatorDelAll();
    releaseAll();
}

Pelo::Ptr<VpIndexAllocatorDirSm> VpIndexAllocatorDirSm::VpIndexAllocatorDirSmIs(
    Pelo::Ptr<VpReferenceList> const& vpReference,
    Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
    Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
    Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
    Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus, bool vpReallocationEnabled,
    bool vfiForwarding, Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities) {
    auto stateMachine = Pelo::newNode<VpIndexAllocatorDirSm>(
        vpReference, vpInvalidReference, vpIndexConfigDir, vpIndexStatusDir, vpTableSize,
        vxlanBootStatus, vpReallocationEnabled, vfiForwarding, vxlanCapabilities);
    stateMachine->hasNotificationActiveIs(true);
    return stateMachine;
}

Pelo::Ptr<VpIndexAllocatorDirSm>
vpIndexAllocatorDirSmFactory(Pelo::Ptr<VpReferenceList> const& vpReference,
                             Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
                             Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
                             Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
                             Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus,
                             bool vpReallocationEnabled, bool vfiForwarding,
                             Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities) {
    return VpIndexAllocatorDirSm::VpIndexAllocatorDirSmIs(
        vpReference, vpInvalidReference, vpIndexConfigDir, vpIndexStatusDir, vpTableSize,
        vxlanBootStatus, vpReallocationEnabled, vfiForwarding, vxlanCapabilities);
}

void VpIndexAllocatorDirSm::handleInitialized() {
    VP_TRACE(entryLevel, "handleInitialized");
    vpBitmapIs(0, vpTableSize_, Bask::HBitmap::BitState::clear);
    for (U32 vpIndex = 0; vpIndex < maxSystemSourceVp_; ++vpIndex) {
        setVpBitmap(vpIndex);
    }
    inTurn([this] {
        reconcile(); // before any allocator exists, so that none takes an index that a recovered
                     // virtual port holds
        handleVpIndexConfig();
        initialized_ = true;
    });
}

void VpIndexAllocatorDirSm::hasNotificationActiveIs(bool active) {
    if (nodeFlag(Pelo::NodeFlag::notificationActive) == active) {
        return;
    }
    nodeFlagSet(Pelo::NodeFlag::notificationActive, active);
    bool const wasZombie = isZombie();
    markAndSweepFlagSet(true);
    subscribe(active);
    switchAllocators(active);
    markAndSweepFlagSet(wasZombie);
}

void VpIndexAllocatorDirSm::switchAllocators(bool active) {
    for (Allocators::Iterator it(vpIndexAllocator_); it; it.advance()) {
        it.value()->hasNotificationActiveIs(active);
    }
}

void VpIndexAllocatorDirSm::qorDoZombieReactors(bool zombie) noexcept {
    if (isZombie() != zombie) {
        markAndSweepFlagSet(zombie);
    }
}

/// Makes or ends both subscriptions, that of the reference list first; one that is as it should be
/// stays.
void VpIndexAllocatorDirSm::subscribe(bool on) {
    auto const one = [on](Pelo::Node const* watched, Pelo::Subscriber& subscriber) {
        if (watched == nullptr) {
            return;
        }
        if (on) {
            watched->publisher()->subscriberAdd(&subscriber, false);
        } else {
            watched->publisher()->subscriberRemove(&subscriber);
        }
    };
    one(vpReference_.get(), referenceSubscriber_);
    one(vpIndexConfigDir_.get(), configDirSubscriber_);
}

Pelo::Ptr<VpIndexConfig const> VpIndexAllocatorDirSm::configOf(Pelo::String const& name) const {
    return vpIndexConfigDir_ ? vpIndexConfigDir_->vpIndexConfig(name) : nullptr;
}

Pelo::Ptr<VpIndexStatus> VpIndexAllocatorDirSm::statusOf(Pelo::String const& name) const {
    return vpIndexStatusDir_ ? vpIndexStatusDir_->vpIndexStatus(name) : nullptr;
}

void VpIndexAllocatorDirSm::releaseAll() noexcept {
    vxlanCapabilities_ = nullptr;
    vxlanBootStatus_ = nullptr;
    vpIndexStatusDir_ = nullptr;
    vpIndexConfigDir_ = nullptr;
    vpInvalidReference_ = nullptr;
    vpReference_ = nullptr;
}

} // namespace VornicCentral
