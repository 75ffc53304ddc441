// The counters of a client's status.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/Trace.h"

namespace VornicCentral {

void VpIndexAllocator::verifyAndUpdateAllocStats(U16 vpIndex) {
    static constexpr char const* signature =
        "void VornicCentral::VpIndexAllocator::verifyAndUpdateAllocStats(U16)";
    if (vpIndex == invalidVpIndex) {
        VP_ASSERT(vpIndexStatus_ != nullptr, "vpIndexStatus() != nullptr", signature);
        vpIndexStatus_->vpAllocFailuresInc(1);
        return;
    }
    // The size is compared inclusively, as `setVpBitmap` does. A status that is missing fails the
    // last check.
    VP_ASSERT(!vpIndexStatus_ || vpIndex <= vpIndexStatus_->vpTableSize(),
              "vpIndex <= vpIndexStatus()->vpTableSize()", signature);
    VP_ASSERT(vpIndex >= VpIndexAllocatorDirSm::maxSystemSourceVp_, "vpIndex >= maxSystemSourceVp_",
              signature);
    VP_ASSERT(vpIndexStatus_ != nullptr, "vpIndexStatus() != nullptr", signature);
    vpIndexStatus_->vpAllocRequestsInc(1);
}

void VpIndexAllocator::updateFreeStats(U16 vpIndex) {
    if (vpIndex == invalidVpIndex) {
        return;
    }
    VP_ASSERT(vpIndexStatus_ != nullptr, "vpIndexStatus() != nullptr",
              "void VornicCentral::VpIndexAllocator::updateFreeStats(U16)");
    vpIndexStatus_->vpFreeRequestsInc(1);
}

} // namespace VornicCentral
