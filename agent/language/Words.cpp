#include "language/Words.h"

#include "text/Utf8.h"

#include <array>

namespace VpAgent {

namespace {

bool isBlank(char c) noexcept { return c == ' ' || c == '\t'; }

bool isAscii(char c) noexcept { return static_cast<unsigned char>(c) < 0x80; }

bool isAsciiControl(char c) noexcept {
    return isAscii(c) && isControl(static_cast<unsigned char>(c));
}

/// Whether the byte may stand in a bare word and needs no closer look.
bool isSimple(char c) noexcept {
    static constexpr auto simple = [] {
        std::array<bool, 256> table{};
        for (std::size_t byte = '!'; byte <= '~'; ++byte) {
            table[byte] = byte != '"' && byte != '#';
        }
        return table;
    }();
    return simple[static_cast<unsigned char>(c)];
}

/// Where the simple bytes that stand at `from` end.
std::size_t simpleEnd(std::string_view line, std::size_t from) noexcept {
    while (from < line.size() && isSimple(line[from])) {
        ++from;
    }
    return from;
}

} // namespace

Place Word::placeFrom(std::size_t offset) const noexcept {
    std::size_t skip = offset;
    if (!raw.empty() && raw[0] == '"') {
        skip = 1;
        for (std::size_t said = 0; said < offset; ++said) {
            skip += raw[skip] == '\\' ? 2u : 1u;
        }
    }
    return {at + skip, raw.size() - skip};
}

void Words::read(std::string_view line) {
    line_ = line;
    words_.clear();
    unescaped_.clear();
    for (std::size_t at = 0; at < line.size() && line[at] != '#';) {
        if (isBlank(line[at])) {
            ++at;
        } else {
            at = line[at] == '"' ? readQuoted(at) : readBare(at);
        }
    }
}

std::size_t Words::readBare(std::size_t at) {
    std::size_t end = simpleEnd(line_, at);
    bool ascii = true;
    for (; end < line_.size() && !isBlank(line_[end]) && line_[end] != '#'; ++end) {
        if (isAsciiControl(line_[end])) {
            refuseCharacter(end);
        }
        if (line_[end] == '"') {
            throw Refusal("a quote inside a word, expected a blank before the quote", {end, 1});
        }
        ascii = ascii && isAscii(line_[end]);
    }
    if (!ascii) {
        checkUtf8(at, end);
    }
    std::string_view const raw = line_.substr(at, end - at);
    words_.push_back({raw, raw, at});
    return end;
}

std::size_t Words::readQuoted(std::size_t at) {
    std::size_t end = at + 1;
    bool escapes = false;
    for (; end < line_.size() && line_[end] != '"'; ++end) {
        if (isAsciiControl(line_[end])) {
            refuseCharacter(end);
        }
        if (line_[end] == '\\') {
            if (end + 1 == line_.size() || (line_[end + 1] != '"' && line_[end + 1] != '\\')) {
                throw Refusal("a backslash in quotes, expected \\\" or \\\\", {end, 1});
            }
            escapes = true;
            ++end;
        }
    }
    if (end == line_.size()) {
        throw Refusal("the quote is not closed, expected another \" before the end of the line",
                      {at, end - at});
    }
    checkUtf8(at, end);
    std::size_t const next = end + 1;
    if (next < line_.size() && !isBlank(line_[next]) && line_[next] != '#') {
        throw Refusal("text behind a closing quote, expected a blank", {next, 1});
    }
    std::string_view text = line_.substr(at + 1, end - at - 1);
    if (escapes) {
        unescaped_.reserve(line_.size());
        std::size_t const from = unescaped_.size();
        for (std::size_t each = 0; each < text.size(); ++each) {
            each += text[each] == '\\' ? 1u : 0u;
            unescaped_ += text[each];
        }
        text = std::string_view(unescaped_).substr(from);
    }
    words_.push_back({text, line_.substr(at, next - at), at});
    return next;
}

void Words::checkUtf8(std::size_t from, std::size_t to) const {
    std::string_view const part = line_.substr(0, to);
    for (std::size_t at = from; at < to;) {
        Utf8Character const character = utf8At(part, at);
        if (character.length == 0 || isControl(character.codePoint)) {
            refuseCharacter(at);
        }
        at += character.length;
    }
}

void Words::refuseCharacter(std::size_t at) const {
    std::string const expected = "), expected printable text";
    Utf8Character const character = utf8At(line_, at);
    std::string const byte = hexByte(static_cast<unsigned char>(line_[at]));
    if (character.length == 0) {
        throw Refusal("a byte that is not UTF-8 (" + byte + expected, {at, 1});
    }
    std::string const name =
        character.length == 1
            ? byte
            : "U+00" + hexByte(static_cast<unsigned char>(character.codePoint)).substr(2);
    throw Refusal("a control character (" + name + expected, {at, character.length});
}

std::size_t lastWordAt(std::string_view line) noexcept {
    std::size_t start = 0;
    bool quoted = false;
    for (std::size_t at = 0; at < line.size(); ++at) {
        if (quoted && line[at] == '\\') {
            ++at;
        } else if (line[at] == '"' && (quoted || at == start)) {
            quoted = !quoted;
        } else if (!quoted && isBlank(line[at])) {
            start = at + 1;
        }
    }
    return start;
}

std::string asWord(std::string_view text) {
    bool const bare = !text.empty() && text.find_first_of(" \t\"#") == std::string_view::npos;
    return bare ? std::string(text) : asQuotedWord(text);
}

std::string asQuotedWord(std::string_view text) {
    std::string word = "\"";
    for (char const c : text) {
        if (c == '"' || c == '\\') {
            word += '\\';
        }
        word += c;
    }
    return word + '"';
}

} // namespace VpAgent
