#pragma once

#include "pelo/Integers.h"
#include "qor/HashMapBase.h"
#include "qor/MemberIndex.h"

#include <algorithm>
#include <memory>
#include <new>
#include <optional>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Qor {

/// A keyed collection that is walked in the order of insertion.
///
/// A key that is set again keeps its place; a key that is deleted and inserted again goes last. A
/// walk
///
///     for (Collection::Iterator it(collection); it; it.advance()) {
///         Collection::Key const key(it.key()); // a copy, because `handle` may delete the member
///         handle(key);                         // may insert and delete any member
///     }
///
/// stays valid whatever happens to the collection, its destruction included: no member is visited
/// twice, a member inserted during the walk is visited by it, and after the deletion of the current
/// member `advance` moves to the one that would have followed.
///
/// Members stand in one array, in order, beside an index (see `MemberIndex.h`); a deleted member
/// leaves a hole, and holes are closed when the array is full. Cost: lookup one probe sequence (one
/// load for a key that is a small number, see `DirectKey`) and one member; insertion and deletion
/// the same, amortised, and a deletion looks at each walk under way; a walk is a walk of the array.
/// The array does not shrink before `memberDelAll`.
///
/// A key is an integer, a `DirectKey`, or a value that has `hash()` (see `keyHash`); keys are
/// compared with `==`.
///
/// Pointers and references to members, keys and values hold until the next change of the
/// collection. Keys and values must move without throwing; an operation that throws has changed
/// nothing: `std::bad_alloc`, or `std::length_error` for an array of more than 2^32 - 1 places. A
/// value is destroyed when the collection is in order again, so its destructor may use the
/// collection. Not thread-safe.
template <class K, class V> class HashMap2018 : private HashMapBase {
    static_assert(std::is_nothrow_move_constructible_v<K> &&
                  std::is_nothrow_move_constructible_v<V>);
    static_assert(std::is_nothrow_move_assignable_v<V>);
    static_assert(std::max(alignof(K), alignof(V)) <= __STDCPP_DEFAULT_NEW_ALIGNMENT__);

public:
    using Key = K;
    using Value = V;
    class Iterator;

    /// One key and its value, as they stand in the collection.
    class Member {
    public:
        K const& key() const noexcept { return key_; }
        V const& value() const noexcept { return value_; }

    private:
        friend class HashMap2018;
        Member() noexcept {}
        ~Member() {}

        union {
            K key_;
        };
        union {
            V value_;
        };
        U32 hash_ = 0; ///< 0 in a hole, which has neither key nor value
    };

    /// What `memberIs` did.
    enum class Change { none, replaced, inserted };

    /// With a hint, the array begins with room for so many members.
    explicit HashMap2018(U32 sizeHint = 0) {
        if (sizeHint != 0) {
            enlarge(sizeHint);
        }
    }
    ~HashMap2018() {
        while (capacity_ != 0) { // the destructor of a value may have inserted members
            memberDelAll();
        }
        iteratorsDetach();
    }
    HashMap2018(HashMap2018 const&) = delete;
    HashMap2018& operator=(HashMap2018 const&) = delete;

    U32 memberCount() const noexcept { return count_; }

    /// The member of a key; null when there is none.
    Member const* lookupNode(K const& key) const noexcept {
        U32 const at = position(key, keyHash(key));
        return at == noPosition ? nullptr : &members_[at];
    }
    bool has(K const& key) const noexcept { return position(key, keyHash(key)) != noPosition; }

    /// Inserts a member, or replaces the value of the one that is there.
    void newMember(K key, V value) {
        U32 const hash = keyHash(key);
        U32 const at = position(key, hash);
        if (at == noPosition) {
            append(std::move(key), std::move(value), hash);
        } else {
            replace(at, std::move(value));
        }
    }

    /// As `newMember`, but an equal value is left as it is; says what changed.
    Change memberIs(K const& key, V const& value) {
        U32 const hash = keyHash(key);
        U32 const at = position(key, hash);
        if (at == noPosition) {
            append(K(key), V(value), hash);
            return Change::inserted;
        }
        if (members_[at].value_ == value) {
            return Change::none;
        }
        replace(at, V(value));
        return Change::replaced;
    }

    /// Replaces the value of a member of this collection by `value` and gives the former one back.
    V valueExchange(Member const& member, V value) noexcept {
        return std::exchange(members_[static_cast<U32>(&member - members_.get())].value_,
                             std::move(value));
    }

    /// Deletes a member and returns its value; nothing when there is none.
    std::optional<V> deleteMember(K const& key) noexcept {
        U32 const at =
            index_.take(key, keyHash(key), [&](U32 place) { return members_[place].key_ == key; });
        return at == noPosition ? std::nullopt : std::optional<V>(vacate(at));
    }

    /// Deletes a member of this collection, as `lookupNode` or a walk gave it, and returns its
    /// value. Costs less than the deletion by its key, which is neither hashed nor compared.
    V deleteMember(Member const& member) noexcept {
        auto const at = static_cast<U32>(&member - members_.get());
        index_.takeAt(member.key_, member.hash_, at);
        return vacate(at);
    }

    /// Deletes all members and their storage.
    void memberDelAll() noexcept {
        auto const former = std::exchange(members_, nullptr);
        U32 const formerEnd = std::exchange(end_, 0);
        first_ = 0;
        capacity_ = 0;
        count_ = 0;
        index_.reset();
        iteratorsAllGone(formerEnd);
        destroyMembers(former.get(), formerEnd);
    }

    /// The memory that the collection holds beside itself, in bytes.
    std::size_t storageSize() const noexcept {
        return capacity_ * sizeof(Member) + index_.storageSize();
    }

private:
    using Index = std::conditional_t<DirectKey<K>, DirectIndex, HashIndex>;

    U32 position(K const& key, U32 hash) const noexcept {
        return index_.find(key, hash, [&](U32 at) { return members_[at].key_ == key; });
    }
    bool isHole(U32 at) const noexcept { return members_[at].hash_ == 0; }

    void append(K key, V value, U32 hash);
    void replace(U32 at, V value) noexcept {
        [[maybe_unused]] V const former =
            std::exchange(members_[at].value_, std::move(value)); // destroyed last
    }

    /// Makes a hole of the place of a member, which the index has forgotten, and returns its value.
    [[gnu::always_inline]] V vacate(U32 at) noexcept {
        Member& member = members_[at];
        member.hash_ = 0;
        --count_;
        [[maybe_unused]] K const formerKey(std::move(member.key_));
        V former(std::move(member.value_));
        member.key_.~K();
        member.value_.~V();
        iteratorsMemberGone(at);
        passHoles();
        return former;
    }
    void makeRoom();
    void enlarge(U64 capacity);
    void moveMembers(Member* to) noexcept;
    void reindex() noexcept;
    void passHoles() noexcept;
    static void construct(Member& member, K&& key, V&& value, U32 hash) noexcept;
    static void destroyMembers(Member* members, U32 end) noexcept;

    struct Release {
        void operator()(Member* members) const noexcept { ::operator delete(members); }
    };

    using Members = std::unique_ptr<Member[], Release>;

    Members members_;
    U32 capacity_ = 0;
    U32 first_ = 0; ///< no member stands before it
    U32 end_ = 0;   ///< members and holes
    U32 count_ = 0; ///< members
    [[no_unique_address]] Index index_;
};

/// The position of a walk; see `HashMap2018`.
///
/// It stands on a member, on the place of a member that has been deleted ("stale"), or at the end.
/// It is registered with its collection, costs a few words, and must not be copied.
template <class K, class V> class HashMap2018<K, V>::Iterator : private HashMapBase::IteratorBase {
public:
    explicit Iterator(HashMap2018 const& collection) noexcept : IteratorBase(collection) {
        settle(collection.first_);
    }

    /// False at the end of the walk. A walk that stands on a deleted member is not at its end.
    explicit operator bool() const noexcept {
        return stale_ || (map() != nullptr && position_ < map()->end_);
    }

    /// Moves to the next member.
    void advance() noexcept {
        U32 const step = std::exchange(stale_, false) ? 0 : 1;
        settle(position_ + step);
    }

    /// The member that the iterator stands on; null when it has been deleted and at the end.
    Member const* currNodeMaybeStale() const noexcept {
        return stale_ || !*this ? nullptr : &map()->members_[position_];
    }

    /// The member that the iterator stands on. When that has been deleted the iterator first moves
    /// to the one that would have followed. Null at the end.
    Member const* currNodeNonStale() noexcept {
        if (std::exchange(stale_, false)) {
            settle(position_);
        }
        return currNodeMaybeStale();
    }

    /// The key and the value of the current member, which must not have been deleted.
    K const& key() const noexcept { return currNodeMaybeStale()->key(); }
    V const& value() const noexcept { return currNodeMaybeStale()->value(); }

private:
    HashMap2018 const* map() const noexcept { return static_cast<HashMap2018 const*>(base()); }

    /// Stands on the first member at or behind a position, or at the end.
    void settle(U32 position) noexcept {
        HashMap2018 const* const collection = map();
        U32 const end = collection == nullptr ? 0 : collection->end_;
        while (position < end && collection->isHole(position)) {
            ++position;
        }
        position_ = std::min(position, end);
    }
};

template <class K, class V> void HashMap2018<K, V>::append(K key, V value, U32 hash) {
    if (end_ == capacity_) {
        makeRoom();
    }
    if (!index_.hasRoom(key)) {
        index_.grow(key);
        reindex();
    }
    index_.insert(key, hash, end_);
    construct(members_[end_], std::move(key), std::move(value), hash);
    ++count_;
    ++end_;
}

/// Closes the holes when they are a third of the array or more, else makes the array larger by a
/// half.
template <class K, class V> void HashMap2018<K, V>::makeRoom() {
    U32 const holes = end_ - count_;
    if (holes != 0 && holes >= end_ / 3) {
        moveMembers(members_.get());
    } else {
        enlarge(capacity_ + capacity_ / 2ull + 4);
    }
    if (holes != 0) {
        index_.clear();
        reindex();
    }
}

template <class K, class V> void HashMap2018<K, V>::enlarge(U64 capacity) {
    if (capacity > noPosition) {
        throw std::length_error("Qor::HashMap2018: no more than 4,294,967,295 members");
    }
    Members larger(static_cast<Member*>(::operator new(capacity * sizeof(Member))));
    moveMembers(larger.get());
    members_ = std::move(larger);
    capacity_ = static_cast<U32>(capacity);
}

/// Moves the members, without the holes, to the front of another array or of their own. When there
/// were holes the index is then out of date.
template <class K, class V> void HashMap2018<K, V>::moveMembers(Member* to) noexcept {
    if (end_ != count_) {
        iteratorsCompact([this](U32 at) { return isHole(at); });
    }
    for (U32 from = first_; from < end_; ++from) {
        Member& member = members_[from];
        if (member.hash_ == 0) {
            continue;
        }
        if (to != &member) {
            construct(*to, std::move(member.key_), std::move(member.value_), member.hash_);
            member.key_.~K();
            member.value_.~V();
        }
        ++to;
    }
    first_ = 0;
    end_ = count_;
}

template <class K, class V> void HashMap2018<K, V>::reindex() noexcept {
    for (U32 at = first_; at < end_; ++at) {
        if (Member const& member = members_[at]; member.hash_ != 0) {
            index_.insert(member.key_, member.hash_, at);
        }
    }
}

/// Keeps walks from passing over the same holes again and again: those at the front are skipped
/// once and for all, so that a collection used as a queue costs the same however much has passed
/// through it, and those at the end are given up when no walk is under way.
template <class K, class V> void HashMap2018<K, V>::passHoles() noexcept {
    while (first_ != end_ && isHole(first_)) {
        ++first_;
    }
    if (iterated()) {
        return;
    }
    while (end_ != first_ && isHole(end_ - 1)) {
        --end_;
    }
    if (end_ == first_) {
        first_ = end_ = 0;
    }
}

template <class K, class V>
void HashMap2018<K, V>::construct(Member& member, K&& key, V&& value, U32 hash) noexcept {
    new (&member) Member;
    new (&member.key_) K(std::move(key));
    new (&member.value_) V(std::move(value));
    member.hash_ = hash;
}

template <class K, class V>
void HashMap2018<K, V>::destroyMembers(Member* members, U32 end) noexcept {
    for (U32 at = 0; at < end; ++at) {
        if (members[at].hash_ != 0) {
            members[at].key_.~K();
            members[at].value_.~V();
        }
    }
}

} // namespace Qor
