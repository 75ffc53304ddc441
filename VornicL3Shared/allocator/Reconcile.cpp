// Recovery after a restart: the pool is rebuilt from the records that survived.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"
#include "qor/Exceptions.h"

namespace VornicCentral {

void VpIndexAllocatorDirSm::reconcile() {
    VP_TRACE(entryLevel, "reconcile");
    inTurn([this] {
        if (vpReference_) {
            recoverFromReferences();
        }
        cleanUpStatuses();
    });
}

void VpIndexAllocatorDirSm::recoverFromReferences() {
    forEachKind([&](auto kind) { recoverReferences<decltype(kind)>(); });
    bool const nothingSurvived = vpReference_->remoteVport().memberCount() == 0 &&
                                 vpReference_->edgeVport().memberCount() == 0 &&
                                 vpReference_->vlanVport().memberCount() == 0;
    if (nothingSurvived) { // the other kinds do not decide
        recoverFromBootStatus();
    }
}

/// Marks the index of every reference and empties its set of users, who enter themselves again.
template <class Kind> void VpIndexAllocatorDirSm::recoverReferences() {
    using Words = KindWords<Kind>;
    for (typename VpReferenceList::Collection<Kind>::Iterator it(vpReference_->collection<Kind>());
         it; it.advance()) {
        typename Kind::Key const key(it.key());
        VpReference const reference(it.value().vPort());
        VirtualPort const vPort = reference.vPort();
        setVpBitmap(vPort.vpIndex());
        VP_TRACE_TWIN(stepLevel, "reconcile",
                      (Words::recovered, vPort.vpIndex(), Words::recoveredFor, key),
                      (" recovered vpIndex: ", vPort.vpIndex(), " for", RingKey{key}));
        vpReference_->is<Kind>(key, reference);
        if (!vPort.valid()) {
            makeWait<Kind>(key);
        }
    }
}

/// Puts a key whose index did not survive on the list of waiting keys.
template <class Kind> void VpIndexAllocatorDirSm::makeWait(typename Kind::Key const& key) {
    if (vpReallocationEnabled_ && vpInvalidReference_) {
        vpInvalidReference_->is<Kind>(key, true);
    }
}

void VpIndexAllocatorDirSm::recoverFromBootStatus() {
    if (!vxlanBootStatus_) {
        Qor::throwMutatorArgNullPointerException("reconcile", "vxlanBootStatus");
    }
    forEachKind([&](auto kind) { recoverBootStatus<decltype(kind)>(); });
}

template <class Kind> void VpIndexAllocatorDirSm::recoverBootStatus() {
    auto const& boot = vxlanBootStatus_->collection<Kind>();
    for (typename VxlanBootStatus::Collection<Kind>::Iterator it(boot); it; it.advance()) {
        if (!vpReference_->has<Kind>(it.key())) {
            recoverBootEntry<Kind>(typename Kind::Key(it.key()), it.value());
        }
    }
}

/// Takes over one index of the boot status. Index 0 is no default VP: it is taken over like any
/// other, and stops the process because the system holds it.
template <class Kind>
void VpIndexAllocatorDirSm::recoverBootEntry(typename Kind::Key const& key, VirtualPort bootVport) {
    using Words = KindWords<Kind>;
    if (isDefaultVp(bootVport.vpIndex())) {
        VP_TRACE(stepLevel, "reconcile", Words::skipFor, key,
                 " as it is using a reserved vp index");
        vxlanBootStatus_->del<Kind>(key);
        return;
    }
    setVpBitmap(bootVport.vpIndex());
    VP_TRACE_TWIN(stepLevel, "reconcile",
                  (Words::recovered, bootVport.vpIndex(), Words::recoveredFor, key),
                  (Words::recovered, bootVport.vpIndex(), Words::bootForRing, RingKey{key}));
    vpReference_->is<Kind>(key, VpReference(bootVport));
    if (!bootVport.valid()) {
        makeWait<Kind>(key);
    }
}

/// Drops what the statuses hold and the configs do not request. A name without a status is left to
/// the tracking of the config directory, which does not let it pass.
void VpIndexAllocatorDirSm::cleanUpStatuses() {
    if (!vpIndexConfigDir_) {
        return;
    }
    for (VpIndexConfigDir::Entries::Iterator it(vpIndexConfigDir_->vpIndexConfig()); it;
         it.advance()) {
        Pelo::String const name(it.key());
        VP_TRACE(stepLevel, "reconcile", " clean up status for: ", name);
        auto const config = it.value();
        auto const status = statusOf(name);
        if (status) {
            forEachKind([&](auto kind) { cleanUpStatus<decltype(kind)>(name, *config, *status); });
        }
    }
}

/// No index is freed here: one whose reference has no users left stays until the stale entries are
/// cleared.
template <class Kind>
void VpIndexAllocatorDirSm::cleanUpStatus(Pelo::String const& name, VpIndexConfig const& config,
                                          VpIndexStatus& status) {
    using Words = KindWords<Kind>;
    for (typename VpIndexStatus::Collection<Kind>::Iterator it(status.collection<Kind>()); it;
         it.advance()) {
        typename Kind::Key const key(it.key());
        if (config.has<Kind>(key)) {
            continue;
        }
        VP_TRACE_TWIN(stepLevel, "reconcile", (Words::deleteStatus, key),
                      (Words::deleteStatusRing, Words::ringStatusKey(key)));
        status.del<Kind>(key);
        if (vpReference_) {
            VpReference reference = vpReference_->get<Kind>(key);
            reference.referenceDel(name);
            vpReference_->is<Kind>(key, reference);
        }
    }
}

} // namespace VornicCentral
