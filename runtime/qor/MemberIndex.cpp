#include "qor/MemberIndex.h"

#include <algorithm>

namespace Qor {

void HashIndex::grow() {
    std::size_t const size = storage_ == nullptr ? 1 : groupCount() * 2;
    auto storage = std::make_unique<TagGroup[]>(size);
    rows_ = std::make_unique_for_overwrite<Row[]>(size);
    storage_ = std::move(storage);
    groups_ = storage_.get();
    mask_ = static_cast<U32>(size - 1);
    used_ = 0;
    limit_ = static_cast<U32>(size * (TagGroup::slotCount - 2));
}

void HashIndex::takeAmongOthers(U32 hash, U32 position) noexcept {
    forget(hash, locate(hash, [position](U32 at) { return at == position; }));
}

void HashIndex::clear() noexcept {
    if (storage_ != nullptr) {
        std::fill_n(storage_.get(), groupCount(), TagGroup());
    }
    used_ = 0;
}

void HashIndex::reset() noexcept {
    storage_.reset();
    rows_.reset();
    groups_ = &noMembers;
    mask_ = used_ = limit_ = 0;
}

void DirectIndex::grow(U32 index, U32 bound) {
    U32 const size = std::min(bound, std::max({index + 1, size_ * 2, U32{16}}));
    positions_ = std::make_unique_for_overwrite<U32[]>(size);
    size_ = size;
    clear();
}

void DirectIndex::clear() noexcept { std::fill_n(positions_.get(), size_, noPosition); }

void DirectIndex::reset() noexcept {
    positions_.reset();
    size_ = 0;
}

} // namespace Qor
