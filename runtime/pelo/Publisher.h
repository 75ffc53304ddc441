#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "pelo/Stack.h"

#include <vector>

namespace Pelo {

/// The number of an attribute or operation within its type.
using FieldId = U32;

class Publisher;

/// One registration of a reactor: whom to call, and on whose behalf.
///
/// It lives inside the object that reacts. While it is subscribed it must not be moved; when it is
/// destroyed it leaves its publisher by itself, and when the publisher goes first it becomes
/// unsubscribed.
class VORNIC_RUNTIME_API Subscriber {
public:
    /// `key` points to the changed key (null for an attribute that has none) and `value` to the
    /// value that the publishing type documents, which may be null; both are valid during the call
    /// only. An exception that leaves a dispatch function ends the process.
    using Dispatch = void (*)(Publisher* publisher, Subscriber* subscriber, FieldId field,
                              void const* key, void const* value) noexcept;

    Subscriber(void* owner, Dispatch dispatch) noexcept : owner_(owner), dispatch_(dispatch) {}
    ~Subscriber();
    Subscriber(Subscriber const&) = delete;
    Subscriber& operator=(Subscriber const&) = delete;

    bool subscribed() const noexcept { return publisher_ != nullptr; }
    Publisher* publisher() const noexcept { return publisher_; }

    /// The object that reacts, as given to the constructor.
    template <class Owner> Owner& owner() const noexcept { return *static_cast<Owner*>(owner_); }

private:
    friend class Publisher;

    void* owner_;
    Dispatch dispatch_;
    Publisher* publisher_ = nullptr;
};

/// Whether two keys of one field are the same.
using KeyEquality = bool (*)(void const* a, void const* b);

template <class Key> bool keysEqual(void const* a, void const* b) {
    return *static_cast<Key const*>(a) == *static_cast<Key const*>(b);
}

/// The list of reactors of one entity, called in the order in which they subscribed after each
/// change.
///
/// A change is made first and published afterwards, so a reactor reads the new state. Publication
/// is immediate and recursive: a reactor may change the entity again, and the notifications of that
/// change run to their end before those of the first change go on. A reactor may subscribe others
/// (they are first called for the next change), may unsubscribe anybody, itself included (who is
/// not called any more, not even for the change under way), and may give back the last use of the
/// publishing entity: the publication then ends after that reactor.
///
/// Publications nest as deep as the thread's stack allows. Reactors that go on changing what they
/// are told of, or each other's entities, stop the process with the assertion "!Stack::low()" while
/// there is stack left (see `Stack`).
///
/// Cost: a publication is a test when nobody subscribes, else one indirect call a subscriber; to
/// subscribe in front, or to unsubscribe, is a walk of the list. Not thread-safe.
class VORNIC_RUNTIME_API Publisher {
public:
    Publisher() = default;
    ~Publisher();
    Publisher(Publisher const&) = delete;
    Publisher& operator=(Publisher const&) = delete;

    /// Registers a reactor, behind the others or, with `atFront`, before them. Nothing happens when
    /// it is subscribed here already; one that is subscribed elsewhere leaves its other publisher
    /// first. When it throws (`std::bad_alloc`) nothing has changed.
    void subscriberAdd(Subscriber* subscriber, bool atFront);

    /// Removes a reactor; nothing happens when it is not subscribed here.
    void subscriberRemove(Subscriber* subscriber) noexcept;

    bool hasSubscribers() const noexcept { return count_ != 0; }
    U32 subscriberCount() const noexcept { return count_; }

    /// Tells every subscriber that `field` changed under `key`. `equality` is there for a publisher
    /// that merges the changes of one key; this one tells each change by itself and never calls it,
    /// so it may be null.
    void publishChangeRecursive(FieldId field, void const* key, void const* value,
                                [[maybe_unused]] KeyEquality equality) {
        if (count_ == 1 && !Stack::mayBeLow() && subscribers_.front() != nullptr) {
            Subscriber* const only = subscribers_.front();
            only->dispatch_(this, only, field, key, value); // nothing is left to be done afterwards
        } else if (count_ != 0) {
            notify(field, key, value);
        }
    }

private:
    struct Walk;

    void notify(FieldId field, void const* key, void const* value);
    void sweep() noexcept;

    std::vector<Subscriber*> subscribers_; ///< null where one left during a walk
    U32 count_ = 0;                        ///< entries that are not null
    Walk* walks_ = nullptr;                ///< the publications under way, innermost first
};

} // namespace Pelo
