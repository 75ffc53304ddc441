#include "statefile/WalFile.h"

#include "pelo/Integers.h"
#include "statefile/Companion.h"
#include "statefile/Rows.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace VpAgent {

namespace {

/// The layout of the log, as the file format of SQLite fixes it. Numbers are big-endian.
constexpr std::size_t headerSize = 32;
constexpr std::size_t frameHeaderSize = 24;
constexpr U32 magic = 0x377F0682; ///< plus one when checksums read words as big-endian

using Bytes = std::string_view;

U32 bigEndian(Bytes bytes, std::size_t at) {
    U32 value = 0;
    for (std::size_t each = 0; each < 4; ++each) {
        value = value << 8 | static_cast<unsigned char>(bytes[at + each]);
    }
    return value;
}

U32 littleEndian(Bytes bytes, std::size_t at) {
    U32 value = 0;
    for (std::size_t each = 4; each-- > 0;) {
        value = value << 8 | static_cast<unsigned char>(bytes[at + each]);
    }
    return value;
}

/// The running checksum of the log.
class Checksum {
public:
    explicit Checksum(bool bigWords) : word_(bigWords ? &bigEndian : &littleEndian) {}

    void add(Bytes bytes) {
        for (std::size_t at = 0; at + 8 <= bytes.size(); at += 8) {
            first_ += word_(bytes, at) + second_;
            second_ += word_(bytes, at + 4) + first_;
        }
    }

    /// Whether the checksum stands at `at`.
    bool standsAt(Bytes bytes, std::size_t at) const {
        return bigEndian(bytes, at) == first_ && bigEndian(bytes, at + 4) == second_;
    }

private:
    U32 (*word_)(Bytes, std::size_t);
    U32 first_ = 0;
    U32 second_ = 0;
};

struct Header {
    Bytes bytes;
    U32 pageSize = bigEndian(bytes, 8);
    Bytes salts = bytes.substr(16, 8);
    Checksum checksum{(bigEndian(bytes, 0) & 1) != 0};

    bool valid() {
        checksum.add(bytes.substr(0, 24));
        bool const knownMagic = (bigEndian(bytes, 0) & ~U32{1}) == magic;
        bool const isPower =
            pageSize >= 512 && pageSize <= 65536 && (pageSize & (pageSize - 1)) == 0;
        return knownMagic && isPower && checksum.standsAt(bytes, 24);
    }
};

struct Frames {
    bool any = false;
    U32 transactionsBehindBad = 0; ///< that end behind the first bad frame
};

Frames readFrames(CompanionReader const& file, Header header) {
    std::string frame(frameHeaderSize + header.pageSize, '\0');
    bool good = true;
    Frames frames;
    while (file.read(frame) == frame.size()) {
        frames.any = true;
        Bytes const bytes = frame;
        bool const ofThisLog = bytes.substr(8, 8) == header.salts;
        bool const endsTransaction = bigEndian(bytes, 4) != 0;
        if (good) {
            header.checksum.add(bytes.substr(0, 8));
            header.checksum.add(bytes.substr(frameHeaderSize));
            good = ofThisLog && header.checksum.standsAt(bytes, 16);
        }
        frames.transactionsBehindBad += !good && ofThisLog && endsTransaction ? 1 : 0;
    }
    return frames;
}

/// A log without a whole frame: nothing had reached the disk when the program or the machine
/// stopped, or it is not the log that was.
void checkNotNeeded(bool needed) {
    if (needed) {
        throw Damage("the run before was cut off, and its log beside the file is missing or empty");
    }
}

} // namespace

void checkWal(std::string const& path, bool needed) {
    CompanionReader const file(path);
    std::array<char, headerSize> bytes{};
    auto const isZero = [](char c) { return c == '\0'; };
    if (file.read(bytes) != headerSize || std::all_of(bytes.begin(), bytes.end(), isZero)) {
        checkNotNeeded(needed);
        return;
    }
    Header header{Bytes(bytes.data(), headerSize)};
    if (!header.valid()) {
        throw Damage("the header of its log does not check out");
    }
    Frames const frames = readFrames(file, header);
    if (frames.transactionsBehindBad > 1) {
        throw Damage("a frame of its log does not check out");
    }
    if (!frames.any) {
        checkNotNeeded(needed);
    }
}

} // namespace VpAgent
