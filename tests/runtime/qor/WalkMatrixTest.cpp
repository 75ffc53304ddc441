// Whatever happens to a collection while it is walked, for every sort of key and for the walk whose
// types are not known.

#include "support/WalkMatrix.h"

#include "Fan.h"
#include "qor/CollectionIterator.h"
#include "qor/Inspection.h"
#include "runtime/qor/MapKeys.h"

#include <memory>
#include <optional>
#include <string>

namespace {

template <class K> struct MapBox {
    using Map = Qor::HashMap2018<K, std::shared_ptr<int>>;
    static constexpr bool walkKeepsOwner = false;

    void insert(U32 number) { map->newMember(Support::keyOf<K>(number), std::make_shared<int>(1)); }
    void replace(U32 number) { insert(number); }
    void erase(U32 number) { map->deleteMember(Support::keyOf<K>(number)); }
    void clear() { map->memberDelAll(); }
    void drop() { map.reset(); }

    class Walk {
    public:
        explicit Walk(MapBox const& box) : at_(*box.map) {}
        bool more() const { return static_cast<bool>(at_); }
        void advance() { at_.advance(); }
        std::optional<U32> current() const {
            auto const* const member = at_.currNodeMaybeStale();
            return member == nullptr ? std::nullopt
                                     : std::optional(Support::numberOf(member->key()));
        }

    private:
        typename Map::Iterator at_;
    };

    std::unique_ptr<Map> map = std::make_unique<Map>();
};

template <class K> class WalkMatrix : public testing::Test {};
TYPED_TEST_SUITE(WalkMatrix, Support::KeyTypes, Support::KeyNames);

TYPED_TEST(WalkMatrix, AWalkOutlivesWhateverHappensToTheCollection) {
    EXPECT_EQ(Support::tryAllWalks<MapBox<TypeParam>>(), Support::allWalks);
}

/// The alarms of a fan, walked by the number of their field; the walk keeps the fan.
struct FanBox {
    static constexpr bool walkKeepsOwner = true;

    void insert(U32 number) { fan->alarmIs(keyOf(number), 1); }
    void replace(U32 number) { fan->alarmIs(keyOf(number), 2); }
    void erase(U32 number) { fan->alarmDel(keyOf(number)); }
    void clear() { fan->alarmDelAll(); }
    void drop() { fan = nullptr; }

    class Walk {
    public:
        explicit Walk(FanBox const& box) : at_(Qor::collectionIterator(*box.fan, 259)) {}
        bool more() const { return static_cast<bool>(at_); }
        void advance() { at_.advance(); }
        std::optional<U32> current() const {
            Qor::GenericValue const key = at_.key();
            return key.empty() ? std::nullopt
                               : std::optional(static_cast<U32>(std::stoul(key.text())));
        }

    private:
        Qor::CollectionIterator at_;
    };

    static Pelo::String keyOf(U32 number) { return Pelo::String(std::to_string(number)); }

    Pelo::Ptr<Cooling::Fan> fan = Cooling::Fan::FanIs("left", 7, nullptr);
};

TEST(GenericWalkMatrix, AWalkOutlivesWhateverHappensToTheCollection) {
    U64 const before = Cooling::Fan::allocationTracker().live();
    EXPECT_EQ(Support::tryAllWalks<FanBox>(), Support::allWalks);
    EXPECT_EQ(Cooling::Fan::allocationTracker().live(), before);
}

} // namespace
