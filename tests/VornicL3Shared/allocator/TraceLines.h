#pragma once

#include "VornicL3Shared/support/Capture.h"

#include <string>

namespace Test {

/// Those of the lines that one operation leaves itself; each line begins with its level.
inline Lines linesOf(Lines const& all, std::string const& operation) {
    Lines lines;
    for (std::string const& line : all) {
        if (line.substr(2, operation.size()) == operation) {
            lines.push_back(line);
        }
    }
    return lines;
}

} // namespace Test
