#include "qor/Assert.h"

#include "qor/Sinks.h"

#include <gtest/gtest.h>

#include <csignal>
#include <cstdio>
#include <stdexcept>
#include <string>

namespace Qor {
namespace {

constexpr char time[] = "[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6}Z ";

void checkPositive(int number) { QOR_ASSERT(number > 0); }

template <class T> void checkEqual(T const& a, T const& b) {
    QOR_ASSERT_AS(a == b, "vpIndex != Bask::HBitmap::null()",
                  "/src/VornicL3Shared/VornicL3VpIndexAllocator",
                  "U16 VornicCentral::VpIndexAllocatorDirSm::allocVpIndex(bool)");
}

TEST(Assert, DoesNothingWhenTheConditionHolds) {
    int evaluated = 0;
    QOR_ASSERT(++evaluated == 1);
    checkPositive(1);
    checkEqual(1, 1);
    EXPECT_EQ(evaluated, 1);
}

TEST(Assert, IsAStatement) {
    bool reached = false;
    if (reached)
        QOR_ASSERT(false);
    else
        reached = true;
    EXPECT_TRUE(reached);
}

TEST(AssertDeathTest, PrintsOneLineAndAborts) {
    EXPECT_EXIT(checkPositive(0), testing::KilledBySignal(SIGABRT),
                "^" + std::string(time) +
                    "AssertTest\\.cpp:[0-9]+: void Qor::.*checkPositive\\(int\\): Assertion "
                    "'number > 0' failed\\.\n$");
}

TEST(AssertDeathTest, PrintsTheTextUnitAndSignatureThatAreGiven) {
    EXPECT_EXIT(
        checkEqual(1, 2), testing::KilledBySignal(SIGABRT),
        "^" + std::string(time) +
            "/src/VornicL3Shared/VornicL3VpIndexAllocator:[0-9]+: U16 "
            "VornicCentral::VpIndexAllocatorDirSm::allocVpIndex\\(bool\\): Assertion 'vpIndex != "
            "Bask::HBitmap::null\\(\\)' failed\\.\n$");
}

TEST(AssertDeathTest, NamesTheLineOfItsUse) {
    U32 const line = __LINE__ + 1;
    EXPECT_DEATH(QOR_ASSERT_AS(false, "text", "unit", "f()"),
                 "Z unit:" + std::to_string(line) + ": f\\(\\): Assertion");
}

TEST(AssertDeathTest, AbortsWhenTheSinkReturns) {
    EXPECT_EXIT(
        {
            assertionSinkIs([](AssertionFailure const& failure) {
                std::fprintf(stderr, "sink: %s|%s|%u|%s\n", failure.text.data(),
                             failure.unit.data(), failure.line, failure.function.data());
            });
            assertionFailed("text", "unit", 5, "void f()");
        },
        testing::KilledBySignal(SIGABRT), "^sink: text\\|unit\\|5\\|void f\\(\\)\n$");
}

TEST(AssertDeathTest, AbortsWhenTheSinkThrows) {
    EXPECT_EXIT(
        {
            assertionSinkIs(
                [](AssertionFailure const&) { throw std::runtime_error("the sink is at fault"); });
            checkPositive(0);
        },
        testing::KilledBySignal(SIGABRT), "");
}

TEST(AssertDeathTest, FailureWithinTheSinkGoesToStandardError) {
    EXPECT_EXIT(
        {
            assertionSinkIs([](AssertionFailure const&) { checkPositive(-1); });
            assertionFailed("outer", "unit", 5, "void f()");
        },
        testing::KilledBySignal(SIGABRT), "Assertion 'number > 0' failed\\.\n$");
}

} // namespace
} // namespace Qor
