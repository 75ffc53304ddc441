#pragma once

#include "pelo/Integers.h"

#include <string>
#include <vector>

namespace ModelTest {

/// A set of interfaces by their names, sorted.
using Intfs = std::vector<std::string>;

enum class McastVerb {
    setChip,
    delChip,
    clearChips,
    look,
    setIntfs,
    install,
    installNone,
    makeApi,
    dropApi,
    updateChip,
    updateAll,
    misuse, ///< another operation code than the one that calls
    listen,
    makeDatabase,
    dropDatabase,
};
inline constexpr U64 mcastVerbs = 15;

/// One step on the layer-3 multicast records. It does nothing where there is nothing to work on.
struct McastStep {
    McastVerb verb = McastVerb::look;
    U8 chip = 0;
    Intfs intfs;
    std::size_t api = 0;
    bool flag = false;
    bool generic = false; ///< through generic access
};
using McastSteps = std::vector<McastStep>;

inline constexpr std::size_t mcastApis = 3;

/// The steps of a seed; the same seed gives the same steps.
McastSteps mcastSteps(U64 seed, std::size_t count);

std::string textOf(McastStep const& step);
/// As `[Ethernet1, lo]`.
std::string textOf(Intfs const& intfs);

} // namespace ModelTest
