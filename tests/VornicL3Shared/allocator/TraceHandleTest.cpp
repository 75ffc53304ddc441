// The library's trace handle.

#include "qor/TraceHandle.h"

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "VornicL3Shared/support/World.h"
#include "allocator/Trace.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <vector>

namespace {

using namespace VornicCentral;
using Test::Lines;
using Test::World;
using Handles = std::vector<Qor::TraceHandle const*>;

Handles handlesOfTheUnit() {
    Handles handles;
    for (auto const* handle = Qor::TraceHandle::first(); handle; handle = handle->next()) {
        if (handle->name() == "VornicVpIndexAllocator") {
            handles.push_back(handle);
        }
    }
    return handles;
}

/// Makes the first trace of a process that has not traced yet, and ends it: with 7 if the handle
/// was not there before and is there, with all levels off, afterwards.
[[noreturn]] void makeFirstTrace() {
    bool const noneBefore = handlesOfTheUnit().empty();
    auto const stateMachine = vpIndexAllocatorDirSmFactory(
        vpReferenceListFactory("references"), vpInvalidReferenceListFactory("waiting"),
        vpIndexConfigDirFactory("config"), vpIndexStatusDirFactory("status"), 16,
        vxlanBootStatusFactory("boot"), false, false,
        vxlanCapabilitiesFactory("capabilities", false));
    Handles const after = handlesOfTheUnit();
    std::exit(noneBefore && after.size() == 1 && after[0]->levelsMask() == 0 ? 7 : 1);
}

/// A process of its own, in which nothing has traced yet.
TEST(VpTraceHandleDeathTest, AppearsWithTheFirstTraceAndIsOff) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(makeFirstTrace(), testing::ExitedWithCode(7), "");
}

TEST(VpTraceHandle, IsOneForTheLibraryAndForWhoeverIncludesItsHeader) {
    World world;
    vpTraceHandle().levelsMaskIs(U64{1} << entryLevel);
    world.start();
    EXPECT_EQ(handlesOfTheUnit(), Handles{&vpTraceHandle()});
    Lines const traces = world.capture.traces();
    EXPECT_FALSE(traces.empty());
    for (std::string const& trace : traces) {
        EXPECT_EQ(trace.front(), '1') << trace;
    }
}

} // namespace
