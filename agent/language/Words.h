#pragma once

#include "text/Refusal.h"

#include <cstddef>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace VpAgent {

/// One word of a command line: what it says, and where it stands.
struct Word {
    std::string_view text; ///< without quotes and escapes
    std::string_view raw;  ///< as it stands in the line
    std::size_t at = 0;    ///< where `raw` begins in the line

    Place place() const noexcept { return {at, raw.size()}; }

    /// The place of all that follows `offset` bytes into `text`.
    Place placeFrom(std::size_t offset) const noexcept;
};

/// The words of a command line.
///
/// Words stand apart by blanks and tabs. A word may stand in double quotes, in which `\"` and `\\`
/// are a quote and a backslash; a quote begins a word and ends it. `#` outside quotes begins a
/// comment. Control characters and bytes that are not UTF-8 are refused in words, and so is
/// anything else after a backslash in quotes.
///
/// Reading a line copies only words that hold an escape and reuses the room of the line before.
class Words {
public:
    /// Throws `Refusal` with the place; the words are then those before it. `line` must outlive
    /// their use.
    void read(std::string_view line);

    std::span<Word const> all() const noexcept { return words_; }

    /// Where a further word would stand: behind the last one.
    std::size_t end() const noexcept {
        return words_.empty() ? 0 : words_.back().at + words_.back().raw.size();
    }

private:
    std::size_t readBare(std::size_t at);
    std::size_t readQuoted(std::size_t at);
    void checkUtf8(std::size_t from, std::size_t to) const;
    [[noreturn]] void refuseCharacter(std::size_t at) const;

    std::string_view line_;
    std::vector<Word> words_;
    std::string unescaped_; ///< the texts of words with escapes; never grows while a line is read
};

/// Where the last word of `line` begins, whether or not it is complete: at its end behind a blank.
std::size_t lastWordAt(std::string_view line) noexcept;

/// `text` as a word of a command line: in quotes when it has to be.
std::string asWord(std::string_view text);

/// `text` as a word in quotes.
std::string asQuotedWord(std::string_view text);

} // namespace VpAgent
