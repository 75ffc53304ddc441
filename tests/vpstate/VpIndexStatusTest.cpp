// The counters of a client's status.

#include "vpstate/VpIndexStatus.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

namespace {

using VornicCentral::VpIndexStatus;
using Notes = std::vector<std::string>;

/// A status and a subscriber that notes "263=5" for an attribute, without a key, that became 5.
class StatusCounters : public testing::Test {
protected:
    StatusCounters() { status->publisher()->subscriberAdd(&subscriber_, false); }

    Notes take() { return std::exchange(notes_, {}); }
    std::string counters() const {
        return std::to_string(status->vpAllocRequests()) + " " +
               std::to_string(status->vpAllocFailures()) + " " +
               std::to_string(status->vpFreeRequests()) + " " +
               std::to_string(status->vpTableSize());
    }

    Pelo::Ptr<VpIndexStatus> const status = VornicCentral::vpIndexStatusFactory("bgp");

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                         void const* key, void const* value) noexcept {
        subscriber->owner<StatusCounters>().notes_.push_back(
            std::to_string(field) + (key == nullptr ? "=" : " with a key =") +
            std::to_string(*static_cast<U32 const*>(value)));
    }

    Notes notes_;
    Pelo::Subscriber subscriber_{this, &dispatch};
};

TEST_F(StatusCounters, BeginAtZero) { EXPECT_EQ(counters(), "0 0 0 0"); }

TEST_F(StatusCounters, EachIsRaisedByTheAmountForItself) {
    status->vpAllocRequestsInc(1);
    status->vpAllocFailuresInc(2);
    status->vpFreeRequestsInc(3);
    status->vpTableSizeIs(4);
    EXPECT_EQ(counters(), "1 2 3 4");
    status->vpAllocRequestsInc(10);
    status->vpAllocFailuresInc(10);
    status->vpFreeRequestsInc(10);
    status->vpTableSizeIs(10);
    EXPECT_EQ(counters(), "11 12 13 10");
}

TEST_F(StatusCounters, EachIsToldUnderItsOwnFieldAfterTheChange) {
    status->vpAllocRequestsInc(1);
    status->vpAllocFailuresInc(2);
    status->vpFreeRequestsInc(3);
    status->vpTableSizeIs(4);
    status->vpAllocRequestsInc(5);
    EXPECT_EQ(take(), (Notes{"263=1", "264=2", "265=3", "266=4", "263=6"}));
}

TEST_F(StatusCounters, RaisingByNothingIsNotTold) {
    status->vpAllocRequestsInc(0);
    status->vpAllocFailuresInc(0);
    status->vpFreeRequestsInc(0);
    EXPECT_EQ(take(), Notes{});
}

TEST_F(StatusCounters, SettingTheValueThatIsThereIsNotTold) {
    status->vpTableSizeIs(16);
    status->vpAllocRequestsIs(7);
    take();
    status->vpTableSizeIs(16);
    status->vpAllocRequestsIs(7);
    status->vpAllocFailuresIs(0);
    status->vpFreeRequestsIs(0);
    EXPECT_EQ(take(), Notes{});
}

TEST_F(StatusCounters, CanBeSetFromOutside) {
    status->vpAllocRequestsIs(7);
    status->vpAllocFailuresIs(8);
    status->vpFreeRequestsIs(9);
    EXPECT_EQ(counters(), "7 8 9 0");
    EXPECT_EQ(take(), (Notes{"263=7", "264=8", "265=9"}));
}

TEST_F(StatusCounters, WrapAroundAfterTheLargestNumber) {
    status->vpFreeRequestsIs(4294967295);
    status->vpFreeRequestsInc(2);
    EXPECT_EQ(status->vpFreeRequests(), 1u);
}

} // namespace
