#pragma once

#include "language/Words.h"
#include "lumlog/Reader.h"

#include <cstddef>
#include <span>

namespace VpAgent {

/// A reader of the ring number `number`, counted from 1, of those within `bytes` that hold records;
/// when none does, an empty ring is the first. Throws `Refusal`, which names `file`, when there is
/// no such ring.
///
/// A core file also holds copies of a ring's header that lie about on stacks: they have no records.
Lumlog::Reader ringWithin(std::span<std::byte const> bytes, std::size_t number, Word const& file);

/// Writes a ring's bytes to a file, whole or not at all. A file that is there is replaced only when
/// it is empty or begins with a ring, as an older dump does, and nothing is made in the place of
/// one of the state file's companions. Throws `Refusal` with the place, and has then changed
/// nothing.
void saveRing(std::span<std::byte const> ring, Word const& file);

} // namespace VpAgent
