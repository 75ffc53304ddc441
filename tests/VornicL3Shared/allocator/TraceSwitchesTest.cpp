// The levels and the ring buffer decide who is told of a trace.

#include "VornicL3Shared/allocator/TracedLife.h"
#include "allocator/Trace.h"
#include "lumlog/RingBuffer.h"

#include <gtest/gtest.h>

#include <ostream>

namespace Test {
namespace {

/// How a life ends, and what is told of it.
struct Told {
    std::string state;
    Lines lines;
    Lines records;

    friend bool operator==(Told const&, Told const&) = default;
    friend std::ostream& operator<<(std::ostream& out, Told const& told) {
        return out << told.lines.size() << " lines, " << told.records.size() << " records\n"
                   << told.state;
    }
};

Told told(bool levelsAreOn, bool ringIsThere) {
    TracedLife life;
    VornicCentral::vpTraceHandle().levelsMaskIs(levelsAreOn ? ~U64{0} : 0);
    if (!ringIsThere) {
        Lumlog::RingBuffer::currentIs(nullptr);
    }
    life.run();
    return {life.world.state(), life.world.capture.traces(), life.world.capture.ring()};
}

TEST(TraceSwitches, DecideWhoIsToldOfEachTraceAndNothingElse) {
    Told const all = told(true, true);
    EXPECT_GT(all.lines.size(), 100u);
    EXPECT_GT(all.records.size(), 100u);
    EXPECT_EQ(told(true, false), (Told{all.state, all.lines, {}}));
    EXPECT_EQ(told(false, true), (Told{all.state, {}, all.records}));
    EXPECT_EQ(told(false, false), (Told{all.state, {}, {}}));
}

} // namespace
} // namespace Test
