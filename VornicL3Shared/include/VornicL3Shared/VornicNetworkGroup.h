#pragma once

#include "VornicL3Shared/Export.h"
#include "pelo/Integers.h"
#include "qor/EnumType.h"

#include <cstddef>
#include <iosfwd>
#include <string>
#include <string_view>

/// The enumerators of `VpNetworkGroup` with their values: X(NAME, VALUE) for each.
#define VORNIC_VP_NETWORK_GROUPS(X)                                                                \
    X(invalidVpNetworkGroup, 0)                                                                    \
    X(remoteVpNetworkGroup, 1)                                                                     \
    X(peerlinkVpNetworkGroup, 2)                                                                   \
    X(accessPointNetworkGroup, 3)                                                                  \
    X(mlagVpNetworkGroup, 4)                                                                       \
    X(vxlanHostArpNdpNetworkGroup, 5)                                                              \
    X(v6MlagPeerVpNetworkGroup, 6)                                                                 \
    X(isolatedPortNetworkGroup, 7)

namespace VornicCentral {

/// The network group to which a virtual port belongs, for the components that program groups: the
/// VP index allocator neither reads nor writes it.
enum class VpNetworkGroup : U32 {
#define VORNIC_ENUMERATOR(name, value) name = value,
    VORNIC_VP_NETWORK_GROUPS(VORNIC_ENUMERATOR)
#undef VORNIC_ENUMERATOR
};

/// The enumeration as the runtime knows it, registered as "VornicCentral::VpNetworkGroup" when the
/// library is loaded.
VORNICL3SHARED_API Qor::EnumType<U32> const& vpNetworkGroupType();

/// The enumerator of a number or a name; `Qor::UnknownNameException` when there is none.
VORNICL3SHARED_API VpNetworkGroup VpNetworkGroupInstance(U32 value);
VORNICL3SHARED_API VpNetworkGroup VpNetworkGroupInstance(std::string_view name);

/// The enumerator's name; "VornicCentral::VpNetworkGroup(9)" for a value that has none.
VORNICL3SHARED_API std::string stringValue(VpNetworkGroup group);

/// Reads an enumerator's name at the beginning of [begin, end); gives the number of characters that
/// it takes, or 0, with `group` as it was, when no enumerator's name stands there.
VORNICL3SHARED_API std::size_t sequenceToValue(char const* begin, char const* end,
                                               VpNetworkGroup& group);

VORNICL3SHARED_API std::ostream& operator<<(std::ostream& out, VpNetworkGroup group);

} // namespace VornicCentral
