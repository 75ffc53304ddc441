#pragma once

#include "language/Words.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

/// One step of a path: what it says, and which part of the word it is.
struct Step {
    std::string text;
    std::size_t at = 0;     ///< where it begins in the word's text
    std::size_t length = 0; ///< of its form in the word's text

    /// Its part of the command line, for a message.
    Place place(Word const& word) const noexcept;
};

/// The steps of a path, which is one word: `configs/vpIndexConfig/bgp`. In a step, `%2F` stands for
/// a slash and `%25` for a percent sign.
///
/// At least one step; a step may be empty. Throws `Refusal` with the place of any other `%`.
std::vector<Step> pathSteps(Word const& word);

/// `text` in the form that it has as a step.
std::string asStep(std::string_view text);

} // namespace VpAgent
