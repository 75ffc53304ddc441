#include "language/Parse.h"

#include "Limits.h"
#include "pelo/Decimal.h"
#include "text/Utf8.h"

namespace VpAgent {

Refusal badWord(std::string_view role, Word const& word, Pelo::ParseError const& error) {
    std::string const message =
        "bad " + std::string(role) + ' ' + inQuotes(word.text) + ", expected " + error.expected;
    bool const within = error.at < word.text.size();
    return {message, within ? word.placeFrom(error.at) : word.place()};
}

std::optional<Pelo::ParseError> nameFault(std::string_view text) {
    if (text.empty() || text.size() > Limits::name) {
        return Pelo::ParseError{0, "a name of 1 to 255 bytes"};
    }
    for (std::size_t at = plainEnd(text, 0); at < text.size(); at = plainEnd(text, at)) {
        Utf8Character const character = utf8At(text, at);
        if (character.length == 0 || isControl(character.codePoint)) {
            return Pelo::ParseError{at, "a name without control characters"};
        }
        at += character.length;
    }
    return std::nullopt;
}

void checkName(Word const& word, std::string_view role) {
    if (auto const fault = nameFault(word.text)) {
        throw badWord(role, word, *fault);
    }
}

U16 parseIndex(Word const& word) {
    auto const index = Pelo::parseDecimal(word.text, 65535);
    if (!index) {
        throw badWord("index", word, index.error());
    }
    return static_cast<U16>(*index);
}

} // namespace VpAgent
