#pragma once

#include "output/Reporter.h"

namespace VpAgent {

/// Where commands come from, line by line.
class LineSource {
public:
    virtual ~LineSource() = default;

    /// Reads the next line into `line`, whose texts hold until the next call. False at the end.
    /// Throws `Refusal` when reading fails or a line is too long.
    virtual bool next(CommandLine& line) = 0;
};

} // namespace VpAgent
