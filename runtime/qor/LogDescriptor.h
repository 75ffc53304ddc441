#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

namespace Qor {

/// What is fixed about one log message. All texts are literals.
struct VORNIC_RUNTIME_API LogDescriptor {
    char const* id;
    char const* format; ///< the message, with one `%s` where its argument goes
    char const* explanation;
    char const* recommendedAction;
    U32 severity; ///< 0 (emergency) to 7 (debug)
};

} // namespace Qor
