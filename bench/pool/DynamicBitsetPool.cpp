// boost::dynamic_bitset, with a one for every free index: it can look for ones only, and only from
// the lowest on.

#include "pool/Work.h"

#include <boost/dynamic_bitset.hpp>

namespace {

class DynamicBitsetPool {
public:
    explicit DynamicBitsetPool(U32 size) : free_(size) { free_.set(); }

    void giveBack(U32 index) { free_.set(index); }
    U32 takeLowest() {
        auto const index = free_.find_first();
        free_.reset(index);
        return static_cast<U32>(index);
    }

private:
    boost::dynamic_bitset<> free_;
};

[[maybe_unused]] bool const registered = [] {
    Bench::addPoolCases<DynamicBitsetPool, Bench::End::lowest>("boost::dynamic_bitset");
    return true;
}();

} // namespace
