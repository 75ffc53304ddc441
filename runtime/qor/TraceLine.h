#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <string_view>

namespace Qor {

class TraceHandle;

/// One finished trace line, as the trace sink receives it (see `qor/Sinks.h`). The texts are valid
/// during the call.
struct VORNIC_RUNTIME_API TraceLine {
    TraceHandle const& handle;
    U32 level;
    std::string_view file; ///< the source unit of the call site
    U32 line;
    std::string_view function; ///< the name of the function that holds the call site
    std::string_view text;
};

} // namespace Qor
