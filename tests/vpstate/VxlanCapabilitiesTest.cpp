#include "vpstate/VxlanCapabilities.h"

#include <gtest/gtest.h>

namespace {

using VornicCentral::VxlanCapabilities;
using VornicCentral::vxlanCapabilitiesFactory;

TEST(VxlanCapabilities, HoldsWhatItWasMadeWith) {
    auto const low = vxlanCapabilitiesFactory("capabilities", true);
    EXPECT_TRUE(low->remoteVportLowIndex());
    EXPECT_EQ(low->name(), "capabilities");
    EXPECT_FALSE(VxlanCapabilities::VxlanCapabilitiesIs("chip", false)->remoteVportLowIndex());
}

TEST(VxlanCapabilities, BelongsToItsPointersAlone) {
    auto const& tracker = VxlanCapabilities::allocationTracker();
    U64 const before = tracker.live();
    {
        auto const record = vxlanCapabilitiesFactory("capabilities", true);
        Pelo::Ptr<VxlanCapabilities const> const reader(record);
        EXPECT_EQ(record->useCount(), 2u);
        EXPECT_EQ(tracker.live(), before + 1);
    }
    EXPECT_EQ(tracker.live(), before);
}

} // namespace
