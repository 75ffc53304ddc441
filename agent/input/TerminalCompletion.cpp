#include "input/TerminalCompletion.h"

#include "language/Completion.h"
#include "language/Words.h"
#include "text/Utf8.h"

#include <editline/readline.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

namespace {

// The line editor calls plain functions, so what they need stands here.
Agent const* agentAtTerminal = nullptr;

constexpr int blank = 0x20;

std::size_t behindCharacter(std::string_view text, std::size_t at) {
    return at + std::max(utf8At(text, at).length, std::size_t{1});
}

/// The first `count` characters of the line.
std::string_view beginning(std::string_view line, int count) {
    std::size_t at = 0;
    for (int passed = 0; passed < count && at < line.size(); ++passed) {
        at = behindCharacter(line, at);
    }
    return line.substr(0, at);
}

/// What all words begin with, in whole characters.
std::string commonBeginning(std::vector<std::string> const& words) {
    std::string_view const first = words[0];
    std::string_view common;
    while (common.size() < first.size()) {
        std::string_view const longer = first.substr(0, behindCharacter(first, common.size()));
        if (!std::all_of(words.begin(), words.end(),
                         [longer](auto const& word) { return word.starts_with(longer); })) {
            break;
        }
        common = longer;
    }
    return std::string(common);
}

bool isVisible(std::string const& word) { return printable(word) == word; }

/// The names of files that begin with `text`, as the line editor finds them.
std::vector<std::string> fileNames(char const* text) {
    std::vector<std::string> names;
    while (char* const name = rl_filename_completion_function(text, names.empty() ? 0 : 1)) {
        names.emplace_back(name);
        std::free(name);
    }
    return names;
}

/// The words as the line editor takes them, and frees them: before them what they have in common.
char** asMatches(std::vector<std::string> const& words) {
    if (words.empty()) {
        return nullptr;
    }
    auto* const matches = static_cast<char**>(std::calloc(words.size() + 2, sizeof(char*)));
    if (matches != nullptr) {
        matches[0] = ::strdup(commonBeginning(words).c_str());
        std::transform(words.begin(), words.end(), matches + 1,
                       [](std::string const& word) { return ::strdup(word.c_str()); });
    }
    return matches;
}

/// `text` is what the line editor takes for the word and replaces. It is the end of ours, which may
/// be in quotes and hold blanks. `end` counts characters.
char** completeWord(char const* text, int, int end) {
    std::string_view const typed = beginning(rl_line_buffer, end);
    Completion completion = complete(typed, *agentAtTerminal);
    // The line editor shows names as they are; of files that is left to it where all can be seen.
    std::vector<std::string> files;
    if (completion.files) {
        files = fileNames(text);
    }
    bool const allVisible = std::all_of(files.begin(), files.end(), isVisible);
    rl_attempted_completion_over = completion.files && allVisible ? 0 : 1;
    if (!allVisible) {
        std::erase_if(files, [](std::string const& name) { return !isVisible(name); });
        return asMatches(files);
    }
    std::erase_if(completion.words, [](std::string const& word) { return !isVisible(word); });
    rl_completion_append_character = completion.goesOn ? 0 : blank;
    std::size_t const length = typed.size() - lastWordAt(typed);
    std::size_t const replaced = std::strlen(text);
    if (replaced > length) {
        return nullptr;
    }
    for (std::string& word : completion.words) {
        word.erase(0, length - replaced);
    }
    return asMatches(completion.words);
}

} // namespace

void completeFor(Agent const* agent) {
    agentAtTerminal = agent;
    rl_basic_word_break_characters = " \t\""; // a quote too, for the names of files
    rl_attempted_completion_function = agent == nullptr ? nullptr : completeWord;
}

} // namespace VpAgent
