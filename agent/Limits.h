#pragma once

#include "pelo/Integers.h"

#include <cstddef>
#include <cstdint>

/// How much of each kind of outside data the program takes. Beyond it a reader refuses, before it
/// has used more memory or time than the limit stands for. docs/limits.md lists them, with what is
/// not limited and why.
namespace VpAgent::Limits {

/// Bytes of a line of a script, of standard input or of a terminal, without its end.
inline constexpr std::size_t line = std::size_t{1} << 20;

/// Characters of a terminal's screen, rows times columns.
inline constexpr U32 terminal = 1'000'000;

/// Bytes of the line editor's settings.
inline constexpr std::int64_t editorSettings = std::int64_t{1} << 20;

/// Bytes of a client's name, also of the name of a multicast group API.
inline constexpr std::size_t name = 255;

/// Bytes of a key text, also of the name of a multicast interface.
inline constexpr std::size_t keyText = 4096;

/// Bytes of an outside text that a message repeats.
inline constexpr std::size_t quote = 4096;

/// Clients that are known at a time, those included that `client remove` took out, and the names
/// that one `put reference` gives.
inline constexpr std::size_t clients = 4096;

/// Requests of all clients together; and just as many entries of all statuses, of the reference
/// list, of those that wait and of the boot status may be written by hand. Sixteen for each index
/// that there is.
inline constexpr std::size_t keys = std::size_t{1} << 20;

/// Interfaces in one multicast set.
inline constexpr std::size_t interfaces = 4096;

/// Bytes of a file that is imported.
inline constexpr std::size_t importFile = std::size_t{16} << 20;

/// Objects and arrays within each other in such a file.
inline constexpr std::size_t jsonDepth = 100;

/// Bytes of a file in which a ring buffer is looked for.
inline constexpr U64 ringFile = U64{4} << 30;

/// Bytes of a state file. Its log may be twice as long.
inline constexpr U64 stateFile = U64{4} << 30;

/// Bytes of one row in a state file.
inline constexpr int stateRow = 16 << 20;

} // namespace VpAgent::Limits
