#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <string>
#include <string_view>
#include <vector>

namespace Lumlog {

/// What a ring says about all records of one message, as `MsgDescriptor` does in the process.
struct VORNIC_RUNTIME_API DecodedMessage {
    /// The text of a record whose message the ring does not describe (any more).
    static constexpr std::string_view lost = "(the description of this message is lost)";

    U32 msgId = 0;
    U32 level = 0;
    std::string unit;
    U32 line = 0;
    std::string format;             ///< one code letter for each piece, see `lumlog/Args.h`
    std::vector<std::string> words; ///< the literal pieces

    /// The text of a record with the kinds of its arguments in their places, as in
    /// `allocVpIndex index allocated is: {u16}`.
    std::string wording() const;

    friend bool operator==(DecodedMessage const&, DecodedMessage const&) = default;
};

} // namespace Lumlog
