// What becomes of an index that nobody uses any more: it goes to the first key that waits, or back
// to the pool.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"

namespace VornicCentral {
namespace {

constexpr char const* signature =
    "void VornicCentral::VpIndexAllocatorDirSm::recycleOrFreeVpIndex(U32)";

} // namespace

/// A change that is left may withdraw the very key that would take the index, so it goes first.
void VpIndexAllocatorDirSm::recycleOrFreeVpIndex(U32 vpIndex) {
    if (handlerTurns_.somethingLeft()) {
        handlerTurns_.leaveRelease([this, vpIndex] { recycleOrFree(vpIndex); });
    } else {
        inTurn([this, vpIndex] { recycleOrFree(vpIndex); });
    }
}

void VpIndexAllocatorDirSm::recycleOrFree(U32 vpIndex) {
    VP_TRACE(entryLevel, "recycleOrFreeVpIndex");
    VirtualPort const vp(static_cast<U16>(vpIndex));
    if (!vpReallocationEnabled_ || !initialized_) {
        freeVpIndex(vp.vpIndex()); // and on: a waiting key may take the freed index all the same
    }
    if (!vp.valid()) {
        return;
    }
    if (!vpReference_ || !vpInvalidReference_ || vpInvalidReference_->memberCount() == 0) {
        freeVpIndex(vp.vpIndex());
        return;
    }
    bool taken = false;
    forEachKind<ServingOrder>([&](auto kind) { taken = taken || recycleTo<decltype(kind)>(vp); });
    if (!taken) {
        freeVpIndex(vp.vpIndex());
    }
}

/// Hands the index to the first waiting key of this kind that somebody requests; false when there
/// is none. Keys that do not wait any more are taken off the list on the way.
template <class Kind> bool VpIndexAllocatorDirSm::recycleTo(VirtualPort vp) {
    auto const& waiting = vpInvalidReference_->collection<Kind>();
    if (waiting.memberCount() == 0) { // spares most kinds a walk
        return false;
    }
    for (typename VpInvalidReferenceList::Collection<Kind>::Iterator it(waiting); it;
         it.advance()) {
        typename Kind::Key const key(it.key());
        VpReference const* const found = vpReference_->find<Kind>(key);
        if (found == nullptr || found->vPort().valid()) {
            vpInvalidReference_->del<Kind>(key);
        } else if (found->references()) {
            VpReference reference = *found;
            handOver<Kind>(key, reference, vp);
            return true;
        }
    }
    return false;
}

/// Every client that the reference names gets the index. The waiting entry stays until the handler
/// of waiting keys, woken by the last write, takes it off the list.
template <class Kind>
void VpIndexAllocatorDirSm::handOver(typename Kind::Key const& key, VpReference& reference,
                                     VirtualPort vp) {
    using Words = KindWords<Kind>;
    for (Pelo::String const& name : reference.references()) {
        auto const vpIndexStatus = statusOf(name);
        auto const vpIndexConfig = configOf(name);
        VP_ASSERT(!!vpIndexConfig, "!!vpIndexConfig", signature);
        VP_ASSERT(!!vpIndexStatus, "!!vpIndexStatus", signature);
        VP_ASSERT(vpIndexConfig->has<Kind>(key), Words::recycleAssert, signature);
        VP_TRACE(handOverLevel, "recycleOrFreeVpIndex", Words::recycling, vp.vpIndex(),
                 " to vpIndexAllocator(", name, Words::recycleStatus, key, ")");
        vpIndexStatus->is<Kind>(key, vp);
    }
    Qor::log(resourceNormalLog(), Words::recycleText(key).text());
    reference.vPortIs(vp);
    vpReference_->is<Kind>(key, reference);
}

} // namespace VornicCentral
