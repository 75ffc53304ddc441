#pragma once

#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <array>
#include <optional>
#include <string>
#include <string_view>

namespace VpAgent {

/// The values with which the state machine is created.
struct StartSettings {
    U32 tableSize = 16384;
    bool reallocation = true;
    bool vfiForwarding = false;
    bool remoteLow = false; ///< a remote VTEP takes the lowest free index

    friend bool operator==(StartSettings const&, StartSettings const&) = default;
};

/// The largest table: with one entry more, the invalid index 65535 would be given out.
inline constexpr U32 largestTable = 65535;

/// One setting, by the name that it has as an option (`--table-size 64`) and in commands
/// (`table-size=64`).
struct Setting {
    std::string_view name;
    std::string_view values; ///< what it takes, for help
    std::string_view meaning;
    std::optional<Pelo::ParseError> (*set)(StartSettings& settings, std::string_view value);
};

std::array<Setting, 4> const& settingList();

/// All of them as a command takes them: `[table-size=N] [reallocation=on|off] ...`.
std::string settingWords();

} // namespace VpAgent
