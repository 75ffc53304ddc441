#pragma once

#include "pelo/Ptr.h"
#include "pelo/Publisher.h"
#include "support/NotificationPlay.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string>
#include <utility>
#include <vector>

/// The worlds of `NotificationPlay.h` for an entity with a keyed collection that publishes its
/// changes: the real one, and a model of what is promised.
///
/// A `Case` tells of the entity: its type `Entity`, what its notifications point to (`Key` and
/// `Value`), `make()`, and the mutators `set`, `del` and `delAll` by numbers of keys (0 to 2) and
/// values (1 and 2); `keyNumber` and `valueNumber` the other way round, and `walk(entity, visit)`,
/// which visits the numbers of each member. `tellsFormer` says that notifications carry the former
/// value, and `emptiesNewcomers` that what is added while it is emptied goes too.
namespace Play {

struct CollectionCast {
    static constexpr U32 subscribers = 2;
    static constexpr U32 cast = 3; ///< the last one does not subscribe at first
    static constexpr U32 changes = 6;

    /// Does one of the changes; the collection is {a=1, b=1} at first.
    template <class Collection> static void perform(Collection& collection, U32 change) {
        switch (change) {
        case 0:
            return collection.set(0, 2);
        case 1:
            return collection.set(2, 1);
        case 2:
            return collection.del(0);
        case 3:
            return collection.delAll();
        case 4:
            return collection.set(0, 1);
        default:
            return collection.del(1);
        }
    }
    static std::string member(U32 key, std::string const& value) {
        return std::string(1, static_cast<char>('a' + key)) + value;
    }
};

/// An entity by the numbers of its keys and values.
template <class Case> class RealCollection {
public:
    using Entity = typename Case::Entity;

    void set(U32 key, U32 value) { Case::set(*entity, key, value); }
    void del(U32 key) { Case::del(*entity, key); }
    void delAll() { Case::delAll(*entity); }

    /// Changes the value of b, whatever it is.
    void toggle() {
        bool one = false;
        Case::walk(*entity, [&](U32 key, U32 value) { one = one || (key == 1 && value == 1); });
        set(1, one ? 2 : 1);
    }
    std::string text() const {
        std::string members;
        Case::walk(*entity, [&](U32 key, U32 value) {
            members += " " + CollectionCast::member(key, std::to_string(value));
        });
        return members;
    }

    Pelo::Ptr<Entity> entity = Case::make();
};

template <class Case> class RealCollections : public CollectionCast {
public:
    explicit RealCollections(Tell tell) : tell_(std::move(tell)) {
        for (U32 who = 0; who < cast; ++who) {
            cast_[who].emplace(*this, who);
        }
        for (auto& collection : collections_) {
            collection.set(0, 1);
            collection.set(1, 1);
        }
    }

    void add(U32 entity, U32 who, bool front) {
        if (collections_[entity].entity && cast_[who]) {
            auto* const publisher = collections_[entity].entity->publisher();
            publisher->subscriberAdd(&cast_[who]->subscriber, front);
        }
    }
    void remove(U32 who) {
        if (cast_[who] && cast_[who]->subscriber.subscribed()) {
            cast_[who]->subscriber.publisher()->subscriberRemove(&cast_[who]->subscriber);
        }
    }
    void destroy(U32 who) { cast_[who].reset(); }
    void drop() { collections_[0].entity = nullptr; }
    void change(U32 number) {
        if (collections_[0].entity) {
            perform(collections_[0], number);
        }
    }
    void lastChange(U32 entity) {
        if (collections_[entity].entity) {
            collections_[entity].toggle();
        }
    }

private:
    /// One who subscribes; it may be destroyed while it is told something.
    struct Told {
        Told(RealCollections& itsWorld, U32 itsNumber) : world(itsWorld), number(itsNumber) {}

        static void dispatch(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                             Pelo::FieldId, void const* key, void const* value) noexcept {
            auto const& self = subscriber->owner<Told>();
            self.world.tell_(self.number, self.world.note(publisher, key, value));
        }

        RealCollections& world;
        U32 number;
        Pelo::Subscriber subscriber{this, &dispatch};
    };

    std::string note(Pelo::Publisher const* publisher, void const* key, void const* value) const {
        auto const& first = collections_[0];
        bool const ofFirst = first.entity && first.entity->publisher() == publisher;
        U32 const number = Case::keyNumber(*static_cast<typename Case::Key const*>(key));
        std::string const told = value == nullptr
                                     ? "-"
                                     : std::to_string(Case::valueNumber(
                                           *static_cast<typename Case::Value const*>(value)));
        return member(number, told) + ":" + collections_[ofFirst ? 0 : 1].text();
    }

    Tell tell_;
    std::array<RealCollection<Case>, 2> collections_;
    std::array<std::optional<Told>, cast> cast_;
};

template <class Case>
class ModelCollections : public CollectionCast, public Subscriptions<CollectionCast::cast> {
public:
    explicit ModelCollections(Tell tell) : tell_(std::move(tell)) {}

    void change(U32 number) {
        if (alive(0)) {
            perform(lists_[0], number);
        }
    }
    void lastChange(U32 entity) {
        if (alive(entity)) {
            List& list = lists_[entity];
            list.set(1, list.valueOf(1) == 1 ? 2 : 1);
        }
    }

private:
    struct Member {
        U32 key;
        U32 value;
        U32 insertion;
    };

    class List {
    public:
        List(ModelCollections& world, U32 entity) : world_(world), entity_(entity) {}

        U32 valueOf(U32 key) const {
            auto const at = find(key);
            return at == members_.end() ? 0 : at->value;
        }
        void set(U32 key, U32 value) {
            U32 const former = valueOf(key);
            if (former == value) {
                return;
            }
            if (former == 0) {
                members_.push_back({key, value, ++insertions_});
            } else {
                members_[static_cast<std::size_t>(find(key) - members_.begin())].value = value;
            }
            tell(key, former, value);
        }
        void del(U32 key) {
            U32 const former = valueOf(key);
            if (former != 0) {
                members_.erase(find(key));
                tell(key, former, 0);
            }
        }
        /// One by one in their order: each key once, or no more than there are at first.
        void delAll() {
            if (!world_.any(entity_)) {
                members_.clear();
                return;
            }
            std::array<bool, 3> removed{};
            std::size_t left = Case::emptiesNewcomers ? removed.size() : members_.size();
            U32 insertion = 0;
            while (left != 0 && world_.alive(entity_)) {
                auto const at =
                    std::find_if(members_.begin(), members_.end(), [&](Member const& each) {
                        return each.insertion > insertion &&
                               !(Case::emptiesNewcomers && removed[each.key]);
                    });
                if (at == members_.end()) {
                    return;
                }
                insertion = at->insertion;
                removed[at->key] = true;
                --left;
                del(at->key);
            }
        }

    private:
        auto find(U32 key) const {
            return std::find_if(members_.begin(), members_.end(),
                                [key](Member const& each) { return each.key == key; });
        }
        void tell(U32 key, U32 former, U32 value) {
            U32 const told = Case::tellsFormer ? former : value;
            world_.publish(entity_, [&, this](U32 who) {
                std::string text = member(key, told == 0 ? "-" : std::to_string(told)) + ":";
                for (Member const& each : members_) {
                    text += " " + member(each.key, std::to_string(each.value));
                }
                world_.tell_(who, text);
            });
        }

        ModelCollections& world_;
        U32 entity_;
        U32 insertions_ = 2;
        std::vector<Member> members_{{0, 1, 1}, {1, 1, 2}};
    };

    Tell tell_;
    std::array<List, 2> lists_{List(*this, 0), List(*this, 1)};
};

/// The number of scripts that do something once, in a change nested so deep.
constexpr U32 collectionScripts(U32 depth) {
    constexpr U32 choices = 7 * CollectionCast::cast + CollectionCast::changes + 1;
    U32 count = CollectionCast::changes * CollectionCast::subscribers * choices;
    for (; depth > 1; --depth) {
        count *= CollectionCast::subscribers * CollectionCast::changes;
    }
    return count;
}

} // namespace Play
