#include "view/Pool.h"

namespace VpAgent {

std::vector<Run> usedRuns(Bask::Bitmap const& pool) {
    std::vector<Run> runs;
    for (U32 index = 0; index < pool.size(); ++index) {
        if (!pool.isBitSet(index)) {
            continue;
        }
        if (runs.empty() || runs.back().last + 1 != index) {
            runs.push_back({index, index});
        }
        runs.back().last = index;
    }
    return runs;
}

} // namespace VpAgent
