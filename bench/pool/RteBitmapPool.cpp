// The bitmap of DPDK, with a one for every free index, as its scan looks for ones. The scan goes on
// from where it was; it is sent back to the beginning for the lowest one.

#include "pool/Work.h"

#include <rte_bitmap.h>

#include <cstdlib>
#include <memory>

namespace {

class RteBitmapPool {
public:
    explicit RteBitmapPool(U32 size)
        : memory_(static_cast<U8*>(std::aligned_alloc(RTE_CACHE_LINE_SIZE, footprint(size)))),
          free_(rte_bitmap_init(size, memory_.get(), footprint(size))) {
        for (U32 first = 0; first < size; first += 64) {
            rte_bitmap_set_slab(free_, first, ~U64{0});
        }
    }

    void giveBack(U32 index) { rte_bitmap_set(free_, index); }
    U32 takeLowest() {
        U32 first = 0;
        U64 slab = 0;
        __rte_bitmap_scan_init(free_);
        rte_bitmap_scan(free_, &first, &slab);
        U32 const index = first + static_cast<U32>(__builtin_ctzll(slab));
        rte_bitmap_clear(free_, index);
        return index;
    }

private:
    static U32 footprint(U32 size) { return rte_bitmap_get_memory_footprint(size); }

    struct Free {
        void operator()(U8* memory) const { std::free(memory); }
    };
    std::unique_ptr<U8[], Free> const memory_;
    rte_bitmap* const free_; // the beginning of the memory
};

[[maybe_unused]] bool const registered = [] {
    Bench::addPoolCases<RteBitmapPool, Bench::End::lowest>("rte_bitmap");
    return true;
}();

} // namespace
