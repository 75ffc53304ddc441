#pragma once

#include "lumlog/Args.h"
#include "lumlog/MsgDescriptor.h"
#include "lumlog/RecordArgs.h"
#include "lumlog/RingBuffer.h"

#include <tuple>

namespace Lumlog {

/// Writes a record of the call site with these pieces (see `ArgTraits`) to the ring, if its message
/// is enabled there.
///
/// Literal pieces are known by the descriptor and cost nothing; numbers, addresses and texts are
/// copied. A record that is too large for the ring (over about 4,000 bytes, or a quarter of a small
/// ring) has its texts cut, from the last one back.
///
/// Every call for one descriptor must give pieces of the same types; the static descriptor of a
/// statement in a template does. An exception ends the process.
template <Piece... Pieces>
void record(RingBuffer& ring, MsgDescriptor& site, Pieces&&... pieces) noexcept {
    std::apply(
        [&](auto const&... args) { Internal::recordArgs(ring, site, Internal::handed(args)...); },
        std::tuple_cat(Internal::flatten(pieces)...));
}

} // namespace Lumlog
