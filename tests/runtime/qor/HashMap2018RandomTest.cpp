#include "qor/HashMap2018.h"
#include "runtime/qor/MapKeys.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <optional>
#include <vector>

namespace {

using Support::keyOf;
using Support::Members;
using Support::membersOf;
using Support::numberOf;

/// What a collection should be, in the plainest form: members in a list, each with the number of
/// its insertion. A walk remembers from which insertion on it goes, and whether its member is gone.
class Model {
public:
    struct Walk {
        U64 from = 0;
        bool stale = false;
    };

    bool has(U32 key) const { return find(key) != members_.end(); }
    std::size_t size() const { return members_.size(); }

    void set(U32 key, int value) {
        auto const at = find(key);
        if (at == members_.end()) {
            members_.push_back({++insertions_, key, value});
        } else {
            members_[static_cast<std::size_t>(at - members_.begin())].value = value;
        }
    }
    std::optional<int> remove(U32 key) {
        auto const at = find(key);
        if (at == members_.end()) {
            return std::nullopt;
        }
        int const value = at->value;
        for (Walk* const walk : walks) {
            if (Member const* const current = this->current(*walk); current == &*at) {
                *walk = {current->insertion + 1, true};
            }
        }
        members_.erase(at);
        return value;
    }
    void removeAll() {
        for (Walk* const walk : walks) {
            *walk = {insertions_ + 1, walk->stale || current(*walk) != nullptr};
        }
        members_.clear();
    }

    bool atEnd(Walk const& walk) const { return !walk.stale && current(walk) == nullptr; }
    std::optional<U32> currentKey(Walk const& walk) const {
        Member const* const member = current(walk);
        return member == nullptr ? std::nullopt : std::optional(member->key);
    }
    void advance(Walk& walk) const {
        if (Member const* const member = current(walk)) {
            walk.from = member->insertion + 1;
        }
        walk.stale = false;
    }

    Members members() const {
        Members result;
        for (Member const& member : members_) {
            result.emplace_back(member.key, member.value);
        }
        return result;
    }

    std::vector<Walk*> walks;

private:
    struct Member {
        U64 insertion;
        U32 key;
        int value;
    };

    std::vector<Member>::const_iterator find(U32 key) const {
        return std::find_if(members_.begin(), members_.end(),
                            [key](Member const& member) { return member.key == key; });
    }
    Member const* current(Walk const& walk) const {
        auto const at =
            std::find_if(members_.begin(), members_.end(),
                         [&walk](Member const& member) { return member.insertion >= walk.from; });
        return walk.stale || at == members_.end() ? nullptr : &*at;
    }

    std::vector<Member> members_;
    U64 insertions_ = 0;
};

/// A collection and its model, to which the same is done.
template <class K> class Twins {
public:
    using Map = Qor::HashMap2018<K, int>;

    Twins(Support::Random& random, U32 keys, std::size_t walks)
        : random_(random), keys_(keys), maxWalks_(walks) {}

    void step() {
        switch (random_.below(16)) {
        case 0:
            remove(walkedKey());
            break;
        case 1:
            startOrEndWalk();
            break;
        case 2:
            moveByLook();
            break;
        case 3:
        case 4:
        case 5:
            advance();
            break;
        case 6:
            if (random_.oneIn(100)) {
                map_->memberDelAll();
                model_.removeAll();
            }
            break;
        default:
            growing_ ? set(anyKey()) : remove(anyKey());
        }
        if (random_.oneIn(4 * keys_)) {
            growing_ = !growing_;
        }
    }

    void compare() {
        ASSERT_EQ(membersOf(*map_), model_.members());
        ASSERT_EQ(map_->memberCount(), model_.size());
        U32 const key = anyKey();
        ASSERT_EQ(map_->has(keyOf<K>(key)), model_.has(key));
        for (auto const& walk : walks_) {
            auto const* const member = walk->it.currNodeMaybeStale();
            ASSERT_EQ(member == nullptr ? std::nullopt : std::optional(numberOf(member->key())),
                      model_.currentKey(walk->model));
            ASSERT_EQ(!walk->it, model_.atEnd(walk->model));
        }
    }

    /// The collection goes before its walks.
    void destroyCollection() {
        map_.reset();
        for (auto const& walk : walks_) {
            walk->it.advance();
            EXPECT_FALSE(walk->it);
        }
    }

private:
    struct Walk {
        explicit Walk(Map const& map) : it(map) {}
        typename Map::Iterator it;
        Model::Walk model;
    };

    U32 anyKey() { return random_.below(keys_); }
    Walk& anyWalk() { return *walks_[random_.below(static_cast<U32>(walks_.size()))]; }
    U32 walkedKey() {
        return walks_.empty() ? anyKey() : model_.currentKey(anyWalk().model).value_or(anyKey());
    }

    void set(U32 key) {
        int const value = static_cast<int>(random_.below(3));
        auto const* const member = map_->lookupNode(keyOf<K>(key));
        auto const expected = member == nullptr          ? Map::Change::inserted
                              : member->value() == value ? Map::Change::none
                                                         : Map::Change::replaced;
        if (random_.oneIn(2)) {
            EXPECT_EQ(map_->memberIs(keyOf<K>(key), value), expected);
        } else {
            map_->newMember(keyOf<K>(key), value);
        }
        model_.set(key, value);
    }
    void remove(U32 key) {
        auto const* const member = map_->lookupNode(keyOf<K>(key));
        if (member != nullptr && random_.oneIn(2)) {
            EXPECT_EQ(map_->deleteMember(*member), model_.remove(key));
        } else {
            EXPECT_EQ(map_->deleteMember(keyOf<K>(key)), model_.remove(key));
        }
    }

    void startOrEndWalk() {
        if (walks_.size() < maxWalks_ && random_.oneIn(2)) {
            walks_.push_back(std::make_unique<Walk>(*map_));
        } else if (!walks_.empty()) {
            walks_.erase(walks_.begin() + random_.below(static_cast<U32>(walks_.size())));
        }
        model_.walks.clear();
        for (auto const& walk : walks_) {
            model_.walks.push_back(&walk->model);
        }
    }
    void advance() {
        if (!walks_.empty()) {
            Walk& walk = anyWalk();
            walk.it.advance();
            model_.advance(walk.model);
        }
    }
    void moveByLook() {
        if (!walks_.empty()) {
            Walk& walk = anyWalk();
            walk.model.stale = false;
            auto const* const member = walk.it.currNodeNonStale();
            EXPECT_EQ(member == nullptr ? std::nullopt : std::optional(numberOf(member->key())),
                      model_.currentKey(walk.model));
        }
    }

    Support::Random& random_;
    U32 keys_;
    std::size_t maxWalks_;
    bool growing_ = true;
    std::unique_ptr<Map> map_ = std::make_unique<Map>();
    Model model_;
    std::vector<std::unique_ptr<Walk>> walks_;
};

template <class K> class HashMap2018Random : public testing::Test {
protected:
    void run(U32 keys, std::size_t walks, int steps) {
        Support::Random random;
        SCOPED_TRACE(random.note());
        Twins<K> twins(random, keys, walks);
        for (int step = 0; step < steps; ++step) {
            twins.step();
            ASSERT_NO_FATAL_FAILURE(twins.compare()) << "step " << step;
            ASSERT_FALSE(this->HasFailure()) << "step " << step;
        }
        twins.destroyCollection();
    }
};
TYPED_TEST_SUITE(HashMap2018Random, Support::KeyTypes, Support::KeyNames);

TYPED_TEST(HashMap2018Random, FewMembersAndManyWalksAreAsTheModelSays) { this->run(12, 6, 20000); }

TYPED_TEST(HashMap2018Random, MembersThatComeAndGoWithoutWalksAreAsTheModelSays) {
    this->run(60, 0, 6000);
}

TYPED_TEST(HashMap2018Random, ManyMembersAndSomeWalksAreAsTheModelSays) { this->run(300, 3, 4000); }

} // namespace
