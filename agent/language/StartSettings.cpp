#include "language/StartSettings.h"

#include "pelo/Decimal.h"

namespace VpAgent {

namespace {

using Fault = std::optional<Pelo::ParseError>;

Fault setTableSize(StartSettings& settings, std::string_view value) {
    auto const size = Pelo::parseDecimal(value, largestTable);
    if (!size) {
        return size.error();
    }
    settings.tableSize = static_cast<U32>(*size);
    return std::nullopt;
}

template <bool StartSettings::*which>
Fault setSwitch(StartSettings& settings, std::string_view value) {
    if (value != "on" && value != "off") {
        return Pelo::ParseError{0, "on or off"};
    }
    settings.*which = value == "on";
    return std::nullopt;
}

constexpr std::array<Setting, 4> settings{{
    {"table-size", "N", "entries of the VP table, 0 to 65535", setTableSize},
    {"reallocation", "on|off", "hand released indices to waiting virtual ports",
     setSwitch<&StartSettings::reallocation>},
    {"vfi-forwarding", "on|off", "passed on to every allocator",
     setSwitch<&StartSettings::vfiForwarding>},
    {"remote-low", "on|off", "remote VTEPs take the lowest free index",
     setSwitch<&StartSettings::remoteLow>},
}};

} // namespace

std::array<Setting, 4> const& settingList() { return settings; }

std::string settingWords() {
    std::string words;
    for (Setting const& setting : settings) {
        words += words.empty() ? "[" : " [";
        words += std::string(setting.name) + '=' + std::string(setting.values) + ']';
    }
    return words;
}

} // namespace VpAgent
