// Generic access to the collections of a record, for every record and every kind.

#include "RecordChanges.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <utility>

namespace {

using Qor::GenericValue;
using Qor::OpCode;
using Records::Notes;

template <class C> class RecordInspection : public Records::OfCase<C> {
protected:
    using Value = typename C::Value;
    using Changes = Records::Changes<Records::OfCase<C>>;
    static constexpr Pelo::FieldId field = Records::fieldOf<typename C::Kind>;

    GenericValue inspect(OpCode code, Qor::Arguments arguments = {}) {
        return Qor::inspectOperation(*this->record, field, code, arguments);
    }
};
TYPED_TEST_SUITE(RecordInspection, Records::Cases, Records::CaseName);

TYPED_TEST(RecordInspection, ReadsMembers) {
    using V = typename TypeParam::Value;
    this->is(this->a, this->one);
    GenericValue const keyA = GenericValue::of(this->a);
    GenericValue const keyB = GenericValue::of(this->b);
    EXPECT_EQ(this->inspect(OpCode::count).template as<U32>(), 1u);
    EXPECT_TRUE(this->inspect(OpCode::has, {keyA}).template as<bool>());
    EXPECT_FALSE(this->inspect(OpCode::has, {keyB}).template as<bool>());
    EXPECT_EQ(this->inspect(OpCode::get, {keyA}).template as<V>(), this->one);
    EXPECT_EQ(this->inspect(OpCode::get, {keyB}).template as<V>(), V());
    EXPECT_TRUE(this->inspect(OpCode::lookup, {keyB}).empty());
}

TYPED_TEST(RecordInspection, ChangesMembersThroughTheMutators) {
    using V = typename TypeParam::Value;
    typename TestFixture::Changes changes(*this);
    GenericValue const keyA = GenericValue::of(this->a);
    this->inspect(OpCode::set, {keyA, GenericValue::of(this->one)});
    this->inspect(OpCode::set, {keyA, GenericValue::of(this->one)});
    this->inspect(OpCode::set, {GenericValue::of(this->b), GenericValue::of(this->two)});
    EXPECT_EQ(this->inspect(OpCode::del, {keyA}).template as<V>(), this->one);
    EXPECT_EQ(this->inspect(OpCode::del, {keyA}).template as<V>(), V());
    this->inspect(OpCode::delAll);
    EXPECT_EQ(changes.take(), (Notes{"a=1 {a=1}", "b=2 {a=1 b=2}", "a gone {b=2}", "b gone {}"}));
}

TYPED_TEST(RecordInspection, WalksMembersAndDeletesTheCurrentOne) {
    this->fill();
    std::string visited;
    for (auto it = Qor::collectionIterator(*this->record, this->field); it; it.advance()) {
        visited += this->nameOf(it.key().template as<typename TypeParam::Key>());
        if (visited == "ab") {
            it.del();
        }
    }
    EXPECT_EQ(visited, "abc");
    EXPECT_EQ(this->members(), "a=1 c=1");
}

TYPED_TEST(RecordInspection, RefusesToChangeAConstantRecord) {
    this->fill();
    typename TypeParam::Record const& constant = *this->record;
    EXPECT_THROW(Qor::inspectOperation(constant, this->field, OpCode::delAll),
                 Qor::ConstEntityException);
    EXPECT_EQ(this->members(), "a=1 b=1 c=1");
}

TYPED_TEST(RecordInspection, BuildsARecordFromItsName) {
    auto const node =
        Qor::genericIfConstructFromCtorArgs(*this->record->typeData(), {GenericValue::of("bgp")});
    auto const* const built = dynamic_cast<typename TypeParam::Record const*>(node.get());
    ASSERT_NE(built, nullptr);
    EXPECT_EQ(built->name(), "bgp");
    EXPECT_EQ(built->useCount(), 1u);
}

} // namespace
