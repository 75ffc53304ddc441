// Whether the records of one client agree with each other and with the pool.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"

namespace VornicCentral {

void VpIndexAllocator::verify() const {
    VP_TRACE(entryLevel, "verify", " ", name());
    forEachKind([&](auto kind) { verifyKind<decltype(kind)>(); });
}

template <class Kind> void VpIndexAllocator::verifyKind() const {
    using Words = KindWords<Kind>;
    VP_TRACE(entryLevel, Words::verify, " ", name());
    VP_TRACE(stepLevel, Words::verify, Words::verifyConfig);
    if (vpIndexConfig_) {
        verifyConfig<Kind>();
    }
    VP_TRACE(stepLevel, Words::verify, Words::verifyStatus);
    if (vpIndexStatus_) {
        verifyStatus<Kind>();
    }
}

/// Every requested key is in the status, with no index or one that the pool knows as used.
template <class Kind> void VpIndexAllocator::verifyConfig() const {
    using Words = KindWords<Kind>;
    for (typename VpIndexConfig::Collection<Kind>::Iterator it(vpIndexConfig_->collection<Kind>());
         it; it.advance()) {
        VP_ASSERT(vpIndexStatus_ && vpIndexStatus_->has<Kind>(it.key()), Words::statusHas,
                  Words::verifySignature);
        U16 const vpIndex = vpIndexStatus_->get<Kind>(it.key()).vpIndex();
        VP_ASSERT(vpIndex == invalidVpIndex || vpIndexAllocatorDirSm_->pool().isBitSet(vpIndex),
                  "vpIndexAllocatorDirSm()->vpBitmap()->isBitSet( vpIndex )",
                  Words::verifySignature);
    }
}

/// Every key of the status is requested, and its reference names this client and agrees.
template <class Kind> void VpIndexAllocator::verifyStatus() const {
    using Words = KindWords<Kind>;
    for (typename VpIndexStatus::Collection<Kind>::Iterator it(vpIndexStatus_->collection<Kind>());
         it; it.advance()) {
        VP_ASSERT(vpIndexConfig_ && vpIndexConfig_->has<Kind>(it.key()), Words::configHas,
                  Words::verifySignature);
        VpReference const* const reference =
            vpReference_ ? vpReference_->find<Kind>(it.key()) : nullptr;
        VP_ASSERT(reference != nullptr, Words::referenceHas, Words::verifySignature);
        VP_ASSERT(reference->referenceHas(name()), "reference.referenceHas( name() )",
                  Words::verifySignature);
        VP_ASSERT(reference->vPort() == it.value(), "reference.vPort() == vPort",
                  Words::verifySignature);
    }
}

void VpIndexAllocator::verifyRemoteVpIndex() const { verifyKind<RemoteVport>(); }
void VpIndexAllocator::verifyMlagRemoteVpIndex() const { verifyKind<MlagRemoteVport>(); }
void VpIndexAllocator::verifyEdgeVpIndex() const { verifyKind<EdgeVport>(); }
void VpIndexAllocator::verifyVlanVpIndex() const { verifyKind<VlanVport>(); }
void VpIndexAllocator::verifyEFilterDisableVpIndex() const { verifyKind<EFilterDisableVport>(); }

} // namespace VornicCentral
