#include "output/JsonWriter.h"

#include "text/Utf8.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <charconv>

namespace VpAgent {

namespace {

/// Whether the character stands for itself in a JSON text.
bool standsForItself(char c) noexcept { return isPlain(c) && c != '"' && c != '\\'; }

/// Whether a terminal may act upon the text; JSON itself escapes only the characters below U+0020.
bool holdsInvisible(std::string_view text) noexcept {
    for (std::size_t at = 0; at < text.size();) {
        Utf8Character const character = utf8At(text, at);
        if (character.length != 0 && isInvisible(character.codePoint)) {
            return true;
        }
        at += character.length == 0 ? 1 : character.length;
    }
    return false;
}

} // namespace

JsonWriter& JsonWriter::key(std::string_view name) {
    comma();
    string(name);
    out_ += ": ";
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::text(std::string_view value) {
    comma();
    string(value);
    return *this;
}

JsonWriter& JsonWriter::number(U64 value) {
    std::array<char, 20> digits{};
    auto const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    return word({digits.data(), static_cast<std::size_t>(end - digits.data())});
}

JsonWriter& JsonWriter::open(char bracket) {
    comma();
    out_ += bracket;
    first_ = true;
    return *this;
}

JsonWriter& JsonWriter::close(char bracket) {
    out_ += bracket;
    first_ = false;
    return *this;
}

JsonWriter& JsonWriter::word(std::string_view text) {
    comma();
    out_ += text;
    return *this;
}

void JsonWriter::comma() {
    if (!first_) {
        out_ += ", ";
    }
    first_ = false;
}

void JsonWriter::string(std::string_view value) {
    if (std::all_of(value.begin(), value.end(), standsForItself)) {
        out_ += '"';
        out_ += value;
        out_ += '"';
        return;
    }
    nlohmann::json const json(value);
    out_ += json.dump(-1, ' ', holdsInvisible(value), nlohmann::json::error_handler_t::replace);
}

} // namespace VpAgent
