#include "inspect/Path.h"

#include <algorithm>
#include <optional>

namespace VpAgent {

namespace {

constexpr std::string_view slash = "%2F";
constexpr std::string_view percent = "%25";

/// The character that an escape at the beginning of `text` stands for.
std::optional<char> unescaped(std::string_view text) {
    if (text.starts_with(slash) || text.starts_with("%2f")) {
        return '/';
    }
    return text.starts_with(percent) ? std::optional('%') : std::nullopt;
}

Step readStep(Word const& word, std::size_t at) {
    std::size_t const end = std::min(word.text.find('/', at), word.text.size());
    Step step{{}, at, end - at};
    while (at < end) {
        if (word.text[at] != '%') {
            step.text += word.text[at++];
            continue;
        }
        auto const character = unescaped(word.text.substr(at, end - at));
        if (!character) {
            Step const escape{{}, at, 1};
            throw Refusal("a percent sign in a path, expected %2F for a slash or %25 for a percent "
                          "sign",
                          escape.place(word));
        }
        step.text += *character;
        at += percent.size();
    }
    return step;
}

} // namespace

Place Step::place(Word const& word) const noexcept {
    std::size_t const from = word.placeFrom(at).at;
    return {from, std::max<std::size_t>(word.placeFrom(at + length).at - from, 1)};
}

std::vector<Step> pathSteps(Word const& word) {
    std::vector<Step> steps{readStep(word, 0)};
    while (steps.back().at + steps.back().length < word.text.size()) {
        steps.push_back(readStep(word, steps.back().at + steps.back().length + 1));
    }
    return steps;
}

std::string asStep(std::string_view text) {
    std::string step;
    for (char const c : text) {
        if (c == '/') {
            step += slash;
        } else if (c == '%') {
            step += percent;
        } else {
            step += c;
        }
    }
    return step;
}

} // namespace VpAgent
