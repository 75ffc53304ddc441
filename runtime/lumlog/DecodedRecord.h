#pragma once

#include "lumlog/DecodedArg.h"
#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <string>
#include <vector>

namespace Lumlog {

/// One record of a ring buffer, in words.
struct VORNIC_RUNTIME_API DecodedRecord {
    U64 sequence = 0; ///< the number of the record, from 0 on, since the ring was built
    U64 time = 0;     ///< nanoseconds since 1970 (UTC)
    U32 level = 0;
    std::string unit;
    U32 line = 0;
    U32 msgId = 0;
    std::string text;
    std::vector<DecodedArg> args{}; ///< what of the text varies from record to record

    friend bool operator==(DecodedRecord const&, DecodedRecord const&) = default;
};

} // namespace Lumlog
