// Records and sets of names without memory: a change that throws has changed nothing and told
// nobody.

#include "RecordCases.h"
#include "support/EachAllocation.h"

#include <vector>

namespace {

using Support::failEachAllocation;
using Support::FailingAllocations;
using VornicCentral::VpNames;

std::vector<Pelo::String> namesOf(U32 count) {
    std::vector<Pelo::String> names;
    for (U32 number = 0; number < count; ++number) {
        names.emplace_back("client-" + std::to_string(number));
    }
    return names;
}

TEST(VpNamesWithoutMemory, TakeANameOrStayAsTheyWere) {
    VpNames names;
    U32 failures = 0;
    for (Pelo::String const& name : namesOf(200)) {
        std::string const before = names.stringValue();
        failures += failEachAllocation([&] { names.add(name); },
                                       [&] {
                                           EXPECT_EQ(names.stringValue(), before);
                                           EXPECT_FALSE(names.has(name));
                                       });
    }
    EXPECT_GE(failures, 5u);
    EXPECT_EQ(names.size(), 200u);
}

TEST(VpNamesWithoutMemory, ThatShareTheirNamesChangeApartOrNotAtAll) {
    auto const all = namesOf(41);
    for (U32 const count : {U32{5}, U32{20}, U32{40}}) {
        VpNames first;
        for (U32 at = 0; at < count; ++at) {
            first.add(all[at]);
        }
        std::string const before = first.stringValue();
        VpNames second = first;
        auto const unchanged = [&] { EXPECT_EQ(second.stringValue(), before); };
        EXPECT_GE(failEachAllocation([&] { second.remove(all[1]); }, unchanged), 2u);
        second = first;
        EXPECT_GE(failEachAllocation([&] { second.add(all[count]); }, unchanged), 2u);
        EXPECT_EQ(first.stringValue(), before);
        EXPECT_TRUE(second.has(all[count]));
    }
}

TEST(VpNamesWithoutMemory, GiveTheirNamesUp) {
    auto const all = namesOf(100);
    VpNames names;
    for (Pelo::String const& name : all) {
        names.add(name);
    }
    FailingAllocations const none(0);
    for (U32 at = 0; at < 100; ++at) { // the index gets smaller on the way
        EXPECT_TRUE(names.remove(all[at * 7 % 100]));
    }
    EXPECT_TRUE(names.empty());
}

/// Counts the notifications of a record.
class Count {
public:
    explicit Count(Qor::Entity const& record) : subscriber_(this, &dispatch) {
        record.publisher()->subscriberAdd(&subscriber_, false);
    }
    U32 count() const { return count_; }

private:
    static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId, void const*,
                         void const*) noexcept {
        ++subscriber->owner<Count>().count_;
    }

    U32 count_ = 0;
    Pelo::Subscriber subscriber_;
};

template <class C> class RecordWithoutMemory : public Records::OfCase<C> {};
TYPED_TEST_SUITE(RecordWithoutMemory, Records::Cases, Records::CaseName);

TYPED_TEST(RecordWithoutMemory, TakesAMemberOrStaysAsItWasAndTellsNobody) {
    Count const told(*this->record);
    U32 const failures = failEachAllocation([&] { this->is(this->a, this->one); },
                                            [&] {
                                                EXPECT_EQ(this->members(), "");
                                                EXPECT_EQ(told.count(), 0u);
                                            });
    EXPECT_GE(failures, 2u);
    EXPECT_EQ(this->members(), "a=1");
    EXPECT_EQ(told.count(), 1u);
}

TYPED_TEST(RecordWithoutMemory, ReplacesAndDeletesMembers) {
    this->fill();
    Count const told(*this->record);
    {
        FailingAllocations const none(0);
        this->is(this->a, this->two);
        this->del(this->b);
    }
    EXPECT_EQ(this->members(), "a=2 c=1");
    {
        FailingAllocations const none(0);
        this->delAll();
    }
    EXPECT_EQ(this->members(), "");
    EXPECT_EQ(told.count(), 4u);
}

} // namespace
