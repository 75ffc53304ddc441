#include "qor/CollectionIterator.h"

#include "Fan.h"
#include "qor/Exceptions.h"
#include "qor/Inspection.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

namespace {

using Cooling::Fan;
using Pelo::Ptr;
using Qor::CollectionIterator;

constexpr Pelo::FieldId alarmField = 259;
constexpr Pelo::FieldId bladeField = 260;

class CollectionIteration : public testing::Test {
protected:
    CollectionIteration() {
        U16 level = 0;
        for (char const* const sensor : {"a", "b", "c", "d"}) {
            fan->alarmIs(sensor, ++level);
        }
    }
    CollectionIterator alarms() { return Qor::collectionIterator(*fan, alarmField); }

    /// The keys that a walk visits, and what `visit` adds.
    template <class Visit> std::string walk(Visit visit) {
        std::string visited;
        for (CollectionIterator it = alarms(); it; it.advance()) {
            visited += it.key().text() + "=" + it.object().text() + " ";
            visit(it);
        }
        return visited;
    }

    Ptr<Fan> fan = Fan::FanIs("left", 7, nullptr);
};

TEST_F(CollectionIteration, VisitsMembersInInsertionOrder) {
    EXPECT_EQ(walk([](CollectionIterator&) {}), "a=1 b=2 c=3 d=4 ");
}

TEST_F(CollectionIteration, EndsAtOnceOnAnEmptyCollection) {
    fan->alarmDelAll();
    CollectionIterator it = alarms();
    EXPECT_FALSE(it);
    EXPECT_TRUE(it.key().empty());
    EXPECT_TRUE(it.del().empty());
}

TEST_F(CollectionIteration, DeletesTheCurrentMemberAndGoesOnBehindIt) {
    EXPECT_EQ(walk([](CollectionIterator& it) {
                  if (it.object().as<U16>() % 2 == 0) {
                      U16 const level = it.object().as<U16>();
                      EXPECT_EQ(it.del().as<U16>(), level);
                  }
              }),
              "a=1 b=2 c=3 d=4 ");
    EXPECT_EQ(walk([](CollectionIterator&) {}), "a=1 c=3 ");
}

TEST_F(CollectionIteration, StandsOnNothingOnceItsMemberIsGone) {
    CollectionIterator it = alarms();
    fan->alarmDel("a");
    EXPECT_TRUE(it);
    EXPECT_TRUE(it.key().empty());
    EXPECT_TRUE(it.object().empty());
    EXPECT_TRUE(it.del().empty());
    EXPECT_EQ(fan->alarm().memberCount(), 3u);
    it.advance();
    EXPECT_EQ(it.key().as<Pelo::String>(), "b");
}

TEST_F(CollectionIteration, ToleratesDeletionOfAllMembersAndInsertion) {
    EXPECT_EQ(walk([this](CollectionIterator& it) {
                  if (it.key().as<Pelo::String>() == "b") {
                      fan->alarmDelAll();
                      fan->alarmIs("e", 5);
                  }
              }),
              "a=1 b=2 e=5 ");
}

TEST_F(CollectionIteration, DeletionIsPublished) {
    struct Reactor {
        std::string deleted;
        static void dispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId field,
                             void const* key, void const* value) noexcept {
            subscriber->owner<Reactor>().deleted +=
                std::to_string(field) + (value == nullptr ? " -" : " +") +
                std::string(*static_cast<Pelo::String const*>(key));
        }
    } reactor;
    Pelo::Subscriber subscriber(&reactor, &Reactor::dispatch);
    fan->publisher()->subscriberAdd(&subscriber, false);
    alarms().del();
    EXPECT_EQ(reactor.deleted, "259 -a");
}

TEST_F(CollectionIteration, RefusesDeletionWhereTheCollectionDoes) {
    CollectionIterator blades = Qor::collectionIterator(*fan, bladeField);
    EXPECT_THROW(blades.del(), Qor::ReadOnlyAttributeException);
    EXPECT_EQ(fan->blade().memberCount(), Fan::numberOfBlades);

    CollectionIterator constant = Qor::collectionIterator(std::as_const(*fan), alarmField);
    EXPECT_EQ(constant.key().text(), "a");
    EXPECT_THROW(constant.del(), Qor::ConstEntityException);
    EXPECT_EQ(fan->alarm().memberCount(), 4u);
}

TEST_F(CollectionIteration, RefusesWhatIsNoCollection) {
    EXPECT_THROW(Qor::collectionIterator(*fan, 258), Qor::OperationRefusedException);
    EXPECT_THROW(Qor::collectionIterator(*fan, 1), Qor::UnknownFieldException);
}

TEST_F(CollectionIteration, CopiesShareOnePosition) {
    CollectionIterator const it = alarms();
    CollectionIterator copy = it;
    copy.advance();
    EXPECT_EQ(it.key().text(), "b");
    EXPECT_EQ(it, copy);
    EXPECT_NE(alarms(), copy);
    EXPECT_EQ(Qor::GenericValue::of(it).text(), "b");
}

TEST_F(CollectionIteration, CannotBeReadFromText) {
    auto const read = Qor::valueTypeOf<CollectionIterator>().parse("a");
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error().expected, "a Qor::CollectionIterator, which cannot be given as text");
}

TEST_F(CollectionIteration, KeepsTheOwnerAlive) {
    CollectionIterator it = alarms();
    U64 const live = Fan::allocationTracker().live();
    fan = nullptr;
    EXPECT_EQ(Fan::allocationTracker().live(), live);
    it.advance();
    EXPECT_EQ(it.key().text(), "b");
    it = Qor::collectionIterator(*Fan::FanIs("other", 1, nullptr), alarmField);
    EXPECT_EQ(Fan::allocationTracker().live(), live);
}

} // namespace
