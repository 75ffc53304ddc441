#pragma once

#include <chrono>

namespace Pelo {

/// A span of time in nanoseconds.
using Duration = std::chrono::nanoseconds;

} // namespace Pelo
