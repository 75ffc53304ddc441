#include "qor/HashMapBase.h"

namespace Qor {

HashMapBase::IteratorBase::IteratorBase(HashMapBase const& map) noexcept
    : map_(&map), next_(map.iterators_), link_(&map.iterators_) {
    if (next_ != nullptr) {
        next_->link_ = &next_;
    }
    map.iterators_ = this;
}

HashMapBase::IteratorBase::~IteratorBase() {
    if (map_ == nullptr) {
        return;
    }
    *link_ = next_;
    if (next_ != nullptr) {
        next_->link_ = link_;
    }
}

void HashMapBase::iteratorsDetach() noexcept {
    while (iterators_ != nullptr) {
        IteratorBase& it = *iterators_;
        iterators_ = it.next_;
        it.map_ = nullptr;
        it.stale_ = false;
    }
}

void HashMapBase::iteratorsAllGone(U32 end) noexcept {
    for (IteratorBase* it = iterators_; it != nullptr; it = it->next_) {
        it->stale_ = it->stale_ || it->position_ < end;
        it->position_ = 0;
    }
}

} // namespace Qor
