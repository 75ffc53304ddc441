// The pool as the allocator uses it: a search in the whole range, then the bit is set.

#include "bask/Bitmap.h"
#include "pelo/Ptr.h"
#include "pool/Work.h"

namespace {

using Bask::Preference;

class OurPool {
public:
    explicit OurPool(U32 size)
        : bits_(Pelo::newNode<Bask::Bitmap>(U64{0}, size, Bask::HBitmap::BitState::clear)) {}

    void giveBack(U32 index) { bits_->clearBit(index); }
    U32 takeLowest() { return take(Preference::low); }
    U32 takeHighest() { return take(Preference::high); }
    U32 highest() const { return highestUpTo(bits_->size() - 1); }
    U32 highestUpTo(U32 hi) const { return bits_->findClearBitInRange(0, hi, Preference::high); }

private:
    U32 take(Preference preference) {
        U32 const index = bits_->findClearBitInRange(0, bits_->size() - 1, preference);
        bits_->setBit(index);
        return index;
    }

    Pelo::Ptr<Bask::Bitmap> const bits_;
};

[[maybe_unused]] bool const registered = [] {
    Bench::addPoolCases<OurPool, Bench::End::lowest>("ours");
    Bench::addPoolCases<OurPool, Bench::End::highest>("ours");
    Bench::addSearchCases<OurPool>("ours");
    return true;
}();

} // namespace
