#pragma once

#include "language/Words.h"
#include "pelo/Integers.h"
#include "pelo/Parsed.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace VpAgent {

/// The refusal of a word that is not what it should be: `bad INDEX "70000", expected a number from
/// 0 to 65535`. The place is the part of the word that does not fit.
Refusal badWord(std::string_view role, Word const& word, Pelo::ParseError const& error);

/// Why `text` is not a client name; nothing when it is one. A name has 1 to 255 bytes of UTF-8 and
/// no control character.
std::optional<Pelo::ParseError> nameFault(std::string_view text);

/// Throws `Refusal` unless the word has the form of a client name; `role` says what it is.
void checkName(Word const& word, std::string_view role = "client name");

/// The word as a value, read by `parse(std::string_view) -> Pelo::Parsed<Value>`.
template <class Parse> auto parseWord(std::string_view role, Word const& word, Parse parse) {
    auto value = parse(word.text);
    if (!value) {
        throw badWord(role, word, value.error());
    }
    return *std::move(value);
}

/// A VP index, 0 to 65535.
U16 parseIndex(Word const& word);

} // namespace VpAgent
