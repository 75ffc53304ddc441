#include "qor/TraceHandle.h"

#include "SinkFixture.h"

#include <gtest/gtest.h>

#include <memory>

namespace Qor {
namespace {

TEST(TraceHandle, BeginsWithAllLevelsOnOrOff) {
    TraceHandle const off("name", false);
    TraceHandle const on("name", true);
    EXPECT_EQ(off.name(), "name");
    EXPECT_EQ(off.levelsMask(), 0u);
    EXPECT_EQ(on.levelsMask(), ~U64{0});
    for (U32 level = 0; level < TraceHandle::levelCount; ++level) {
        EXPECT_FALSE(off.isOn(level));
        EXPECT_TRUE(on.isOn(level));
    }
}

TEST(TraceHandle, LevelIsBitOfTheMask) {
    TraceHandle handle("name", false);
    handle.levelsMaskIs(0xA2); // levels 1, 5 and 7
    for (U32 level = 0; level < TraceHandle::levelCount; ++level) {
        EXPECT_EQ(handle.isOn(level), level == 1 || level == 5 || level == 7) << level;
    }
    handle.levelIs(5, false);
    handle.levelIs(5, false);
    handle.levelIs(63, true);
    handle.levelIs(63, true);
    EXPECT_EQ(handle.levelsMask(), 0x8000000000000082u);
}

TEST(TraceHandle, LevelPastTheMaskIsNeverOn) {
    TraceHandle const handle("name", true);
    EXPECT_FALSE(handle.isOn(64));
    EXPECT_FALSE(handle.wants(64));
    EXPECT_FALSE(handle.isOn(~0u));
}

TEST(TraceHandleDeathTest, LevelPastTheMaskCannotBeSet) {
    TraceHandle handle("name", false);
    EXPECT_DEATH(handle.levelIs(64, true), "Assertion 'level < levelCount' failed");
}

TEST(TraceHandle, IsFoundByNameWhileItLives) {
    EXPECT_EQ(TraceHandle::find("TraceHandleTest first"), nullptr);
    {
        TraceHandle first("TraceHandleTest first", false);
        TraceHandle second("TraceHandleTest second", false);
        EXPECT_EQ(TraceHandle::find("TraceHandleTest first"), &first);
        EXPECT_EQ(TraceHandle::find("TraceHandleTest second"), &second);
        EXPECT_EQ(TraceHandle::first(), &second);
        EXPECT_EQ(second.next(), &first);
        TraceHandle* third = new TraceHandle("TraceHandleTest first", false);
        EXPECT_EQ(TraceHandle::find("TraceHandleTest first"), third);
        delete third;
        EXPECT_EQ(TraceHandle::find("TraceHandleTest first"), &first);
    }
    EXPECT_EQ(TraceHandle::find("TraceHandleTest first"), nullptr);
    EXPECT_EQ(TraceHandle::find("TraceHandleTest second"), nullptr);
}

TEST(TraceHandle, MayGoBeforeThoseThatWereBuiltAfterIt) {
    auto older = std::make_unique<TraceHandle>("TraceHandleTest older", false);
    TraceHandle const newer("TraceHandleTest newer", false);
    older = nullptr;
    EXPECT_EQ(TraceHandle::find("TraceHandleTest older"), nullptr);
    EXPECT_EQ(TraceHandle::find("TraceHandleTest newer"), &newer);
}

class TraceHandleAndRing : public SinkTest {};

TEST_F(TraceHandleAndRing, WantsEveryLevelWhileThereIsARing) {
    TraceHandle handle("name", false);
    handle.levelIs(1, true);
    EXPECT_TRUE(handle.wants(1));
    EXPECT_TRUE(handle.wants(5));
    Lumlog::RingBuffer::currentIs(nullptr);
    EXPECT_TRUE(handle.wants(1));
    EXPECT_FALSE(handle.wants(5));
    handle.levelIs(5, true);
    EXPECT_TRUE(handle.wants(5));
    handle.levelsMaskIs(0);
    EXPECT_FALSE(handle.wants(1));
    TraceHandle const later("later", false);
    EXPECT_FALSE(later.wants(1));
    Lumlog::RingBuffer::currentIs(&ring_);
    EXPECT_TRUE(handle.wants(1));
    EXPECT_TRUE(later.wants(1));
    EXPECT_FALSE(handle.isOn(1));
}

} // namespace
} // namespace Qor
