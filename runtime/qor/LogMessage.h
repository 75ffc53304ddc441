#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"
#include "qor/LogDescriptor.h"

#include <string_view>

namespace Qor {

/// One log message that passed its rate limit, as the log sink receives it (see `qor/Sinks.h`).
struct VORNIC_RUNTIME_API LogMessage {
    LogDescriptor const& descriptor;
    std::string_view text; ///< the whole message, the argument in its place; valid during the call
    U32 suppressed; ///< messages held back since the one before, as far as the handle counts them
};

} // namespace Qor
