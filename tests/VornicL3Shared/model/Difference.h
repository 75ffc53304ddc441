#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace ModelTest {

std::vector<std::string> linesOf(std::string_view text);

/// Where two lists of lines part: what they have in common before, and then each list's own lines.
std::string differenceOf(std::vector<std::string> const& expected,
                         std::vector<std::string> const& seen);

} // namespace ModelTest
