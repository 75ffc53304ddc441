#pragma once

#include "pelo/Integers.h"

#include <gtest/gtest.h>

#include <array>
#include <functional>
#include <string>
#include <utility>
#include <vector>

/// What subscribers may do within a notification, in every combination: played on the real thing
/// and on a model of it.
///
/// A `World` has an entity that publishes and another one, and a `cast` of subscribers, of whom the
/// first ones subscribe at the beginning. It is built with a function that its subscribers call
/// when they are told something, and does what `Play` asks of it.
namespace Play {

enum class Act : U32 {
    addBack,
    addFront,
    remove,
    destroy,
    turnBack,  ///< removed and added again
    turnFront, ///< the same, at the front
    moveAway,  ///< subscribed to the other entity
    change,    ///< one of the changes of the entity, by its number
    drop       ///< the last pointer to the entity
};
inline constexpr U32 acts = 9;

/// Something that is done within the so-manieth notification of a play, to a subscriber or, for a
/// change, by its number.
struct Cue {
    U32 call;
    Act act;
    U32 which;
};
using Script = std::vector<Cue>;

inline std::string textOf(Script const& script) {
    static constexpr std::array<char const*, acts> names{"addBack",  "addFront", "remove",
                                                         "destroy",  "turnBack", "turnFront",
                                                         "moveAway", "change",   "drop"};
    std::string text;
    for (Cue const& cue : script) {
        text += "at " + std::to_string(cue.call) + " " + names[static_cast<U32>(cue.act)] + " " +
                std::to_string(cue.which) + "; ";
    }
    return text;
}

/// Who was told what, in order, as "0(a=1) 1(a=1) ".
using Tell = std::function<void(U32 who, std::string const& what)>;

/// One play: a first change, what the script says within the notifications, and then, to show who
/// is subscribed where and in which order, a change of each entity.
template <class World> class Stage {
public:
    explicit Stage(Script script)
        : script_(std::move(script)),
          world_([this](U32 who, std::string const& what) { tell(who, what); }) {
        for (U32 who = 0; who < World::subscribers; ++who) {
            world_.add(0, who, false);
        }
    }

    /// Brackets are changes within a notification.
    std::string run(U32 firstChange) {
        world_.change(firstChange);
        script_.clear();
        for (U32 entity : {0u, 1u}) {
            told_ += "| ";
            world_.lastChange(entity);
        }
        return told_;
    }

private:
    void tell(U32 who, std::string const& what) {
        told_ += std::to_string(who) + "(" + what + ") ";
        U32 const call = calls_++;
        for (Cue const& cue : Script(script_)) {
            if (cue.call == call) {
                perform(cue);
            }
        }
    }

    void perform(Cue const& cue) {
        bool const front = cue.act == Act::addFront || cue.act == Act::turnFront;
        switch (cue.act) {
        case Act::turnBack:
        case Act::turnFront:
            world_.remove(cue.which);
            [[fallthrough]];
        case Act::addBack:
        case Act::addFront:
            world_.add(0, cue.which, front);
            break;
        case Act::remove:
            world_.remove(cue.which);
            break;
        case Act::destroy:
            world_.destroy(cue.which);
            break;
        case Act::moveAway:
            world_.add(1, cue.which, false);
            break;
        case Act::change:
            told_ += "[";
            world_.change(cue.which);
            told_ += "] ";
            break;
        case Act::drop:
            world_.drop();
            break;
        }
    }

    Script script_;
    std::string told_;
    U32 calls_ = 0;
    World world_;
};

/// The subscriptions of a model, as they are promised: a change is told to those who were
/// subscribed when it was published and have not left since.
template <U32 cast> class Subscriptions {
public:
    Subscriptions() { at_.fill(nowhere); }

    bool alive(U32 entity) const { return alive_[entity]; }
    bool any(U32 entity) const { return !lists_[entity].empty(); }

    void add(U32 entity, U32 who, bool front) {
        if (!alive_[entity] || destroyed_[who] || at_[who] == entity) {
            return;
        }
        remove(who);
        at_[who] = entity;
        auto& list = lists_[entity];
        list.insert(front ? list.begin() : list.end(), {who, ++registrations_});
    }
    void remove(U32 who) {
        if (at_[who] != nowhere) {
            std::erase_if(lists_[at_[who]], [who](Entry const& entry) { return entry.who == who; });
            at_[who] = nowhere;
        }
    }
    void destroy(U32 who) {
        remove(who);
        destroyed_[who] = true;
    }
    void drop() {
        alive_[0] = false;
        for (Entry const& entry : std::exchange(lists_[0], {})) {
            at_[entry.who] = nowhere;
        }
    }
    template <class TellOne> void publish(U32 entity, TellOne const& tellOne) {
        for (Entry const& entry : std::vector<Entry>(lists_[entity])) {
            for (Entry const& now : std::vector<Entry>(lists_[entity])) {
                if (now.registration == entry.registration) {
                    tellOne(entry.who);
                }
            }
        }
    }

private:
    static constexpr U32 nowhere = 2;
    struct Entry {
        U32 who;
        U32 registration;
    };

    std::array<std::vector<Entry>, 2> lists_;
    std::array<U32, cast> at_;
    std::array<bool, cast> destroyed_{};
    std::array<bool, 2> alive_{true, true};
    U32 registrations_ = 0;
};

/// All that can be done within one notification.
template <class World> std::vector<Cue> everything(U32 call) {
    std::vector<Cue> cues;
    for (U32 act = 0; act < acts; ++act) {
        U32 const choices = Act{act} == Act::drop     ? 1
                            : Act{act} == Act::change ? World::changes
                                                      : World::cast;
        for (U32 which = 0; which < choices; ++which) {
            cues.push_back({call, Act{act}, which});
        }
    }
    return cues;
}

template <class Real, class Model> void expectAlike(Script const& script, U32 firstChange = 0) {
    EXPECT_EQ(Stage<Real>(script).run(firstChange), Stage<Model>(script).run(firstChange))
        << "change " << firstChange << "; " << textOf(script);
}

/// Calls `visit` with the beginning of a script for each place that a subscriber can have in a
/// change that is nested so deep, by every change on the way, and with the number of the
/// notification that it then gets.
template <class World, class Visit>
void forEachPlace(U32 depth, Visit const& visit, Script const& before = {}) {
    U32 const first = before.empty() ? 0 : before.back().call + 1;
    for (U32 place = 0; place < World::subscribers; ++place) {
        if (depth == 1) {
            visit(before, first + place);
            continue;
        }
        for (U32 change = 0; change < World::changes; ++change) {
            Script script = before;
            script.push_back({first + place, Act::change, change});
            forEachPlace<World>(depth - 1, visit, script);
        }
    }
}

/// Plays every script that does something in a change nested so deep, or with `twice` two things in
/// a row; gives how many were played.
template <class Real, class Model> U32 playAll(U32 depth, bool twice = false) {
    U32 played = 0;
    auto const play = [&played](Script const& script) {
        for (U32 change = 0; change < Real::changes; ++change) {
            expectAlike<Real, Model>(script, change);
            ++played;
        }
    };
    forEachPlace<Real>(depth, [&](Script const& before, U32 call) {
        for (Cue const& cue : everything<Real>(call)) {
            Script script = before;
            script.push_back(cue);
            if (!twice) {
                play(script);
                continue;
            }
            for (Cue const& second : everything<Real>(call)) {
                script.push_back(second);
                play(script);
                script.pop_back();
            }
        }
    });
    return played;
}

} // namespace Play
