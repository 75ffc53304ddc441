#include "VornicL3Shared/model/multicast/McastStep.h"

#include <algorithm>
#include <array>
#include <random>

namespace ModelTest {

McastSteps mcastSteps(U64 seed, std::size_t count) {
    std::mt19937_64 engine(seed);
    auto const below = [&](U64 bound) { return engine() % bound; };
    static std::array<char const*, 4> const names = {"Ethernet1", "Ethernet2", "lo", "a b"};
    static std::array<U8, 5> const chips = {0, 1, 7, 128, 255};
    McastSteps steps;
    while (steps.size() < count) {
        McastStep step;
        step.verb = static_cast<McastVerb>(below(mcastVerbs));
        if (step.verb == McastVerb::clearChips && below(3) != 0) {
            step.verb = McastVerb::setChip;
        }
        step.chip = chips[below(chips.size())];
        for (char const* const name : names) {
            if (below(3) == 0) {
                step.intfs.emplace_back(name);
            }
        }
        std::sort(step.intfs.begin(), step.intfs.end());
        step.api = below(mcastApis);
        step.flag = below(2) == 0;
        step.generic = below(2) == 0;
        steps.push_back(step);
    }
    return steps;
}

std::string textOf(Intfs const& intfs) {
    std::string text = "[";
    for (std::string const& name : intfs) {
        text += (text.size() == 1 ? "" : ", ") + name;
    }
    return text + "]";
}

std::string textOf(McastStep const& step) {
    static std::array<char const*, mcastVerbs> const words = {
        "set chip",    "delete chip",  "clear chips", "look at chip",  "set interfaces",
        "install api", "install none", "make api",    "drop api",      "update chip",
        "update all",  "misuse",       "listen",      "make database", "drop database"};
    return std::string(words.at(static_cast<std::size_t>(step.verb))) +
           " chip=" + std::to_string(step.chip) + " intfs=" + textOf(step.intfs) +
           " api=" + std::to_string(step.api) + (step.flag ? " flag" : "") +
           (step.generic ? " generic" : "");
}

} // namespace ModelTest
