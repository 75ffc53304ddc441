// What the subscribers of a record are told, for every record and every kind.

#include "RecordChanges.h"

namespace {

using Records::Notes;

template <class C> class RecordNotification : public Records::OfCase<C> {
protected:
    using Changes = Records::Changes<Records::OfCase<C>>;
};
TYPED_TEST_SUITE(RecordNotification, Records::Cases, Records::CaseName);

TYPED_TEST(RecordNotification, AnInsertionIsToldAfterItWasMade) {
    typename TestFixture::Changes changes(*this);
    this->is(this->a, this->one);
    this->is(this->b, this->two);
    EXPECT_EQ(changes.take(), (Notes{"a=1 {a=1}", "b=2 {a=1 b=2}"}));
}

TYPED_TEST(RecordNotification, AReplacementIsToldAfterItWasMade) {
    this->fill();
    typename TestFixture::Changes changes(*this);
    this->is(this->b, this->two);
    EXPECT_EQ(changes.take(), Notes{"b=2 {a=1 b=2 c=1}"});
}

TYPED_TEST(RecordNotification, SettingTheValueThatIsThereIsNotTold) {
    this->fill();
    typename TestFixture::Changes changes(*this);
    this->is(this->b, this->one);
    EXPECT_EQ(changes.take(), Notes{});
}

TYPED_TEST(RecordNotification, ADeletionIsToldAfterItWasMade) {
    this->fill();
    typename TestFixture::Changes changes(*this);
    EXPECT_EQ(this->del(this->b), this->one);
    EXPECT_EQ(changes.take(), Notes{"b gone {a=1 c=1}"});
}

TYPED_TEST(RecordNotification, DeletingAnAbsentKeyIsNotTold) {
    this->is(this->a, this->one);
    typename TestFixture::Changes changes(*this);
    this->del(this->b);
    EXPECT_EQ(changes.take(), Notes{});
}

TYPED_TEST(RecordNotification, EmptyingWithSubscribersIsToldOneByOne) {
    this->fill();
    typename TestFixture::Changes changes(*this);
    this->delAll();
    EXPECT_EQ(changes.take(), (Notes{"a gone {b=1 c=1}", "b gone {c=1}", "c gone {}"}));
}

TYPED_TEST(RecordNotification, EmptyingWithoutSubscribersIsToldNobody) {
    this->fill();
    typename TestFixture::Changes changes(*this);
    changes.leave();
    this->delAll();
    changes.join();
    EXPECT_EQ(this->members(), "");
    EXPECT_EQ(changes.take(), Notes{});
}

TYPED_TEST(RecordNotification, EmptyingAnEmptyCollectionIsNotTold) {
    typename TestFixture::Changes changes(*this);
    this->delAll();
    EXPECT_EQ(changes.take(), Notes{});
}

TYPED_TEST(RecordNotification, ChangesOfOtherKindsAreToldUnderTheirOwnField) {
    using namespace VornicCentral;
    typename TestFixture::Changes changes(*this);
    Notes expected;
    forEachKind([&](auto kind) {
        using Other = decltype(kind);
        if (!std::is_same_v<Other, typename TypeParam::Kind>) {
            this->record->template is<Other>(Records::sampleKeys<typename Other::Key>()[0],
                                             this->one);
            expected.push_back("field " + std::to_string(Records::fieldOf<Other>));
        }
    });
    EXPECT_EQ(changes.take(), expected);
}

TYPED_TEST(RecordNotification, EverySubscriberIsToldInTheOrderOfSubscription) {
    std::string order;
    typename TestFixture::Changes first(*this, [&](auto&) { order += "first "; });
    typename TestFixture::Changes second(*this, [&](auto&) { order += "second "; });
    this->is(this->a, this->one);
    EXPECT_EQ(first.take(), Notes{"a=1 {a=1}"});
    EXPECT_EQ(second.take(), Notes{"a=1 {a=1}"});
    EXPECT_EQ(order, "first second ");
}

TYPED_TEST(RecordNotification, WhoLeavesIsNotToldAnyMore) {
    typename TestFixture::Changes stays(*this);
    typename TestFixture::Changes leaves(*this);
    leaves.leave();
    this->is(this->a, this->one);
    EXPECT_EQ(stays.take(), Notes{"a=1 {a=1}"});
    EXPECT_EQ(leaves.take(), Notes{});
}

} // namespace
