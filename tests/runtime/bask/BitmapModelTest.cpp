#include "bask/Bitmap.h"
#include "pelo/Ptr.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <iterator>
#include <limits>
#include <set>
#include <string>
#include <vector>

namespace Bask {
namespace {

using BitState = HBitmap::BitState;

constexpr U32 unbounded = std::numeric_limits<U32>::max();

/// The slow and obvious bitmap: the set of the bits that are clear.
class ModelBitmap {
public:
    ModelBitmap(U32 size, BitState state) : size_(size) {
        if (state == BitState::clear) {
            for (U32 index = 0; index < size; ++index) {
                clear_.insert(clear_.end(), index);
            }
        }
    }

    void setBit(U32 index) { clear_.erase(index); }
    void clearBit(U32 index) {
        if (index < size_) {
            clear_.insert(index);
        }
    }
    bool isBitSet(U32 index) const { return index < size_ && !clear_.contains(index); }
    U32 numBitsInSetState() const { return size_ - static_cast<U32>(clear_.size()); }
    U32 find(U32 lo, U32 hi, Preference preference) const {
        if (lo > hi) {
            return HBitmap::null();
        }
        auto const begin = clear_.lower_bound(lo);
        auto const end = clear_.upper_bound(hi);
        if (begin == end) {
            return HBitmap::null();
        }
        return preference == Preference::low ? *begin : *std::prev(end);
    }

private:
    U32 size_;
    std::set<U32> clear_;
};

struct ModelCase {
    U32 size;
    BitState state;
};

class BitmapAgainstModel : public testing::TestWithParam<ModelCase> {
protected:
    /// Compares everything that can be asked around one place.
    void compare(U32 lo, U32 hi) {
        ASSERT_EQ(bitmap_->numBitsInSetState(), model_.numBitsInSetState());
        ASSERT_EQ(bitmap_->isBitSet(lo), model_.isBitSet(lo)) << lo;
        for (auto const preference : {Preference::low, Preference::high}) {
            ASSERT_EQ(bitmap_->findClearBitInRange(lo, hi, preference),
                      model_.find(lo, hi, preference))
                << "from " << lo << " to " << hi << " preference " << static_cast<int>(preference);
        }
    }

    U32 size_ = GetParam().size;
    Pelo::Ptr<Bitmap> bitmap_ = Pelo::newNode<Bitmap>(U64{0}, GetParam().size, GetParam().state);
    ModelBitmap model_{GetParam().size, GetParam().state};
};

/// Runs of neighbours fill and free whole words, so that the upper levels change often.
TEST_P(BitmapAgainstModel, AgreesAfterEveryRandomStep) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    auto const place = [&] { return random.below(size_ + 70); };
    for (int step = 0; step < 400; ++step) {
        U32 const first = place();
        U32 const count = random.oneIn(4) ? random.below(300) : 1;
        bool const set = random.oneIn(2);
        for (U32 index = first; index < first + count; ++index) {
            set ? bitmap_->setBit(index) : bitmap_->clearBit(index);
            set ? model_.setBit(index) : model_.clearBit(index);
        }
        ASSERT_NO_FATAL_FAILURE(compare(first, unbounded));
        ASSERT_NO_FATAL_FAILURE(compare(0, place()));
        ASSERT_NO_FATAL_FAILURE(compare(place(), place()));
        ASSERT_NO_FATAL_FAILURE(compare(0, unbounded));
    }
    for (U32 index = 0; index < size_; ++index) {
        ASSERT_EQ(bitmap_->isBitSet(index), model_.isBitSet(index)) << index;
    }
}

std::vector<ModelCase> modelCases() {
    std::vector<ModelCase> cases;
    for (U32 const size : {0u, 1u, 2u, 3u, 4u, 5u, 6u, 7u, 8u, 63u, 64u, 65u, 4095u, 4096u, 4097u,
                           65535u, 65536u, 262145u}) {
        cases.push_back({size, BitState::clear});
        cases.push_back({size, BitState::set});
    }
    return cases;
}

std::string modelCaseName(testing::TestParamInfo<ModelCase> const& testCase) {
    return std::to_string(testCase.param.size) +
           (testCase.param.state == BitState::set ? "AllSet" : "AllClear");
}

INSTANTIATE_TEST_SUITE_P(Sizes, BitmapAgainstModel, testing::ValuesIn(modelCases()), modelCaseName);

} // namespace
} // namespace Bask
