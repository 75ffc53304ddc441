#include "qor/Sinks.h"

#include "SinkFixture.h"
#include "qor/Log.h"
#include "qor/TraceHelper.h"
#include "support/OwnStack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdio>
#include <stdexcept>

namespace Qor {
namespace {

class Sinks : public SinkTest {};

using Texts = std::vector<std::string>;

constexpr LogDescriptor testDescriptor{"TEST_MESSAGE", "resource %s is full", "explanation",
                                       "action", 3};

TEST_F(Sinks, SetterReturnsTheSinkBefore) {
    int first = 0;
    TraceSink const fixture = traceSinkIs([&](TraceLine const&) { ++first; });
    TraceHandle const handle("sinks", true);
    TraceSink const mine = traceSinkIs(fixture);
    mine({handle, 1, "file", 2, "function", "text"});
    EXPECT_EQ(first, 1);
    traceEmit({handle, 1, "file", 2, "function", "text"});
    EXPECT_EQ(first, 1);
    EXPECT_EQ(lines_, Texts{"text"});
}

TEST_F(Sinks, EmptySinkIsTheDefault) {
    LogSink const fixture = logSinkIs({});
    EXPECT_TRUE(fixture);
    EXPECT_FALSE(logSinkIs(fixture));
    AssertionSink const before = assertionSinkIs({});
    EXPECT_FALSE(before);
    EXPECT_FALSE(assertionSinkIs(before));
}

TEST_F(Sinks, SinkMayReplaceItself) {
    TraceHandle const handle("sinks", true);
    std::string const captured(100, 'c'); // so that the replaced function object owns storage
    traceSinkIs([this, captured](TraceLine const&) {
        traceSinkIs([this](TraceLine const& line) { lines_.emplace_back(line.text); });
        lines_.push_back(captured);
    });
    traceEmit({handle, 1, "file", 2, "function", "first"});
    traceEmit({handle, 1, "file", 2, "function", "second"});
    EXPECT_EQ(lines_, (Texts{captured, "second"}));
}

TEST_F(Sinks, SinkMayTraceAndLogItself) {
    TraceHandle const handle("sinks", true);
    LogHandle log(testDescriptor);
    traceSinkIs([&](TraceLine const& line) { Qor::log(log, line.text); });
    traceEmit({handle, 1, "file", 2, "function", "pool"});
    EXPECT_EQ(messages_, Texts{"resource pool is full"});
}

constexpr char time[] = "^[0-9]{4}-[0-9]{2}-[0-9]{2}T[0-9]{2}:[0-9]{2}:[0-9]{2}\\.[0-9]{6}Z ";

std::string printed(auto&& emit) {
    testing::internal::CaptureStderr();
    emit();
    return testing::internal::GetCapturedStderr();
}

TEST_F(Sinks, DefaultTraceSinkPrintsALineWithTime) {
    traceSinkIs({});
    TraceHandle const handle("VornicVpIndexAllocator", true);
    std::string const line = printed([&] {
        TraceHelper(handle, 5, "/src/unit", 12, "f").stream() << "allocVpIndex"
                                                              << " full";
    });
    EXPECT_THAT(
        line, testing::ContainsRegex(std::string(time) +
                                     "VornicVpIndexAllocator 5 /src/unit:12 allocVpIndex full\n$"));
}

TEST_F(Sinks, DefaultLogSinkPrintsALineWithTime) {
    logSinkIs({});
    LogHandle handle(testDescriptor);
    EXPECT_THAT(printed([&] { log(handle, "pool"); }),
                testing::ContainsRegex(std::string(time) +
                                       "TEST_MESSAGE \\(severity 3\\): resource pool is full\n$"));
    EXPECT_THAT(
        printed([&] {
            logEmit({testDescriptor, "text", 4});
        }),
        testing::ContainsRegex(std::string(time) +
                               "TEST_MESSAGE \\(severity 3\\): text \\(4 more suppressed\\)\n$"));
}

TEST(SinksDeathTest, ExceptionInASinkEndsTheProcess) {
    TraceHandle const handle("sinks", true);
    EXPECT_DEATH(
        {
            traceSinkIs([](TraceLine const&) { throw std::runtime_error("sink"); });
            traceEmit({handle, 1, "file", 2, "function", "first"});
        },
        "");
}

TEST(SinksDeathTest, TraceSinkThatTracesWithoutEndIsStopped) {
    TraceHandle const handle("sinks", true);
    EXPECT_DEATH(
        {
            auto const trace = [&handle] {
                traceEmit({handle, 1, "file", 2, "function", "again"});
            };
            traceSinkIs([trace](TraceLine const&) { trace(); });
            Support::onStackOf(256 * Support::kibi, trace);
        },
        "!Pelo::Stack::low");
}

TEST(SinksDeathTest, LogSinkThatLogsWithoutEndIsStopped) {
    EXPECT_DEATH(
        {
            LogHandle log(testDescriptor);
            logSinkIs([&log](LogMessage const&) { Qor::log(log, "again"); });
            Support::onStackOf(256 * Support::kibi, [&log] { Qor::log(log, "again"); });
        },
        "!Pelo::Stack::low");
}

TEST(UtcTimeText, HasMicroseconds) {
    EXPECT_EQ(utcTimeText(0), "1970-01-01T00:00:00.000000Z");
    EXPECT_EQ(utcTimeText(1'715'934'600'123'456'789), "2024-05-17T08:30:00.123456Z");
    EXPECT_EQ(utcTimeText(951'827'696'000'001'000), "2000-02-29T12:34:56.000001Z");
}

} // namespace
} // namespace Qor
