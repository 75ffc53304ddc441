#pragma once

#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"
#include "qor/TagGroup.h"

#include <array>
#include <bit>
#include <concepts>
#include <cstddef>
#include <memory>
#include <utility>

namespace Qor {

/// A key that is a small number and so can index an array: it says which number (`directIndex()`)
/// and the bound that no key reaches (`directBound`).
template <class Key>
concept DirectKey = requires(Key const& key) {
    { key.directIndex() } -> std::convertible_to<U32>;
    { Key::directBound } -> std::convertible_to<U32>;
};

/// The 32-bit hash by which a collection files a key: the low half of the key's `hash()`, each bit
/// of which must depend on the whole key (see `Pelo::hashMix`). It is odd, so that 0 can mark what
/// has no hash. For a `DirectKey`, which is found without one, it is 1.
template <class Key> U32 keyHash(Key const& key) noexcept {
    U64 hash = 0;
    if constexpr (std::integral<Key>) {
        hash = Pelo::hashMix(static_cast<U64>(key), 0);
    } else if constexpr (!DirectKey<Key>) {
        hash = key.hash();
    }
    return static_cast<U32>(hash) | 1;
}

/// Where a member of a collection is not.
inline constexpr U32 noPosition = 0xFFFFFFFF;

/// Finds the position of a member by the hash of its key: open addressing over groups of slots that
/// are compared at once, at most 6/7 full. Each group counts the members that found it full and
/// went on; a deletion takes the member out of the counts, so that the remains of old members
/// never make a search longer.
///
/// Cost: most often one group and one comparison of keys; none when there is no such key.
class VORNIC_RUNTIME_API HashIndex {
public:
    HashIndex() noexcept = default;
    HashIndex(HashIndex const&) = delete;
    HashIndex& operator=(HashIndex const&) = delete;

    /// The position of the member of this hash for which `same(position)` holds.
    template <class Key, class Same> U32 find(Key const&, U32 hash, Same same) const {
        return locate(hash, same).position;
    }

    /// As `find`, and forgets the member.
    template <class Key, class Same> U32 take(Key const&, U32 hash, Same same) {
        Place const place = locate(hash, same);
        if (place.position != noPosition) {
            forget(hash, place);
        }
        return place.position;
    }

    /// Forgets the member of this hash at this position, which must be here. Most often its tag
    /// alone says which slot is its own.
    template <class Key> void takeAt(Key const&, U32 hash, U32 position) noexcept {
        TagGroup& group = storage_[firstGroup(hash)];
        U32 const slots = group.matches(hash);
        bool const onlyOne = (slots & (slots - 1)) == 0;
        if (onlyOne && group.endsSearch()) [[likely]] {
            group.slotFree(static_cast<U32>(std::countr_zero(slots)));
            --used_;
        } else {
            takeAmongOthers(hash, position);
        }
    }

    /// Whether one more member can be inserted.
    template <class Key> bool hasRoom(Key const&) const noexcept { return used_ != limit_; }

    /// Makes more room and forgets all members. The only operation that may throw; it has then
    /// changed nothing.
    template <class Key> void grow(Key const&) { grow(); }

    /// Files a member that is not here yet. There must be room: see `hasRoom`.
    template <class Key> void insert(Key const&, U32 hash, U32 position) noexcept {
        insert(hash, position);
    }

    /// Forgets all members and keeps the room.
    void clear() noexcept;

    /// Forgets all members and gives the room back.
    void reset() noexcept;

    std::size_t storageSize() const noexcept {
        return storage_ == nullptr ? 0 : groupCount() * (sizeof(TagGroup) + sizeof(Row));
    }

private:
    /// The positions of the members in the slots of one group.
    struct alignas(64) Row {
        std::array<U32, TagGroup::slotCount> position;
    };
    struct Place {
        U32 position; ///< `noPosition` when the member is not there
        U32 group;
        U32 slot;
    };
    static constexpr TagGroup noMembers{};

    std::size_t groupCount() const noexcept { return std::size_t{mask_} + 1; }
    U32 firstGroup(U32 hash) const noexcept { return hash >> 1 & mask_; }
    U32 nextGroup(U32 group) const noexcept { return (group + 1) & mask_; }

    template <class Same> Place locate(U32 hash, Same same) const {
        U32 at = firstGroup(hash);
        for (U32 seen = 0; seen <= mask_; ++seen) {
            Row const* const row = rows_.get() + at;
            for (U32 slots = groups_[at].matches(hash); slots != 0; slots &= slots - 1) {
                __builtin_prefetch(row); // already while the tags are on their way
                auto const slot = static_cast<U32>(std::countr_zero(slots));
                U32 const position = row->position[slot];
                if (same(position)) [[likely]] {
                    return {position, at, slot};
                }
            }
            if (groups_[at].endsSearch()) [[likely]] {
                break;
            }
            at = nextGroup(at);
        }
        return {noPosition, 0, 0};
    }
    void insert(U32 hash, U32 position) noexcept {
        U32 at = firstGroup(hash);
        U32 slots = groups_[at].freeSlots();
        while (slots == 0) [[unlikely]] {
            storage_[at].passedInc();
            at = nextGroup(at);
            slots = groups_[at].freeSlots();
        }
        auto const slot = static_cast<U32>(std::countr_zero(slots));
        storage_[at].slotTake(slot, hash);
        rows_[at].position[slot] = position;
        ++used_;
    }
    void forget(U32 hash, Place place) noexcept {
        for (U32 at = firstGroup(hash); at != place.group; at = nextGroup(at)) {
            storage_[at].passedDec();
        }
        storage_[place.group].slotFree(place.slot);
        --used_;
    }
    void takeAmongOthers(U32 hash, U32 position) noexcept;
    void grow();

    std::unique_ptr<TagGroup[]> storage_;
    std::unique_ptr<Row[]> rows_;
    TagGroup const* groups_ = &noMembers; ///< those in `storage_`, else one that is always empty
    U32 mask_ = 0;                        ///< groups - 1; their number is a power of two
    U32 used_ = 0;                        ///< members
    U32 limit_ = 0;                       ///< members that have room
};

/// Finds the position of a member whose key is a small number: an array by that number, grown to
/// the largest seen. It has the operations of `HashIndex`.
///
/// Cost: one load.
class VORNIC_RUNTIME_API DirectIndex {
public:
    DirectIndex() noexcept = default;
    DirectIndex(DirectIndex const&) = delete;
    DirectIndex& operator=(DirectIndex const&) = delete;

    template <class Key, class Same> U32 find(Key const& key, U32, Same) const noexcept {
        U32 const at = key.directIndex();
        return at < size_ ? positions_[at] : noPosition;
    }
    template <class Key, class Same> U32 take(Key const& key, U32, Same) noexcept {
        U32 const at = key.directIndex();
        return at < size_ ? std::exchange(positions_[at], noPosition) : noPosition;
    }
    template <class Key> void takeAt(Key const& key, U32, U32) noexcept {
        positions_[key.directIndex()] = noPosition;
    }
    template <class Key> bool hasRoom(Key const& key) const noexcept {
        return key.directIndex() < size_;
    }
    template <class Key> void grow(Key const& key) { grow(key.directIndex(), Key::directBound); }
    template <class Key> void insert(Key const& key, U32, U32 position) noexcept {
        positions_[key.directIndex()] = position;
    }
    void clear() noexcept;
    void reset() noexcept;
    std::size_t storageSize() const noexcept { return size_ * sizeof(U32); }

private:
    void grow(U32 index, U32 bound);

    std::unique_ptr<U32[]> positions_;
    U32 size_ = 0;
};

} // namespace Qor
