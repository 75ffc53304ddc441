#include "pelo/Utf8.h"

#include <array>

namespace Pelo {

namespace {

unsigned char byteAt(std::string_view text, std::size_t offset) noexcept {
    return static_cast<unsigned char>(text[offset]);
}

/// The length that the first byte of a character announces, and the bits of the code point that it
/// holds.
Utf8Character leadByte(unsigned char byte) noexcept {
    if (byte < 0x80) {
        return {byte, 1};
    }
    if (byte >= 0xC2 && byte < 0xE0) {
        return {byte & 0x1Fu, 2};
    }
    if (byte >= 0xE0 && byte < 0xF0) {
        return {byte & 0x0Fu, 3};
    }
    if (byte >= 0xF0 && byte < 0xF5) {
        return {byte & 0x07u, 4};
    }
    return {};
}

bool isShortestForm(Utf8Character character) noexcept {
    constexpr std::array<char32_t, 5> lowest{0, 0, 0x80, 0x800, 0x10000};
    bool const surrogate = character.codePoint >= 0xD800 && character.codePoint < 0xE000;
    return character.codePoint >= lowest[character.length] && character.codePoint <= 0x10FFFF &&
           !surrogate;
}

char hexDigit(unsigned value) noexcept { return "0123456789ABCDEF"[value & 0xF]; }

} // namespace

Utf8Character utf8At(std::string_view text, std::size_t offset) noexcept {
    Utf8Character character = leadByte(byteAt(text, offset));
    if (character.length > text.size() - offset) {
        return {};
    }
    for (std::size_t at = 1; at < character.length; ++at) {
        unsigned char const byte = byteAt(text, offset + at);
        if ((byte & 0xC0) != 0x80) {
            return {};
        }
        character.codePoint = character.codePoint << 6 | (byte & 0x3Fu);
    }
    return character.length != 0 && isShortestForm(character) ? character : Utf8Character{};
}

std::size_t utf8Length(std::string_view text) noexcept {
    std::size_t count = 0;
    for (std::size_t at = 0; at < text.size(); ++count) {
        std::size_t const length = utf8At(text, at).length;
        at += length == 0 ? 1 : length;
    }
    return count;
}

std::string printable(std::string_view text) {
    std::string shown;
    shown.reserve(text.size());
    for (std::size_t at = 0; at < text.size();) {
        Utf8Character const character = utf8At(text, at);
        std::size_t const length = character.length == 0 ? 1 : character.length;
        if (character.length != 0 && !isInvisible(character.codePoint)) {
            shown.append(text, at, length);
        } else {
            for (std::size_t each = at; each < at + length; ++each) {
                shown +=
                    {'\\', 'x', hexDigit(byteAt(text, each) / 16u), hexDigit(byteAt(text, each))};
            }
        }
        at += length;
    }
    return shown;
}

std::string hexByte(unsigned char byte) { return {'0', 'x', hexDigit(byte / 16u), hexDigit(byte)}; }

} // namespace Pelo
