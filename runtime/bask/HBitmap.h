#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

namespace Bask {

/// What all bitmaps have in common.
struct VORNIC_RUNTIME_API HBitmap {
    enum class BitState { clear, set };

    /// The result of a search that finds no bit. No bitmap has a bit of this number.
    static constexpr U32 null() noexcept { return 0xFFFFFFFFu; }
};

/// Which end of a range a search prefers.
enum class Preference { low, high };

} // namespace Bask
