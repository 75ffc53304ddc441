#pragma once

#include "language/Words.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace VpAgent {

/// Which records of which ring buffer `show ring` shows, and as what.
struct RingOptions {
    Word const* from = nullptr;      ///< the file that holds the ring; null for that of the process
    std::size_t ring = 1;            ///< which of the file's rings
    Word const* ctf = nullptr;       ///< the folder to write a trace to; null to show the records
    std::optional<std::size_t> last; ///< no more records than these, the newest
    bool all = false;                ///< people see all of them
};

/// One option of `show ring`.
struct RingOption {
    std::string_view name;
    std::string_view value; ///< what stands behind it, for help; empty when nothing does
    bool path;              ///< the value is a file or a folder
    std::string_view meaning;
    void (*set)(RingOptions& options, Word const& value);
};

std::span<RingOption const> ringOptionList();

/// The option of that name, or null.
RingOption const* findRingOption(std::string_view name);

/// All of them as a command takes them: `[--from FILE] [--ring N] ...`.
std::string ringOptionWords();

/// Reads the options, each at most once. Throws `Refusal` with the place.
RingOptions parseRingOptions(std::span<Word const> words);

} // namespace VpAgent
