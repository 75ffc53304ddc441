#pragma once

#include "pelo/Export.h"
#include "pelo/Hash.h"
#include "pelo/Integers.h"

#include <array>
#include <cstddef>
#include <span>

/// The layout of a ring buffer's memory, which is one block and describes itself:
///
///     RingHeader        what is where, and how far the writer has come
///     descriptor area   a DescriptorHeader and its texts, and so on
///     record area       a RecordHeader and its payload, and so on
///     overhang          room for the rest of the last record
///
/// Descriptors and records begin at multiples of 8 bytes. The size of the record area is a power of
/// two; a record that begins just before its end goes on into the overhang.
///
/// Positions count bytes from the first record on and never wrap; the place of position p in the
/// record area is p modulo its size. A record bears its own position, so a reader tells a whole
/// record from the remains of an older one, and finds its way again behind damaged bytes. All
/// numbers are in the byte order of the machine.
namespace Lumlog::RingFormat {

constexpr std::array<char, 16> magic{'L', 'u', 'm', 'l',  'o',  'g',    ' ',    'r',
                                     'i', 'n', 'g', '\r', '\n', '\x1a', '\x01', '\xfe'};
constexpr U32 version = 1;
constexpr U32 byteOrderMark = 0x01020304;
constexpr std::size_t unit = 8; ///< bytes; sizes and positions are multiples of it

/// The first part never changes after the ring is built.
struct RingHeader {
    std::array<char, 16> magic;
    U32 version;
    U32 byteOrder;
    U64 blockSize;
    U64 descriptorOffset;
    U64 descriptorSize;
    U64 recordOffset;
    U64 recordSize; ///< a power of two
    U64 maxRecordSize;
    U64 cookie;
    U64 check; ///< hash of all fields above
    U64 padding[5];

    U64 descriptorUsed; ///< bytes
    U64 reserved;       ///< the position up to which the writer may be writing
    U64 head;           ///< the position up to which records are whole
    U64 sequence;       ///< the number of the next record
    U64 padding2[4];
};
static_assert(sizeof(RingHeader) == 192);
constexpr std::size_t fixedPartSize = offsetof(RingHeader, check); ///< what `check` covers

struct DescriptorHeader {
    U32 size;  ///< bytes, of header and texts, a multiple of 8
    U32 check; ///< hash of all bytes behind it
    U16 msgId;
    U16 wordCount;
    U32 level;
    U32 line;
    U16 unitLength;
    U16 formatLength;
    // the unit; the format; for each literal a U16 length and the text
};
static_assert(sizeof(DescriptorHeader) == 24);

struct VORNIC_RUNTIME_API RecordHeader {
    U16 units; ///< size of header and payload in multiples of 8 bytes
    U16 msgId;
    U32 sequence; ///< the low half of the record's number
    U64 position; ///< exclusive or of the record's position and the cookie
    U64 time;     ///< nanoseconds since 1970 (UTC)
    // the arguments, unaligned, in the order of the format
};
static_assert(sizeof(RecordHeader) == 24);

/// What `check` is for a whole descriptor, header and texts.
inline U32 descriptorCheck(std::span<std::byte const> bytes) {
    std::size_t const covered = offsetof(DescriptorHeader, msgId);
    return static_cast<U32>(Pelo::hashBytes(bytes.data() + covered, bytes.size() - covered));
}

constexpr std::size_t roundedUp(std::size_t size) { return (size + unit - 1) / unit * unit; }

} // namespace Lumlog::RingFormat
