#pragma once

#include "vpstate/VpReference.h"

#include <initializer_list>

namespace Test {

/// A reference that holds an index, or none (65535), for clients.
inline VornicCentral::VpReference referenceOf(U16 vpIndex,
                                              std::initializer_list<char const*> names) {
    VornicCentral::VpReference reference{VornicCentral::VirtualPort(vpIndex)};
    for (char const* const name : names) {
        reference.referenceIs(name, true);
    }
    return reference;
}

} // namespace Test
