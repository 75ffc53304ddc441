#pragma once

#include "state/Database.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpReference.h"

#include <cstddef>

namespace VpAgent {

inline bool hasIndex(VornicCentral::VirtualPort vPort) noexcept { return vPort.valid(); }
inline bool hasIndex(VornicCentral::VpReference const& reference) noexcept {
    return reference.vPort().valid();
}

/// How many members of a collection hold the invalid virtual port.
template <class Collection> std::size_t withoutIndex(Collection const& collection) {
    std::size_t count = 0;
    forEachMember(collection, [&](auto const&, auto const& value) {
        if (!hasIndex(value)) {
            ++count;
        }
    });
    return count;
}

} // namespace VpAgent
