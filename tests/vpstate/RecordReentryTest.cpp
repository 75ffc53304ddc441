// Changes of a record from within its own notifications and walks, for every record and every kind.

#include "RecordChanges.h"

#include <functional>

namespace {

using Records::Notes;

/// Changes what runs once, in the first notification.
template <class Changes> typename Changes::React once(std::function<void(Changes&)> react) {
    return [react, done = false](Changes& changes) mutable {
        if (!std::exchange(done, true)) {
            react(changes);
        }
    };
}

template <class C> class RecordReentry : public Records::OfCase<C> {
protected:
    using Changes = Records::Changes<Records::OfCase<C>>;
    using Iterator = typename C::Record::template Collection<typename C::Kind>::Iterator;

    /// Walks the collection, calls `visit` for each member, and gives the keys that were visited,
    /// as "a b ".
    std::string walk(std::function<void(Iterator&)> const& visit) {
        std::string visited;
        for (Iterator it(this->collection()); it; it.advance()) {
            visited += this->nameOf(it.key()) + " ";
            visit(it);
        }
        return visited;
    }
};
TYPED_TEST_SUITE(RecordReentry, Records::Cases, Records::CaseName);

TYPED_TEST(RecordReentry, AHandlerMayDeleteTheKeyThatItIsToldOf) {
    using Told = typename TestFixture::Changes;
    Told changes(*this, once<Told>([&](Told&) { this->del(this->a); }));
    this->is(this->a, this->one);
    EXPECT_EQ(changes.take(), (Notes{"a=1 {a=1}", "a gone {}"}));
}

TYPED_TEST(RecordReentry, ALaterSubscriberStillReadsTheValueThatAnEarlierOneDeleted) {
    using Told = typename TestFixture::Changes;
    Told earlier(*this, once<Told>([&](Told&) { this->del(this->a); }));
    Told later(*this);
    this->is(this->a, this->one);
    EXPECT_EQ(later.take(), (Notes{"a gone {}", "a=1 {}"}));
}

TYPED_TEST(RecordReentry, AHandlerMayAddKeys) {
    using Told = typename TestFixture::Changes;
    Told changes(*this, once<Told>([&](Told&) {
        this->is(this->b, this->one);
        this->is(this->c, this->two);
    }));
    this->is(this->a, this->one);
    EXPECT_EQ(changes.take(), (Notes{"a=1 {a=1}", "b=1 {a=1 b=1}", "c=2 {a=1 b=1 c=2}"}));
}

TYPED_TEST(RecordReentry, AHandlerMaySetAKeyThatItSeesDeleted) {
    using Told = typename TestFixture::Changes;
    this->fill();
    Told changes(*this, once<Told>([&](Told&) { this->is(this->a, this->two); }));
    EXPECT_EQ(this->del(this->a), this->one);
    EXPECT_EQ(changes.take(), (Notes{"a gone {b=1 c=1}", "a=2 {b=1 c=1 a=2}"}));
}

TYPED_TEST(RecordReentry, AHandlerMayDeleteOthersWhileTheCollectionIsEmptied) {
    using Told = typename TestFixture::Changes;
    this->fill();
    Told changes(*this, once<Told>([&](Told&) { this->del(this->b); }));
    this->delAll();
    EXPECT_EQ(changes.take(), (Notes{"a gone {b=1 c=1}", "b gone {c=1}", "c gone {}"}));
}

TYPED_TEST(RecordReentry, EmptyingEndsAlsoWhenAHandlerPutsEachKeyBack) {
    using Told = typename TestFixture::Changes;
    this->fill();
    int patience = 10; // so that the test ends whatever happens
    Told changes(*this, [&](Told&) {
        for (auto const& key : {this->a, this->b, this->c}) {
            if (!this->collection().has(key) && patience-- > 0) {
                this->is(key, this->two);
            }
        }
    });
    this->delAll();
    EXPECT_EQ(changes.take(), (Notes{"a gone {b=1 c=1}", "a=2 {b=1 c=1 a=2}", //
                                     "b gone {c=1 a=2}", "b=2 {c=1 a=2 b=2}", //
                                     "c gone {a=2 b=2}", "c=2 {a=2 b=2 c=2}"}));
}

TYPED_TEST(RecordReentry, EmptyingRemovesNoMoreThanThereWasWhenAHandlerAddsKeys) {
    using Told = typename TestFixture::Changes;
    this->is(this->a, this->one);
    Told changes(*this, once<Told>([&](Told&) {
        this->is(this->b, this->one);
        this->is(this->c, this->one);
    }));
    this->delAll();
    EXPECT_EQ(changes.take(), (Notes{"a gone {}", "b=1 {b=1}", "c=1 {b=1 c=1}"}));
}

TYPED_TEST(RecordReentry, AHandlerMayUnsubscribeItself) {
    using Told = typename TestFixture::Changes;
    Told leaves(*this, [](Told& self) { self.leave(); });
    Told stays(*this);
    this->is(this->a, this->one);
    this->is(this->b, this->one);
    EXPECT_EQ(leaves.take(), Notes{"a=1 {a=1}"});
    EXPECT_EQ(stays.take(), (Notes{"a=1 {a=1}", "b=1 {a=1 b=1}"}));
}

TYPED_TEST(RecordReentry, AHandlerMayUnsubscribeOneThatWasNotToldYet) {
    using Told = typename TestFixture::Changes;
    Told* other = nullptr;
    Told first(*this, [&](Told&) { other->leave(); });
    Told second(*this);
    other = &second;
    this->is(this->a, this->one);
    EXPECT_EQ(second.take(), Notes{});
}

TYPED_TEST(RecordReentry, AHandlerMayGiveBackTheLastUseOfTheRecord) {
    using Told = typename TestFixture::Changes;
    using R = typename TypeParam::Record;
    U64 const before = R::allocationTracker().live();
    std::function<void()> const mutations[] = {[&] { this->is(this->a, this->two); },
                                               [&] { this->del(this->a); },
                                               [&] { this->delAll(); }};
    for (auto const& mutate : mutations) {
        this->fill();
        Told changes(*this, [&](Told&) { this->record = nullptr; });
        Told notTold(*this);
        mutate();
        EXPECT_EQ(changes.take().size(), 1u);
        EXPECT_EQ(notTold.take(), Notes{});
        EXPECT_EQ(R::allocationTracker().live(), before - 1);
        this->record = Pelo::newNode<R>("record");
    }
}

TYPED_TEST(RecordReentry, AWalkMayDeleteTheKeyUnderTheIterator) {
    using Walk = typename TestFixture::Iterator;
    this->fill();
    EXPECT_EQ(this->walk([&](Walk& it) { this->del(it.key()); }), "a b c ");
    EXPECT_EQ(this->members(), "");
}

TYPED_TEST(RecordReentry, AWalkWithSubscribersMayDeleteTheKeyUnderTheIterator) {
    using Walk = typename TestFixture::Iterator;
    this->fill();
    typename TestFixture::Changes changes(*this);
    EXPECT_EQ(this->walk([&](Walk& it) { this->del(it.key()); }), "a b c ");
    EXPECT_EQ(changes.take(), (Notes{"a gone {b=1 c=1}", "b gone {c=1}", "c gone {}"}));
}

TYPED_TEST(RecordReentry, AWalkSkipsWhatWasDeletedAndVisitsWhatWasAdded) {
    using Walk = typename TestFixture::Iterator;
    this->is(this->a, this->one);
    this->is(this->b, this->one);
    auto const visit = [&](Walk& it) {
        if (it.key() == this->a) {
            this->del(this->b);
            this->is(this->c, this->one);
        }
    };
    EXPECT_EQ(this->walk(visit), "a c ");
}

TYPED_TEST(RecordReentry, AWalkMaySetTheKeyUnderTheIterator) {
    using Walk = typename TestFixture::Iterator;
    this->fill();
    typename TestFixture::Changes changes(*this);
    EXPECT_EQ(this->walk([&](Walk& it) { this->is(it.key(), this->two); }), "a b c ");
    EXPECT_EQ(changes.take(),
              (Notes{"a=2 {a=2 b=1 c=1}", "b=2 {a=2 b=2 c=1}", "c=2 {a=2 b=2 c=2}"}));
}

TYPED_TEST(RecordReentry, AKeyGivenFromTheCollectionMayBeDeletedByTheHandler) {
    using Walk = typename TestFixture::Iterator;
    using Told = typename TestFixture::Changes;
    this->fill();
    Told changes(*this, once<Told>([&](Told&) { this->delAll(); }));
    Walk it(this->collection());
    this->is(it.key(), this->two);
    EXPECT_EQ(changes.take(),
              (Notes{"a=2 {a=2 b=1 c=1}", "a gone {b=1 c=1}", "b gone {c=1}", "c gone {}"}));
}

} // namespace
