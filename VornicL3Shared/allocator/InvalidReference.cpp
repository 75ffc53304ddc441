// The waiting keys: the invalid reference list is kept equal to the keys whose reference holds no
// index.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"
#include "pelo/NoThrow.h"

namespace VornicCentral {

template <class Kind> void VpIndexAllocatorDirSm::handleInvalidKey(typename Kind::Key const& key) {
    using Words = KindWords<Kind>;
    VP_TRACE_TWIN(entryLevel, Words::invalidHandler, (Words::keyLabel, Words::shown(key)),
                  (RingKey{key}));
    if (!vpReallocationEnabled_ || !vpReference_ || !vpInvalidReference_) {
        return;
    }
    VpReference const* const reference = vpReference_->find<Kind>(key);
    if (reference == nullptr) {
        VP_TRACE(stepLevel, Words::invalidHandler, Words::invalidGone);
        vpInvalidReference_->del<Kind>(key);
        return;
    }
    VirtualPort const vPort = reference->vPort();
    VP_TRACE(stepLevel, Words::invalidHandler, Words::invalidChanged,
             vPort.vpIndex()); // the index, not the key
    if (!vPort.valid()) {
        VP_TRACE(stepLevel, Words::invalidHandler, Words::invalidAdded, vPort.vpIndex());
        vpInvalidReference_->is<Kind>(key, true);
    } else {
        VP_TRACE(stepLevel, Words::invalidHandler, Words::invalidDeleted, vPort.vpIndex());
        vpInvalidReference_->del<Kind>(key);
    }
}

template <class Kind> void VpIndexAllocatorDirSm::handleInvalidAll() {
    VP_TRACE(entryLevel, KindWords<Kind>::invalidHandler);
    if (!vpReallocationEnabled_ || !vpReference_) {
        return;
    }
    Pelo::Ptr<VpIndexAllocatorDirSm> const untilDone(this);
    for (typename VpReferenceList::Collection<Kind>::Iterator it(vpReference_->collection<Kind>());
         it; it.advance()) {
        handleInvalidKey<Kind>(typename Kind::Key(it.key()));
    }
}

void VpIndexAllocatorDirSm::handleInvalidRemoteVport(RemoteVtepKey const& key) {
    handleInvalidKey<RemoteVport>(key);
}
void VpIndexAllocatorDirSm::handleInvalidMlagRemoteVport(RemoteVtepKey const& key) {
    handleInvalidKey<MlagRemoteVport>(key);
}
void VpIndexAllocatorDirSm::handleInvalidEdgeVport(PortVlanKey const& pvKey) {
    handleInvalidKey<EdgeVport>(pvKey);
}
void VpIndexAllocatorDirSm::handleInvalidVlanVport(Bridging::VlanId vlan) {
    handleInvalidKey<VlanVport>(vlan);
}
void VpIndexAllocatorDirSm::handleInvalidEFilterDisableVport(Netzo::IntfId intf) {
    handleInvalidKey<EFilterDisableVport>(intf);
}

void VpIndexAllocatorDirSm::handleInvalidRemoteVport() { handleInvalidAll<RemoteVport>(); }
void VpIndexAllocatorDirSm::handleInvalidMlagRemoteVport() { handleInvalidAll<MlagRemoteVport>(); }
void VpIndexAllocatorDirSm::handleInvalidEdgeVport() { handleInvalidAll<EdgeVport>(); }
void VpIndexAllocatorDirSm::handleInvalidVlanVport() { handleInvalidAll<VlanVport>(); }
void VpIndexAllocatorDirSm::handleInvalidEFilterDisableVport() {
    handleInvalidAll<EFilterDisableVport>();
}

void VpIndexAllocatorDirSm::vpReferenceDispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber,
                                                Pelo::FieldId field, void const* key,
                                                void const*) noexcept {
    auto& self = subscriber->owner<VpIndexAllocatorDirSm>();
    if (self.isZombie()) {
        return;
    }
    // A subscriber of the waiting keys may drop the last pointer.
    Pelo::Ptr<VpIndexAllocatorDirSm> const untilDone(&self);
    Pelo::runNoThrow([&] {
        forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (field == Kind::field) {
                self.handleInvalidKey<Kind>(*static_cast<typename Kind::Key const*>(key));
            }
        });
    });
}

} // namespace VornicCentral
