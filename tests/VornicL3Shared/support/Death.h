#pragma once

#include <string>
#include <string_view>

namespace Test {

/// A text as a regular expression that matches it.
inline std::string escaped(std::string_view text) {
    std::string pattern;
    for (char const character : text) {
        if (std::string_view("\\^$.|?*+()[]{}").find(character) != std::string_view::npos) {
            pattern += '\\';
        }
        pattern += character;
    }
    return pattern;
}

/// What a failed assertion of the allocator unit reports, for EXPECT_DEATH.
inline std::string assertionFailure(std::string_view signature, std::string_view text) {
    return "/src/VornicL3Shared/VornicL3VpIndexAllocator:[0-9]+: " + escaped(signature) +
           ": Assertion '" + escaped(text) + "' failed\\.";
}

} // namespace Test
