#include "VornicL3Shared/model/Model.h"

#include <algorithm>

/// The pool of VP indices.
namespace ModelTest {
namespace {

constexpr U32 noBit = 0xFFFFFFFF;

} // namespace

bool Model::isBitSet(U32 index) { return index < bits().size() && bits()[index]; }

U32 Model::setBits() { return static_cast<U32>(std::count(bits().begin(), bits().end(), true)); }

void Model::vpBitmapIs(U32 id, U32 size, bool initialState) {
    auto& pool = machine().pool;
    if (pool && pool->id == id && pool->bits.size() == size && pool->initialState == initialState) {
        return;
    }
    pool = Pool{id, initialState, std::vector<bool>(size, initialState)};
}

void Model::setVpBitmap(U32 index) {
    if (index > machine().settings.tableSize) {
        return;
    }
    check(!isBitSet(index), "!vpBitmap()->isBitSet( vpIndex )",
          "void VornicCentral::VpIndexAllocatorDirSm::setVpBitmap(U32)");
    if (index < bits().size()) {
        bits()[index] = true;
    }
}

U32 Model::findClear(bool preferHigh) {
    U32 found = noBit;
    for (U32 at = 0; at < bits().size(); ++at) {
        if (!bits()[at]) {
            found = at;
            if (!preferHigh) {
                break;
            }
        }
    }
    return found;
}

U32 Model::allocVpIndex(bool preferHigh) {
    if (setBits() == machine().settings.tableSize) {
        trace(5, "allocVpIndex", " VpIndex full return invalidVirtualPort");
        return invalidIndex;
    }
    U32 const index = findClear(preferHigh);
    trace(5, "allocVpIndex", " index allocated is: ", index);
    check(index != noBit, "vpIndex != Bask::HBitmap::null()",
          "U16 VornicCentral::VpIndexAllocatorDirSm::allocVpIndex(bool)");
    setVpBitmap(index);
    return index & 0xFFFF;
}

void Model::freeVpIndex(U32 index) {
    if (index == invalidIndex) {
        return;
    }
    trace(5, "freeVpIndex", " index freed is: ", index);
    if (index < bits().size()) {
        bits()[index] = false;
    }
}

} // namespace ModelTest
