#pragma once

#include "bask/Bitmap.h"
#include "pelo/Integers.h"

#include <vector>

namespace VpAgent {

/// Indices side by side, both ends included.
struct Run {
    U32 first;
    U32 last;

    friend bool operator==(Run const&, Run const&) = default;
};

/// The indices in use, as runs in ascending order.
std::vector<Run> usedRuns(Bask::Bitmap const& pool);

} // namespace VpAgent
