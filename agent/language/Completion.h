#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

class Agent;

/// What can stand where a person asks for completion.
struct Completion {
    std::vector<std::string>
        words;           ///< in the order of the alphabet, each beginning with what was typed
    bool files = false;  ///< a file's name stands there
    bool goesOn = false; ///< the only word is not all of it: no blank belongs behind it

    friend bool operator==(Completion const&, Completion const&) = default;
};

/// What completes the last word of `typed`, which is empty behind a blank: commands, client names,
/// kind words, settings, views, chips that have interfaces, operations, types, and paths step by
/// step. The keys of requests and indices have no completion. A word that was begun with a quote is
/// completed as one in quotes; the closing quote is left out while it goes on.
Completion complete(std::string_view typed, Agent const& agent);

} // namespace VpAgent
