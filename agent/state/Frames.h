#pragma once

#include "pelo/Integers.h"

#include <optional>
#include <string>
#include <string_view>

namespace VpAgent {

/// One event that a copy of the process tells through a pipe: a kind, a number and two texts.
struct Frame {
    enum class Kind : char { trace, log, assertion, exception, passed };

    Kind kind;
    U32 number = 0;
    std::string_view first;
    std::string_view second;
};

/// Writes all of a frame; what cannot be written is lost.
void writeFrame(int file, Frame const& frame) noexcept;

/// Reads frames from the bytes that came through the pipe.
class FrameReader {
public:
    explicit FrameReader(std::string_view bytes) : rest_(bytes) {}

    /// The next frame; nothing when no whole frame is left.
    std::optional<Frame> next();

private:
    std::string_view rest_;
};

} // namespace VpAgent
