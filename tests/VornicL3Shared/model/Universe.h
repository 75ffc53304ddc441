#pragma once

#include "pelo/Integers.h"

#include <array>
#include <cstddef>
#include <string>
#include <vector>

namespace ModelTest {

/// The kinds of virtual port in their fixed order.
enum class Kind : std::size_t { remote, mlag, edge, vlan, efilter };
inline constexpr std::size_t kindCount = 5;
inline constexpr std::array<Kind, kindCount> fixedOrder = {Kind::remote, Kind::mlag, Kind::edge,
                                                           Kind::vlan, Kind::efilter};

/// A key is known by its number; what it looks like is written down in the universe.
using Key = std::size_t;

/// Everything that is ever printed of a key. What the key's kind does not have is empty.
struct KeyText {
    std::string text;
    std::string vtep;  ///< the address of a remote VTEP
    std::string group; ///< the tunnel group of a remote VTEP
    std::string intf;
    std::string vlan;
};

/// All keys that sequences use, in every kind the same number.
inline constexpr std::size_t keysPerKind = 8;
KeyText const& keyText(Kind kind, Key key);

/// All client names that sequences use, odd ones last. More than four of them can be on one key.
std::vector<std::string> const& clientNames();

char const* wordOf(Kind kind); ///< by which people name the kind, as `efilter`

} // namespace ModelTest
