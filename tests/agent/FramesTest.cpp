#include "state/Frames.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <array>
#include <string>

namespace VpAgent {
namespace {

/// The bytes of frames, as they come out of a pipe.
std::string bytesOf(std::initializer_list<Frame> frames) {
    std::array<int, 2> ends{};
    EXPECT_EQ(::pipe(ends.data()), 0);
    for (Frame const& frame : frames) {
        writeFrame(ends[1], frame);
    }
    ::close(ends[1]);
    std::string bytes(65536, '\0');
    bytes.resize(static_cast<std::size_t>(::read(ends[0], bytes.data(), bytes.size())));
    ::close(ends[0]);
    return bytes;
}

TEST(Frames, ComeOutAsTheyWentIn) {
    std::string const bytes = bytesOf({{Frame::Kind::trace, 5, "verify", {}},
                                       {Frame::Kind::assertion, 0, "a == b", "void f() const"}});
    FrameReader reader(bytes);
    auto const trace = reader.next();
    ASSERT_TRUE(trace);
    EXPECT_EQ(trace->kind, Frame::Kind::trace);
    EXPECT_EQ(trace->number, 5u);
    EXPECT_EQ(trace->first, "verify");
    auto const assertion = reader.next();
    ASSERT_TRUE(assertion);
    EXPECT_EQ(assertion->kind, Frame::Kind::assertion);
    EXPECT_EQ(assertion->first, "a == b");
    EXPECT_EQ(assertion->second, "void f() const");
    EXPECT_FALSE(reader.next());
}

TEST(Frames, AreLeftOutWhenTheyAreNotWhole) {
    std::string const bytes = bytesOf({{Frame::Kind::passed, 1, "first", "second"}});
    for (std::size_t size = 0; size < bytes.size(); ++size) {
        EXPECT_FALSE(FrameReader(std::string_view(bytes).substr(0, size)).next()) << size;
    }
}

} // namespace
} // namespace VpAgent
