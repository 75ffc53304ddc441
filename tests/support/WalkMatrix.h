#pragma once

#include "pelo/Integers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <span>
#include <string>
#include <vector>

/// Everything that may happen to a collection while a walk stands on one of its members, in every
/// combination, on any kind of collection. Keys are told by numbers.
///
/// A `Box` holds a collection and changes it: `insert`, `replace` and `erase` of a number, `clear`,
/// and `drop`, which lets go of the collection's owner. `Box::Walk`, built from the box, is a walk
/// with `more()`, `current()` (the number that it stands on, if that is there) and `advance()`.
/// `Box::walkKeepsOwner` says whether the walk keeps what is dropped.
namespace Support {

enum class WalkEvent : U32 {
    nothing,
    eraseCurrent,
    eraseNext,
    erasePrevious,
    eraseEach,       ///< one by one
    clear,           ///< all at once
    reinsertCurrent, ///< deleted and inserted again
    reinsertNext,
    replaceCurrent,
    insertOne,
    grow, ///< so far that the collection takes other storage
    drop
};
inline constexpr U32 walkEvents = 12;

/// A collection in its plainest form: numbers, each with the number of its insertion. A walk stands
/// on the first member that was inserted at `from` or later, unless that has been deleted.
class WalkedList {
public:
    void insert(U32 number) { list_.push_back({++insertions_, number}); }
    void erase(U32 number) {
        auto const at = std::find_if(list_.begin(), list_.end(), [number](Member const& each) {
            return each.number == number;
        });
        if (at == list_.end()) {
            return;
        }
        if (!stale_ && !current().empty() && current().front().insertion == at->insertion) {
            from_ = at->insertion + 1;
            stale_ = true;
        }
        list_.erase(at);
    }
    void clear() {
        for (U32 const number : numbers()) {
            erase(number);
        }
        from_ = insertions_ + 1;
    }
    void drop() {
        clear();
        stale_ = false;
    }

    bool more() const { return stale_ || !current().empty(); }
    std::optional<U32> standsOn() const {
        return stale_ || current().empty() ? std::nullopt : std::optional(current().front().number);
    }
    void advance() {
        if (!stale_) {
            from_ = current().empty() ? from_ : current().front().insertion + 1;
        }
        stale_ = false;
    }

    std::vector<U32> numbers() const {
        std::vector<U32> numbers;
        for (Member const& member : list_) {
            numbers.push_back(member.number);
        }
        return numbers;
    }
    /// The numbers of the current member and of those around it, as far as they are there.
    std::optional<U32> next() const {
        auto const rest = current();
        std::size_t const at = stale_ ? 0 : 1;
        return at < rest.size() ? std::optional(rest[at].number) : std::nullopt;
    }
    std::optional<U32> previous() const {
        std::size_t const at = list_.size() - current().size();
        return at == 0 ? std::nullopt : std::optional(list_[at - 1].number);
    }

private:
    struct Member {
        U32 insertion;
        U32 number;
    };
    /// The member that the walk stands on or comes to next, and all after it.
    std::span<Member const> current() const {
        auto const at = std::find_if(list_.begin(), list_.end(), [this](Member const& each) {
            return each.insertion >= from_;
        });
        return {at, list_.end()};
    }

    std::vector<Member> list_;
    U32 insertions_ = 0;
    U32 from_ = 0;
    bool stale_ = false;
};

/// One walk of a box beside the same walk of a list.
template <class Box> class WalkTrial {
public:
    static constexpr U32 membersAtFirst = 5;

    explicit WalkTrial(U32 steps) {
        for (U32 number = 0; number < membersAtFirst; ++number) {
            insert(number);
        }
        walk_.emplace(box_);
        for (U32 step = 0; step < steps; ++step) {
            walk_->advance();
            list_.advance();
        }
    }

    void happens(WalkEvent event) {
        if (dropped_) {
            return;
        }
        auto const here = list_.standsOn();
        auto const next = list_.next();
        switch (event) {
        case WalkEvent::nothing:
            break;
        case WalkEvent::eraseCurrent:
            erase(here);
            break;
        case WalkEvent::eraseNext:
            erase(next);
            break;
        case WalkEvent::erasePrevious:
            erase(list_.previous());
            break;
        case WalkEvent::eraseEach:
            for (U32 const number : list_.numbers()) {
                erase(number);
            }
            break;
        case WalkEvent::clear:
            box_.clear();
            list_.clear();
            break;
        case WalkEvent::reinsertCurrent:
            reinsert(here);
            break;
        case WalkEvent::reinsertNext:
            reinsert(next);
            break;
        case WalkEvent::replaceCurrent:
            if (here) {
                box_.replace(*here);
            }
            break;
        case WalkEvent::insertOne:
            insert(unused_);
            break;
        case WalkEvent::grow:
            for (U32 more = 0; more < 40; ++more) {
                insert(unused_);
            }
            break;
        case WalkEvent::drop:
            dropped_ = true;
            box_.drop();
            if constexpr (!Box::walkKeepsOwner) {
                list_.drop();
            }
            break;
        }
    }

    /// Goes to the end, and says whether both walks went the same way.
    bool endsAlike() {
        for (U32 patience = 0; patience < 1000; ++patience) {
            if (walk_->more() != list_.more() || walk_->current() != list_.standsOn()) {
                return false;
            }
            if (!list_.more()) {
                return true;
            }
            walk_->advance();
            list_.advance();
        }
        return false;
    }

private:
    void insert(U32 number) {
        box_.insert(number);
        list_.insert(number);
        unused_ = std::max(unused_, number + 1);
    }
    void erase(std::optional<U32> number) {
        if (number) {
            box_.erase(*number);
            list_.erase(*number);
        }
    }
    void reinsert(std::optional<U32> number) {
        if (number) {
            erase(number);
            insert(*number);
        }
    }

    Box box_;
    WalkedList list_;
    std::optional<typename Box::Walk> walk_;
    U32 unused_ = 0;
    bool dropped_ = false;
};

/// Tries every two events on every place, the end included, alone and before the collection grows;
/// gives how many walks were tried.
template <class Box> U32 tryAllWalks() {
    static constexpr std::array later{WalkEvent::nothing, WalkEvent::grow};
    U32 tried = 0;
    for (U32 steps = 0; steps <= WalkTrial<Box>::membersAtFirst; ++steps) {
        for (U32 first = 0; first < walkEvents; ++first) {
            for (U32 second = 0; second < walkEvents; ++second) {
                for (WalkEvent const third : later) {
                    WalkTrial<Box> trial(steps);
                    trial.happens(WalkEvent{first});
                    trial.happens(WalkEvent{second});
                    trial.happens(third);
                    EXPECT_TRUE(trial.endsAlike())
                        << "at step " << steps << ": events " << first << ", " << second << ", "
                        << static_cast<U32>(third);
                    ++tried;
                }
            }
        }
    }
    return tried;
}

/// The number of walks that `tryAllWalks` tries.
inline constexpr U32 allWalks = 6 * walkEvents * walkEvents * 2;

} // namespace Support
