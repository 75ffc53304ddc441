#include "pelo/NoThrow.h"

#include <gtest/gtest.h>

#include <stdexcept>

namespace Pelo {
namespace {

TEST(NoThrow, RunsTheWorkOnce) {
    int runs = 0;
    runNoThrow([&] { ++runs; });
    EXPECT_EQ(runs, 1);
}

TEST(NoThrowDeathTest, AnExceptionEndsTheProcessByItsName) {
    EXPECT_DEATH(runNoThrow([] { throw std::range_error("out of tune"); }),
                 "std::range_error.*\n.*out of tune");
}

TEST(NoThrowDeathTest, AnExceptionWithoutATextEndsTheProcessByItsType) {
    EXPECT_DEATH(runNoThrow([] { throw 7; }), "terminate called after throwing.*int");
}

} // namespace
} // namespace Pelo
