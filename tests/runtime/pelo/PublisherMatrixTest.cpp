// Everything that a subscriber may do within a notification, in every combination: on each place of
// the list, to each of the others, in changes nested up to three deep, alone and followed by
// something else.

#include "pelo/Publisher.h"
#include "runtime/pelo/Reactor.h"
#include "support/NotificationPlay.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <memory>
#include <optional>

namespace {

using Play::Act;

struct Cast {
    static constexpr U32 subscribers = 4;
    static constexpr U32 cast = 5; ///< the last one does not subscribe at first
    static constexpr U32 changes = 1;
};

/// The runtime's own publishers and subscribers.
class Real : public Cast {
public:
    explicit Real(Play::Tell tell) : tell_(std::move(tell)) {
        for (U32 who = 0; who < cast; ++who) {
            cast_[who].emplace(calls_, "", [this, who] { tell_(who, ""); });
        }
    }
    void add(U32 entity, U32 who, bool front) {
        if (publishers_[entity] && cast_[who]) {
            publishers_[entity]->subscriberAdd(&cast_[who]->subscriber, front);
        }
    }
    void remove(U32 who) {
        if (cast_[who] && cast_[who]->subscriber.subscribed()) {
            cast_[who]->subscriber.publisher()->subscriberRemove(&cast_[who]->subscriber);
        }
    }
    void destroy(U32 who) { cast_[who].reset(); }
    void drop() { publishers_[0].reset(); }
    void change(U32) { lastChange(0); }
    void lastChange(U32 entity) {
        if (publishers_[entity]) {
            Support::publish(*publishers_[entity], 131, 1);
        }
    }

private:
    Support::Calls calls_;
    Play::Tell tell_;
    std::array<std::unique_ptr<Pelo::Publisher>, 2> publishers_{
        std::make_unique<Pelo::Publisher>(), std::make_unique<Pelo::Publisher>()};
    std::array<std::optional<Support::Reactor>, cast> cast_;
};

class Model : public Cast, public Play::Subscriptions<Cast::cast> {
public:
    explicit Model(Play::Tell tell) : tell_(std::move(tell)) {}
    void change(U32) { lastChange(0); }
    void lastChange(U32 entity) {
        publish(entity, [this](U32 who) { tell_(who, ""); });
    }

private:
    Play::Tell tell_;
};

constexpr U32 choices = 7 * Cast::cast + 2;

TEST(PublisherMatrix, EverythingFromEveryPlaceAtEveryDepthIsAsPromised) {
    U32 places = 1;
    for (U32 const depth : {1u, 2u, 3u}) {
        places *= Cast::subscribers;
        EXPECT_EQ((Play::playAll<Real, Model>(depth)), places * choices);
    }
}

TEST(PublisherMatrix, EverythingAfterEverythingIsAsPromised) {
    EXPECT_EQ((Play::playAll<Real, Model>(1, true)), 4 * choices * choices);
    EXPECT_EQ((Play::playAll<Real, Model>(2, true)), 16 * choices * choices);
}

/// Anything at any time, also beside what is under way further out.
TEST(PublisherMatrix, RandomScriptsAreAsPromised) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    for (U32 round = 0; round < 5000 && !HasFailure(); ++round) {
        Play::Script script;
        for (U32 cue = 0; cue < 8; ++cue) {
            Act const act{random.below(Play::acts)};
            script.push_back(
                {random.below(20), act, act == Act::change ? 0 : random.below(Cast::cast)});
        }
        Play::expectAlike<Real, Model>(script);
    }
}

} // namespace
