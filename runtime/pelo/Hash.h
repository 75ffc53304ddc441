#pragma once

#include "pelo/Export.h"
#include "pelo/Integers.h"

#include <cstddef>

namespace Pelo {

/// Mixes two words into one whose every bit depends on every bit of both (a folded 128-bit
/// product).
inline U64 hashMix(U64 a, U64 b) noexcept {
    __extension__ using Wide = unsigned __int128;
    Wide const product = static_cast<Wide>(a ^ 0x9E3779B97F4A7C15u) * (b ^ 0xD6E8FEB86659FD93u);
    return static_cast<U64>(product) ^ static_cast<U64>(product >> 64);
}

/// The hash of a run of bytes, the same in every process. Cost: one multiplication for each 8
/// bytes.
VORNIC_RUNTIME_API U64 hashBytes(void const* bytes, std::size_t size) noexcept;

} // namespace Pelo
