#pragma once

#include "lumlog/DecodedMessage.h"

#include <span>
#include <string>
#include <string_view>

/// For `Lumlog::CtfWriter` only.
namespace Lumlog::Internal {

/// The description, in TSDL, of a stream with these event classes, one for each message. An event
/// is, without any padding:
///
///     U16 message number, U64 time that never goes back
///     U64 sequence, U64 time, U32 message number, U32 level, unit, U32 line
///     text, and the arguments as the message's format says
///
/// where a text ends with a zero byte, and an address is a text.
std::string ctfMetadata(std::span<DecodedMessage const> messages, std::string_view uuid);

} // namespace Lumlog::Internal
