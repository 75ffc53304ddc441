// The reader of ring buffers on any bytes, as they stand in damaged dumps and core files.

#include "common/Input.h"
#include "lumlog/CtfWriter.h"
#include "lumlog/Reader.h"
#include "lumlog/RingFormat.h"
#include "pelo/Hash.h"
#include "ring/RingFile.h"

#include <cstring>
#include <span>
#include <vector>

namespace {

using namespace Lumlog::RingFormat;
using Fuzz::expect;
using Bytes = std::vector<std::byte>;

/// The first byte of an input says which checks are made right, so that changes behind them are
/// not refused at once.
constexpr U8 mendHeader = 1;
constexpr U8 mendDescriptors = 2;

template <class T> T valueAt(Bytes const& bytes, std::size_t at) {
    T value;
    std::memcpy(&value, bytes.data() + at, sizeof value);
    return value;
}

void mendCheckOfHeader(Bytes& bytes) {
    U64 const check = Pelo::hashBytes(bytes.data(), fixedPartSize);
    std::memcpy(bytes.data() + offsetof(RingHeader, check), &check, sizeof check);
}

void mendChecksOfDescriptors(Bytes& bytes) {
    for (std::size_t at = sizeof(RingHeader); at + sizeof(DescriptorHeader) <= bytes.size();) {
        std::size_t const size = valueAt<DescriptorHeader>(bytes, at).size;
        if (size < sizeof(DescriptorHeader) || size % unit != 0 || size > bytes.size() - at) {
            return;
        }
        U32 const check = descriptorCheck(std::span(bytes).subspan(at, size));
        std::memcpy(bytes.data() + at + offsetof(DescriptorHeader, check), &check, sizeof check);
        at += size;
    }
}

/// A vector that was never larger, so that the address sanitizer sees a read past its end.
Bytes bytesOf(Fuzz::Input input) {
    U8 const mends = input.byte();
    std::string_view const text = input.rest();
    Bytes bytes(text.size());
    std::ranges::transform(text, bytes.begin(), [](char each) { return std::byte(each); });
    if ((mends & mendDescriptors) != 0 && bytes.size() >= sizeof(RingHeader)) {
        mendChecksOfDescriptors(bytes);
    }
    if ((mends & mendHeader) != 0 && bytes.size() >= sizeof(RingHeader)) {
        mendCheckOfHeader(bytes);
    }
    return bytes;
}

void readAll(Bytes const& bytes) {
    Lumlog::Reader reader(bytes);
    expect(reader.found() || !reader.hasRecords(), "records without a ring");
    std::size_t const messages = reader.messages().size();
    std::size_t records = 0;
    while (auto const record = reader.next()) {
        ++records;
    }
    expect(messages <= bytes.size() && records <= bytes.size(), "more than the bytes can hold");
    expect(!reader.next(), "a record behind the last one");
}

void writeTrace(Bytes const& bytes) {
    Lumlog::Reader reader(bytes);
    Lumlog::CtfWriter const trace(reader);
    expect(!trace.metadata().empty(), "a trace without its description");
}

/// As the agent finds a ring in a file.
void findRings(Bytes const& bytes) {
    VpAgent::Word const file{"file", "file", 0};
    try {
        for (std::size_t number = 1; number < 4; ++number) {
            VpAgent::ringWithin(bytes, number, file).rest();
        }
    } catch (VpAgent::Refusal const& refusal) {
        expect(refusal.place().has_value(), "a refusal without a place");
    }
}

} // namespace

int LLVMFuzzerTestOneInput(U8 const* data, std::size_t size) {
    Bytes const bytes = bytesOf(Fuzz::Input(data, size));
    readAll(bytes);
    writeTrace(bytes);
    findRings(bytes);
    return 0;
}
