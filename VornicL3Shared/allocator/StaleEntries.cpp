// References that no client came back for after a restart.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"

namespace VornicCentral {

/// A handler that is running may hold a copy of a reference that is stale as yet, so it goes first.
void VpIndexAllocatorDirSm::clearStaleEntries() {
    if (handlerTurns_.running()) {
        handlerTurns_.leave(this, [this] { clearAllKinds(); });
    } else {
        inTurn([this] { clearAllKinds(); });
    }
}

void VpIndexAllocatorDirSm::clearAllKinds() {
    VP_TRACE(entryLevel, "clearStaleEntries");
    if (vpReference_) {
        forEachKind([&](auto kind) { clearStaleKind<decltype(kind)>(); });
    }
}

template <class Kind> void VpIndexAllocatorDirSm::clearStaleKind() {
    for (typename VpReferenceList::Collection<Kind>::Iterator it(vpReference_->collection<Kind>());
         it; it.advance()) {
        if (it.value().references()) {
            continue;
        }
        typename Kind::Key const key(it.key());
        VpReference const reference = it.value();
        VP_TRACE(entryLevel, "clearStaleEntries", " free  ", reference);
        if (vpReallocationEnabled_) {
            recycleOrFreeVpIndex(reference.vPort().vpIndex());
        } else {
            freeVpIndex(reference.vPort().vpIndex());
        }
        vpReference_->del<Kind>(key); // after the index is released
    }
}

} // namespace VornicCentral
