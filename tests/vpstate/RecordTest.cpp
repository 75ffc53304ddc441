// What the mutators of a record do to its collections, for every record and every kind.

#include "RecordCases.h"

#include <vector>

namespace {

using namespace VornicCentral;

template <class C> class Record : public Records::OfCase<C> {
protected:
    /// The number of members of each kind, in the order of the kinds.
    std::vector<U32> counts() const {
        std::vector<U32> all;
        forEachKind([&](auto kind) {
            all.push_back(this->record->template collection<decltype(kind)>().memberCount());
        });
        return all;
    }
    /// The counts of a record that has `count` members of this kind and `others` of each other
    /// kind.
    std::vector<U32> countsWith(U32 count, U32 others) const {
        std::vector<U32> all(kindCount, others);
        all[VornicCentral::kindOrder<typename C::Kind>] = count;
        return all;
    }
};
TYPED_TEST_SUITE(Record, Records::Cases, Records::CaseName);

TYPED_TEST(Record, IsBuiltEmptyUnderItsName) {
    EXPECT_EQ(this->record->name(), "record");
    EXPECT_EQ(this->record->nameString(), "record");
    EXPECT_EQ(this->counts(), this->countsWith(0, 0));
    EXPECT_EQ(this->record->memberCount(), 0u);
    EXPECT_FALSE(this->record->publisher()->hasSubscribers());
}

TYPED_TEST(Record, SettingAKeyInsertsItBehindTheOthers) {
    this->is(this->b, this->one);
    this->is(this->a, this->two);
    EXPECT_EQ(this->members(), "b=1 a=2");
}

TYPED_TEST(Record, SettingAKeyAgainReplacesTheValueInItsPlace) {
    this->fill();
    this->is(this->b, this->two);
    EXPECT_EQ(this->members(), "a=1 b=2 c=1");
}

TYPED_TEST(Record, ReadsTheValueOfAKeyAndADefaultOneWhenItIsAbsent) {
    using K = typename TypeParam::Kind;
    using V = typename TypeParam::Value;
    this->is(this->a, this->one);
    EXPECT_TRUE(this->record->template has<K>(this->a));
    EXPECT_EQ(this->record->template get<K>(this->a), this->one);
    EXPECT_EQ(*this->record->template find<K>(this->a), this->one);
    EXPECT_FALSE(this->record->template has<K>(this->b));
    EXPECT_EQ(this->record->template get<K>(this->b), V());
    EXPECT_EQ(this->record->template find<K>(this->b), nullptr);
}

TYPED_TEST(Record, DeletingAKeyGivesTheRemovedValue) {
    this->fill();
    EXPECT_EQ(this->del(this->b), this->one);
    EXPECT_EQ(this->members(), "a=1 c=1");
}

TYPED_TEST(Record, DeletingAnAbsentKeyGivesADefaultValueAndChangesNothing) {
    this->is(this->a, this->one);
    EXPECT_EQ(this->del(this->b), typename TypeParam::Value());
    EXPECT_EQ(this->members(), "a=1");
}

TYPED_TEST(Record, AKeyThatIsDeletedAndSetAgainGoesLast) {
    this->fill();
    this->del(this->a);
    this->is(this->a, this->one);
    EXPECT_EQ(this->members(), "b=1 c=1 a=1");
}

TYPED_TEST(Record, ChangesOfAKindLeaveTheOtherKindsAlone) {
    forEachKind([&](auto kind) {
        using Each = decltype(kind);
        this->record->template is<Each>(Records::sampleKeys<typename Each::Key>()[0], this->one);
    });
    this->is(this->b, this->one);
    EXPECT_EQ(this->counts(), this->countsWith(2, 1));
    EXPECT_EQ(this->record->memberCount(), 6u);
    this->del(this->b);
    EXPECT_EQ(this->counts(), this->countsWith(1, 1));
    this->delAll();
    EXPECT_EQ(this->counts(), this->countsWith(0, 1));
    EXPECT_EQ(this->record->memberCount(), 4u);
}

TYPED_TEST(Record, CanBeFilledAgainAfterItWasEmptied) {
    this->fill();
    this->delAll();
    this->is(this->c, this->one);
    this->is(this->a, this->two);
    EXPECT_EQ(this->members(), "c=1 a=2");
}

TYPED_TEST(Record, IsCountedByItsTypeAndDestroyedWithItsLastUse) {
    auto const& tracker = TypeParam::Record::allocationTracker();
    U64 const before = tracker.live();
    auto shared = Pelo::newNode<typename TypeParam::Record>("other");
    auto copy = shared;
    EXPECT_EQ(copy->useCount(), 2u);
    shared = nullptr;
    EXPECT_EQ(tracker.live(), before + 1);
    copy = nullptr;
    EXPECT_EQ(tracker.live(), before);
}

} // namespace
