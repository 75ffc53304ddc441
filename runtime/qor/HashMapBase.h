#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <cstddef>

namespace Qor {

/// What every keyed collection has whatever its types: the list of the walks under way.
///
/// A walk registers itself, so that the collection can tell it when its member goes, when holes are
/// closed and when the collection itself goes.
class VORNIC_RUNTIME_API HashMapBase {
public:
    class IteratorBase {
    public:
        IteratorBase(IteratorBase const&) = delete;
        IteratorBase& operator=(IteratorBase const&) = delete;

    protected:
        explicit IteratorBase(HashMapBase const& map) noexcept;
        ~IteratorBase();

        HashMapBase const* base() const noexcept { return map_; }

        U32 position_ = 0;   ///< of the current member; when stale, the walk goes on from here
        bool stale_ = false; ///< the current member has been deleted

    private:
        friend class HashMapBase;

        HashMapBase const* map_; ///< null once the collection is gone
        IteratorBase* next_;
        IteratorBase** link_; ///< the pointer that points here
    };

protected:
    HashMapBase() noexcept = default;
    ~HashMapBase() = default;

    bool iterated() const noexcept { return iterators_ != nullptr; }

    void iteratorsDetach() noexcept;
    void iteratorsMemberGone(U32 position) noexcept {
        for (IteratorBase* it = iterators_; it != nullptr; it = it->next_) {
            it->stale_ = it->stale_ || it->position_ == position;
        }
    }
    void iteratorsAllGone(U32 end) noexcept;

    /// Lowers the position of each walk by the number of holes before it.
    template <class IsHole> void iteratorsCompact(IsHole isHole) noexcept {
        for (IteratorBase* it = iterators_; it != nullptr; it = it->next_) {
            U32 holes = 0;
            for (U32 at = 0; at < it->position_; ++at) {
                holes += isHole(at) ? 1u : 0u;
            }
            it->position_ -= holes;
        }
    }

private:
    mutable IteratorBase* iterators_ = nullptr;
};

} // namespace Qor
