// The bitmap of CRoaring, which holds the free indices: it knows its least and its greatest member,
// and nothing of those it does not hold.

#include "pool/Work.h"

#include <roaring/roaring.h>

#include <memory>

namespace {

class RoaringPool {
public:
    explicit RoaringPool(U32 size) : free_(roaring_bitmap_from_range(0, size, 1)) {}

    void giveBack(U32 index) { roaring_bitmap_add(free_.get(), index); }
    U32 takeLowest() { return take(roaring_bitmap_minimum(free_.get())); }
    U32 takeHighest() { return take(highest()); }
    U32 highest() const { return roaring_bitmap_maximum(free_.get()); }
    U32 highestUpTo(U32 hi) const {
        roaring_uint32_iterator_t at;
        roaring_init_iterator(free_.get(), &at);
        if (!roaring_move_uint32_iterator_equalorlarger(&at, hi)) {
            return highest();
        }
        if (at.current_value != hi) {
            roaring_previous_uint32_iterator(&at);
        }
        return at.current_value;
    }

private:
    U32 take(U32 index) {
        roaring_bitmap_remove(free_.get(), index);
        return index;
    }

    struct Free {
        void operator()(roaring_bitmap_t* bitmap) const { roaring_bitmap_free(bitmap); }
    };
    std::unique_ptr<roaring_bitmap_t, Free> const free_;
};

[[maybe_unused]] bool const registered = [] {
    Bench::addPoolCases<RoaringPool, Bench::End::lowest>("roaring_bitmap");
    Bench::addPoolCases<RoaringPool, Bench::End::highest>("roaring_bitmap");
    Bench::addSearchCases<RoaringPool>("roaring_bitmap");
    return true;
}();

} // namespace
