#pragma once

#include "lumlog/MsgDescriptor.h"
#include "lumlog/Reader.h"
#include "lumlog/Record.h"
#include "lumlog/RingBuffer.h"
#include "lumlog/RingFormat.h"
#include "pelo/Integers.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstring>
#include <memory>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Lumlog {

inline std::ostream& operator<<(std::ostream& out, DecodedRecord const& record) {
    return out << record.sequence << " " << record.time << " " << record.unit << ":" << record.line
               << " level " << record.level << " message " << record.msgId << " \"" << record.text
               << "\"";
}

/// The texts of the records that a ring, or a copy of one, holds.
inline std::vector<std::string> textsIn(std::span<std::byte const> bytes) {
    std::vector<std::string> texts;
    for (DecodedRecord const& record : Reader(bytes).rest()) {
        texts.push_back(record.text);
    }
    return texts;
}

/// A copy of exactly as many bytes, so that the address sanitizer sees a read past the end.
class Dump {
public:
    explicit Dump(std::span<std::byte const> bytes)
        : size_(bytes.size()), bytes_(new std::byte[bytes.size()]) {
        std::ranges::copy(bytes, bytes_.get());
    }

    std::span<std::byte> bytes() { return {bytes_.get(), size_}; }

private:
    std::size_t size_;
    std::unique_ptr<std::byte[]> bytes_;
};

/// Changes the first description in a copy of a ring, as only somebody would who means harm: the
/// check is right afterwards. `change` gets the header and the texts behind it.
template <class Change> void forgeDescription(std::span<std::byte> ring, Change change) {
    RingFormat::RingHeader ringHeader;
    std::memcpy(&ringHeader, ring.data(), sizeof ringHeader);
    auto const descriptors = ring.subspan(ringHeader.descriptorOffset);
    RingFormat::DescriptorHeader header;
    std::memcpy(&header, descriptors.data(), sizeof header);
    auto const bytes = descriptors.first(header.size);
    change(header, bytes.subspan(sizeof header));
    std::memcpy(bytes.data(), &header, sizeof header);
    header.check = RingFormat::descriptorCheck(bytes);
    std::memcpy(bytes.data(), &header, sizeof header);
}

/// A ring of its own, the smallest that there is.
class RingTest : public testing::Test {
protected:
    /// Writes a record of a varying text and a number.
    void write(std::string_view text, U32 number = 0) {
        static constinit MsgDescriptor site("unit", 12, 3);
        record(ring_, site, "name ", text, " number ", number);
    }

    std::vector<std::string> texts() const { return textsIn(ring_.bytes()); }

    RingBuffer ring_{RingBuffer::minSize};
};

} // namespace Lumlog
