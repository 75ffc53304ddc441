#include "state/Frames.h"

#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <type_traits>

namespace VpAgent {

namespace {

struct Header {
    std::size_t firstSize;
    std::size_t secondSize;
    U32 number;
    U32 kind;
};
static_assert(std::has_unique_object_representations_v<Header>, "it is written byte by byte");

} // namespace

void writeFrame(int file, Frame const& frame) noexcept {
    Header const header{frame.first.size(), frame.second.size(), frame.number,
                        static_cast<U32>(frame.kind)};
    std::string bytes(sizeof header, '\0');
    std::memcpy(bytes.data(), &header, sizeof header);
    bytes += frame.first;
    bytes += frame.second;
    std::string_view rest = bytes;
    while (!rest.empty()) {
        ssize_t const written = ::write(file, rest.data(), rest.size());
        if (written < 0 && errno != EINTR) {
            return;
        }
        rest.remove_prefix(written < 0 ? 0 : static_cast<std::size_t>(written));
    }
}

std::optional<Frame> FrameReader::next() {
    Header header{};
    if (rest_.size() < sizeof header) {
        return std::nullopt;
    }
    std::memcpy(&header, rest_.data(), sizeof header);
    std::string_view const texts = rest_.substr(sizeof header);
    if (texts.size() < header.firstSize + header.secondSize) {
        return std::nullopt;
    }
    rest_ = texts.substr(header.firstSize + header.secondSize);
    return Frame{static_cast<Frame::Kind>(header.kind), header.number,
                 texts.substr(0, header.firstSize),
                 texts.substr(header.firstSize, header.secondSize)};
}

} // namespace VpAgent
