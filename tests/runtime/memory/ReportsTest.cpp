// Reports without memory: what is made of them is whole, or there is none of it.

#include "lumlog/Args.h"
#include "lumlog/MsgDescriptor.h"
#include "lumlog/RingBuffer.h"
#include "qor/GenericValue.h"
#include "qor/TraceHandle.h"
#include "qor/TraceStream.h"
#include "support/EachAllocation.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdlib>
#include <ostream>
#include <string>
#include <vector>

namespace MemoryTest {
namespace {

using Support::failEachAllocation;
using Support::FailingAllocations;
using Support::Shortage;

/// A value whose text is longer than a stream keeps without memory.
struct Wordy {
    friend bool operator==(Wordy, Wordy) = default;
    friend std::ostream& operator<<(std::ostream& out, Wordy) {
        return out << "a text that is printed piece by piece, " << 12345
                   << " of them, and is longer than what a stream holds in itself";
    }
};

std::string const wordyText = "a text that is printed piece by piece, 12345 of them, and is longer "
                              "than what a stream holds in itself";

/// Makes a text with each of its allocations failing once, and compares it where that did not
/// matter. Returns how often it did.
template <class Make> U32 failuresOf(Make make) {
    for (U32 passing = 0, failures = 0;; ++passing) {
        try {
            FailingAllocations const fail(passing, Shortage::momentary);
            std::string const text = make();
            bool const failed = FailingAllocations::failed();
            FailingAllocations::end();
            EXPECT_EQ(text, wordyText);
            if (!failed) {
                return failures;
            }
        } catch (std::bad_alloc const&) {
            ++failures;
        }
    }
}

TEST(TextsWithoutMemory, OfTraceLinesAreWhole) {
    EXPECT_GE(failuresOf([] {
                  Qor::TraceStream stream;
                  stream << Wordy();
                  return std::string(stream.text());
              }),
              1u);
}

TEST(TextsWithoutMemory, OfRingRecordsAreWhole) {
    EXPECT_GE(failuresOf([] { return Lumlog::Internal::printed(Wordy()); }), 1u);
}

TEST(TextsWithoutMemory, OfGenericValuesAreWhole) {
    auto const value = Qor::GenericValue::of(Wordy());
    EXPECT_GE(failuresOf([&] { return value.text(); }), 1u);
}

std::vector<std::byte> contentOf(Lumlog::RingBuffer const& ring) {
    return {ring.bytes().begin(), ring.bytes().end()};
}

TEST(RingWithoutMemory, IsMadeOrLeavesNothing) {
    Support::CountedAllocations const counted;
    U32 const failures =
        failEachAllocation([] { Lumlog::RingBuffer const ring(Lumlog::RingBuffer::minSize); },
                           [&] { EXPECT_EQ(counted.live(), 0); });
    EXPECT_EQ(failures, 1u);
}

TEST(RingWithoutMemory, DescribesAMessageOrStaysAsItWas) {
    Lumlog::RingBuffer ring(Lumlog::RingBuffer::minSize);
    std::array<Qor::Words, 1> const words{Qor::Words("words of a message, which are not short")};
    Lumlog::MsgDescriptor site("unit", 1, 1);
    Lumlog::MsgDescriptor& message = site.withWords("w", words);
    auto const before = contentOf(ring);
    U32 const failures = failEachAllocation([&] { ring.describe(message); },
                                            [&] {
                                                EXPECT_FALSE(ring.knows(message));
                                                EXPECT_EQ(contentOf(ring), before);
                                            });
    EXPECT_GE(failures, 2u);
    EXPECT_TRUE(ring.knows(message));
}

TEST(RingWithoutMemory, DisablesAMessageOrStaysAsItWas) {
    Lumlog::RingBuffer ring(Lumlog::RingBuffer::minSize);
    U32 const failures = failEachAllocation([&] { ring.messageEnabledIs(500, false); },
                                            [&] { EXPECT_TRUE(ring.messageEnabled(500)); });
    EXPECT_EQ(failures, 1u);
    EXPECT_FALSE(ring.messageEnabled(500));
}

TEST(RingWithoutMemory, AFurtherWordingGetsItsNumberOnce) {
    std::array<Qor::Words, 1> const first{Qor::Words("first")};
    std::array<Qor::Words, 1> const other{Qor::Words("other")};
    Lumlog::MsgDescriptor site("unit", 1, 1);
    U32 const number = site.withWords("w", first).msgId();
    // It would be kept for the life of the process, which is not over with this test.
    FailingAllocations const none(0);
    EXPECT_THROW(site.withWords("w", other), std::bad_alloc);
    EXPECT_EQ(site.withWords("w", first).msgId(), number);
}

/// In a process in which no ring has been chosen, the first handle makes one.
[[noreturn]] void makeTheFirstHandleTwice() {
    try {
        FailingAllocations const none(0);
        Qor::TraceHandle const handle("MemoryTest", false);
    } catch (std::bad_alloc const&) {
        Qor::TraceHandle const handle("MemoryTest", false);
        bool const onlyOne = Qor::TraceHandle::first() == &handle && handle.next() == nullptr;
        std::_Exit(onlyOne ? EXIT_SUCCESS : EXIT_FAILURE);
    }
    std::_Exit(EXIT_FAILURE);
}

TEST(TraceHandleDeathTest, WithoutMemoryForTheRingThereIsNone) {
    GTEST_FLAG_SET(death_test_style, "threadsafe"); // a process that has done nothing else
    EXPECT_EXIT(makeTheFirstHandleTwice(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}

} // namespace
} // namespace MemoryTest
