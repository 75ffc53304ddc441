// The pool of VP indices: one bit per entry of the VP table.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"

namespace VornicCentral {

Pelo::Ptr<Bask::Bitmap> VpIndexAllocatorDirSm::vpBitmapIs(U64 id, U32 size,
                                                          Bask::HBitmap::BitState initialBitState) {
    bool const same = vpBitmap_ && vpBitmap_->id() == id && vpBitmap_->size() == size &&
                      vpBitmap_->initialBitState() == initialBitState;
    if (!same) {
        vpBitmap_ = Pelo::newNode<Bask::Bitmap>(id, size, initialBitState);
    }
    return vpBitmap_;
}

Pelo::Ptr<Bask::Bitmap> VpIndexAllocatorDirSm::vpBitmapDel() {
    return Pelo::Ptr<Bask::Bitmap>::adopt(vpBitmap_.detach());
}

/// The pool, where it has to be there: a host may have taken it away.
Bask::Bitmap& VpIndexAllocatorDirSm::pool() const {
    VP_ASSERT(vpBitmap_ != nullptr, "vpBitmap_ != nullptr",
              "Bask::Bitmap& VornicCentral::VpIndexAllocatorDirSm::pool() const");
    return *vpBitmap_;
}

void VpIndexAllocatorDirSm::setVpBitmap(U32 vpIndex) {
    if (vpIndex >
        vpTableSize_) { // the table size itself passes, as it does in the clients' statistics
        return;
    }
    VP_ASSERT(!pool().isBitSet(vpIndex), "!vpBitmap()->isBitSet( vpIndex )",
              "void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap(U32)");
    pool().setBit(vpIndex);
}

U16 VpIndexAllocatorDirSm::allocVpIndex(bool indexPreferenceHigh) {
    if (pool().numBitsInSetState() == vpTableSize_) {
        VP_TRACE(stepLevel, "allocVpIndex", " VpIndex full return invalidVirtualPort");
        return invalidVpIndex;
    }
    auto const preference = indexPreferenceHigh ? Bask::Preference::high : Bask::Preference::low;
    U32 const vpIndex = pool().findClearBitInRange(0, pool().size() - 1, preference);
    VP_TRACE(stepLevel, "allocVpIndex", " index allocated is: ", vpIndex);
    VP_ASSERT(vpIndex != Bask::HBitmap::null(), "vpIndex != Bask::HBitmap::null()",
              "U16 VornicCentral::VpIndexAllocatorDirSm::allocVpIndex(bool)");
    setVpBitmap(vpIndex);
    return static_cast<U16>(vpIndex);
}

void VpIndexAllocatorDirSm::freeVpIndex(U32 vpIndex) {
    if (vpIndex == invalidVpIndex) {
        return;
    }
    VP_TRACE(stepLevel, "freeVpIndex", " index freed is: ", vpIndex);
    pool().clearBit(vpIndex);
}

} // namespace VornicCentral
