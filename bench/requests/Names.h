#pragma once

#include "pelo/Integers.h"

#include <string>

namespace Bench {

/// The virtual ports and clients of the cases, by number: 4,000 VLANs an interface.
inline constexpr U32 tableEntries = 65535;
inline constexpr U32 firstShared = 8; ///< an index for keys that the case does not count

inline std::string interfaceName(U32 at) { return "Ethernet" + std::to_string(at / 4000); }
inline U16 vlanNumber(U32 at) { return static_cast<U16>(at % 4000 + 1); }
inline std::string clientName(U32 at) { return "client" + std::to_string(at); }

} // namespace Bench
