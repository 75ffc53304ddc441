#pragma once

#include <cstdint>

/// The platform's names of the fixed-width unsigned integers. They stand in the global namespace
/// because every namespace of the platform, and the text of its signatures, uses them unqualified.
using U8 = std::uint8_t;
using U16 = std::uint16_t;
using U32 = std::uint32_t;
using U64 = std::uint64_t;
