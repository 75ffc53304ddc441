#pragma once

#include "pelo/Export.h"
#include "qor/LogHandle.h"

#include <string_view>

namespace Qor {

/// Emits the handle's message, with `text` as its argument, to the log sink, unless the rate limit
/// holds it back. An exception on the way ends the process.
VORNIC_RUNTIME_API void log(LogHandle& handle, std::string_view text) noexcept;

} // namespace Qor
