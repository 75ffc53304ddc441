// Containers and values without memory: an operation that throws has changed nothing, and one that
// gives memory back wants none.

#include "bask/Bitmap.h"
#include "interface/IntfSet.h"
#include "netzo/IntfId.h"
#include "pelo/CountedTable.h"
#include "pelo/Ptr.h"
#include "qor/HashMap2018.h"
#include "runtime/qor/MapKeys.h"
#include "support/EachAllocation.h"
#include "vxlan/SwTunnelGroupId.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

namespace {

using Support::failEachAllocation;
using Support::FailingAllocations;

template <class K> class MapWithoutMemory : public testing::Test {
protected:
    using Map = Qor::HashMap2018<K, std::string>;

    static std::vector<std::string> contentOf(Map const& map) {
        std::vector<std::string> content;
        for (typename Map::Iterator it(map); it; it.advance()) {
            content.push_back(it.value());
            EXPECT_EQ(map.lookupNode(it.key()), it.currNodeMaybeStale());
        }
        EXPECT_EQ(content.size(), map.memberCount());
        return content;
    }
};

TYPED_TEST_SUITE(MapWithoutMemory, Support::KeyTypes, Support::KeyNames);

TYPED_TEST(MapWithoutMemory, InsertsWithHolesAndUnderAWalkOrChangesNothing) {
    using Tried = typename TestFixture::Map;
    Tried map;
    std::string const text(100, 'x'); // so that a value takes memory of its own
    U32 failures = 0;
    for (U32 number = 0; number < 60; ++number) {
        if (number % 5 == 4) {
            map.deleteMember(Support::keyOf<TypeParam>(number / 2));
        }
        auto const before = TestFixture::contentOf(map);
        auto const key = Support::keyOf<TypeParam>(number);
        std::string const value = text + std::to_string(number);
        typename Tried::Iterator walk(map);
        auto const* const member = walk.currNodeMaybeStale();
        failures += failEachAllocation([&] { map.memberIs(key, value); },
                                       [&] {
                                           EXPECT_EQ(TestFixture::contentOf(map), before);
                                           EXPECT_EQ(walk.currNodeMaybeStale(), member);
                                       });
        ASSERT_TRUE(map.has(key));
    }
    EXPECT_GT(failures, 60u); // of the values alone
}

TYPED_TEST(MapWithoutMemory, ReplacesAValueOrKeepsIt) {
    using Tried = typename TestFixture::Map;
    Tried map;
    auto const key = Support::keyOf<TypeParam>(1);
    std::string const former(100, 'a');
    std::string const latter(100, 'b');
    map.newMember(key, former);
    U32 const failures =
        failEachAllocation([&] { map.memberIs(key, latter); },
                           [&] { EXPECT_EQ(map.lookupNode(key)->value(), former); });
    EXPECT_EQ(failures, 1u);
    EXPECT_EQ(map.lookupNode(key)->value(), latter);
}

TYPED_TEST(MapWithoutMemory, IsMadeWithRoomOrNotAtAll) {
    using Tried = typename TestFixture::Map;
    Support::CountedAllocations const counted;
    U32 const failures =
        failEachAllocation([] { Tried const map(100); }, [&] { EXPECT_EQ(counted.live(), 0); });
    EXPECT_EQ(failures, 1u);
}

TYPED_TEST(MapWithoutMemory, GivesUpItsMembersOneByOneAndAllAtOnce) {
    using Tried = typename TestFixture::Map;
    Support::CountedAllocations const counted;
    {
        Tried map;
        for (U32 number = 0; number < 100; ++number) {
            map.newMember(Support::keyOf<TypeParam>(number), "v");
        }
        FailingAllocations const none(0);
        for (typename Tried::Iterator it(map); it && map.memberCount() > 50; it.advance()) {
            map.deleteMember(TypeParam(it.key()));
        }
        EXPECT_EQ(map.memberCount(), 50u);
        map.memberDelAll();
        EXPECT_EQ(map.memberCount(), 0u);
    }
    EXPECT_EQ(counted.live(), 0);
}

struct NumberedEntry {
    U64 hash;
    U32 useCount;
    U32 number;
};

class TableWithoutMemory : public testing::Test {
protected:
    NumberedEntry* take(U32 number) {
        return table_.take(
            number % 7, [number](NumberedEntry const& entry) { return entry.number == number; },
            [number] {
                return new NumberedEntry{number % 7, 1, number};
            });
    }
    U32 uses(U32 number) const {
        return table_.uses(number % 7,
                           [number](NumberedEntry const& entry) { return entry.number == number; });
    }

    Pelo::CountedTable<NumberedEntry> table_;
};

TEST_F(TableWithoutMemory, TakesAnEntryOrStaysAsItWas) {
    std::vector<NumberedEntry*> entries(100);
    for (U32 number = 0; number < 100; ++number) {
        U32 const failures =
            failEachAllocation([&] { entries[number] = take(number); },
                               [&] {
                                   EXPECT_EQ(table_.size(), number);
                                   EXPECT_EQ(uses(number), 0u);
                                   EXPECT_EQ(uses(number / 2), number == 0 ? 0u : 1u);
                               });
        EXPECT_GE(failures, 1u);
    }
    FailingAllocations const none(0);
    for (U32 number = 0; number < 100; ++number) { // which would like smaller arrays on the way
        EXPECT_EQ(uses(number), 1u);
        table_.release(entries[number]);
        EXPECT_EQ(table_.size(), 99 - number);
    }
}

TEST(InterfacesWithoutMemory, AreNamedOrLeaveNoName) {
    std::size_t const before = Netzo::IntfId::namesInUse();
    std::string const name = "an interface whose name is longer than a string keeps in itself";
    U32 const failures =
        failEachAllocation([&] { Netzo::IntfId const intf(name); },
                           [&] { EXPECT_EQ(Netzo::IntfId::namesInUse(), before); });
    EXPECT_GE(failures, 2u);
}

TEST(InterfacesWithoutMemory, JoinASetOrLeaveItAsItWas) {
    std::vector<Netzo::IntfId> intfs;
    for (U32 number = 0; number < 20; ++number) {
        intfs.emplace_back("Ethernet" + std::to_string(number * 7 % 20));
    }
    Interface::IntfSet set;
    U32 failures = 0;
    for (Netzo::IntfId const& intf : intfs) {
        Interface::IntfSet const before = set;
        failures += failEachAllocation([&] { set.insert(intf); }, [&] { EXPECT_EQ(set, before); });
    }
    EXPECT_GE(failures, 5u);
    EXPECT_EQ(set.size(), 20u);
    FailingAllocations const none(0);
    for (Netzo::IntfId const& intf : intfs) {
        EXPECT_TRUE(set.erase(intf));
    }
}

TEST(TunnelGroupsWithoutMemory, AreNumberedOrLeaveNoNumber) {
    constexpr U32 number = 76543;
    U32 const failures = failEachAllocation(
        [] { Vxlan::SwTunnelGroupId const group(number); },
        [] { EXPECT_EQ(Vxlan::SwTunnelGroupId::refcountTable().count(number), 0u); });
    EXPECT_GE(failures, 1u);
}

TEST(BitmapWithoutMemory, IsMadeOrLeavesNothing) {
    auto const& tracker = Bask::Bitmap::allocationTracker();
    U64 const live = tracker.live();
    U64 const made = tracker.allocated();
    U32 const failures = failEachAllocation(
        [] {
            auto const bitmap =
                Pelo::newNode<Bask::Bitmap>(U64{1}, U32{65535}, Bask::HBitmap::BitState::clear);
            FailingAllocations const none(0);
            bitmap->setBit(65534);
            EXPECT_EQ(bitmap->findClearBitInRange(0, 65534, Bask::Preference::high), 65533u);
            bitmap->clearBit(65534);
            EXPECT_EQ(bitmap->numBitsInSetState(), 0u);
        },
        [&] {
            EXPECT_EQ(tracker.live(), live);
            EXPECT_EQ(tracker.allocated(), made);
        });
    EXPECT_GE(failures, 1u);
    EXPECT_EQ(tracker.live(), live);
}

} // namespace
