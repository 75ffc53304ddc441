#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

class Agent;

/// What can stand where a person asks for completion.
struct Completion {
    std::vector<std::string>
        words;          ///< in the order of the alphabet, each beginning with what was typed
    bool files = false; ///< a file's name stands there

    friend bool operator==(Completion const&, Completion const&) = default;
};

/// What completes the last word of `typed`, which is empty behind a blank: commands, client names,
/// kind words, settings, views, the operations of the state machine. Keys and indices have no
/// completion.
Completion complete(std::string_view typed, Agent const& agent);

} // namespace VpAgent
