// Whether all clients, the references and the pool agree.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"

namespace VornicCentral {
namespace {

constexpr char const* signature = "void VornicCentral::VpIndexAllocatorDirSm::verify() const";

} // namespace

void VpIndexAllocatorDirSm::verify() const {
    VP_TRACE(entryLevel, "verify");
    if (!initialized_) {
        return;
    }
    for (Allocators::Iterator it(vpIndexAllocator_); it; it.advance()) {
        it.value()->verify();
    }
    U32 const numVps = vpReference_ ? vpReference_->memberCount() : 0;
    VP_ASSERT(numVps + maxSystemSourceVp_ == pool().numBitsInSetState(),
              "( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()", signature);
    VP_TRACE(stepLevel, "verify", " verify vp indices match across statuses");
    if (vpReference_) {
        forEachKind([&](auto kind) { verifyKind<decltype(kind)>(); });
    }
}

/// Every client that a reference names holds the reference's virtual port. A reference without an
/// index takes the virtual port of its first client as the one that all must hold; a client without
/// an entry holds the invalid one.
template <class Kind> void VpIndexAllocatorDirSm::verifyKind() const {
    for (typename VpReferenceList::Collection<Kind>::Iterator it(vpReference_->collection<Kind>());
         it; it.advance()) {
        VpReference const& reference = it.value();
        VP_ASSERT(reference.references(), "reference.references()", signature);
        VirtualPort vPort = reference.vPort();
        for (Pelo::String const& name : reference.references()) {
            auto const vpIndexStatus = statusOf(name);
            VirtualPort const held =
                vpIndexStatus ? vpIndexStatus->get<Kind>(it.key()) : VirtualPort();
            if (!vPort.valid()) {
                vPort = held;
            }
            VP_ASSERT(vPort == held, KindWords<Kind>::statusesMatch, signature);
        }
    }
}

} // namespace VornicCentral
