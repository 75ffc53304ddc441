#pragma once

#include "pelo/Export.h"

#include <cstddef>
#include <string>
#include <string_view>

namespace Pelo {

/// One character of a UTF-8 text.
struct VORNIC_RUNTIME_API Utf8Character {
    char32_t codePoint = 0;
    std::size_t length = 0; ///< in bytes; 0 when the bytes are not UTF-8
};

/// The character that begins `offset` bytes into `text`, which must be less than its size. Overlong
/// forms, surrogates and values above U+10FFFF are not UTF-8.
VORNIC_RUNTIME_API Utf8Character utf8At(std::string_view text, std::size_t offset) noexcept;

/// Whether a terminal would act upon the character instead of showing it: U+0000 to U+001F and
/// U+007F to U+009F.
constexpr bool isControl(char32_t codePoint) noexcept {
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

/// Whether a terminal may act upon the character without showing anything in its place: a control
/// character, one that turns the direction of what stands around it, ends a line, or has no width.
/// Such a character makes a text look like another one.
constexpr bool isInvisible(char32_t codePoint) noexcept {
    auto const within = [codePoint](char32_t first, char32_t last) {
        return first <= codePoint && codePoint <= last;
    };
    return isControl(codePoint) || codePoint == 0xAD || codePoint == 0x61C || codePoint == 0x180E ||
           within(0x200B, 0x200F) || within(0x2028, 0x202E) || within(0x2060, 0x206F) ||
           codePoint == 0xFEFF || within(0xFFF9, 0xFFFB) || within(0xE0000, 0xE007F);
}

/// The number of characters; a byte that is not UTF-8 counts as one.
VORNIC_RUNTIME_API std::size_t utf8Length(std::string_view text) noexcept;

/// `text` in a form that is safe to show: each byte of an invisible character, and each that is not
/// UTF-8, becomes four characters as `\x1B`. A backslash stays as it is, so the form is for people:
/// it cannot be read back.
VORNIC_RUNTIME_API std::string printable(std::string_view text);

/// `byte` as `0x1B`.
VORNIC_RUNTIME_API std::string hexByte(unsigned char byte);

} // namespace Pelo
