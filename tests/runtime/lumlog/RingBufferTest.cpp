#include "lumlog/RingBuffer.h"

#include "RingFixture.h"
#include "support/Random.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <optional>

namespace Lumlog {
namespace {

using Texts = std::vector<std::string>;

TEST_F(RingTest, IsEmptyAtFirst) {
    EXPECT_EQ(texts(), Texts{});
    EXPECT_EQ(ring_.recordCount(), 0u);
}

/// Records of all sizes, so that the ring is left and entered at every place.
TEST_F(RingTest, KeepsTheNewestRecordsInOrder) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    Texts written;
    for (U32 number = 0; number < 2000; ++number) {
        std::string const text(random.oneIn(10) ? random.below(900) : random.below(30), 'x');
        write(text, number);
        written.push_back("name " + text + " number " + std::to_string(number));
        Texts const held = texts();
        ASSERT_LE(held.size(), written.size());
        Texts const newest(written.end() - static_cast<std::ptrdiff_t>(held.size()), written.end());
        ASSERT_EQ(held, newest);
        ASSERT_GE(held.size(), std::min<std::size_t>(written.size(), 2));
    }
    EXPECT_EQ(ring_.recordCount(), 2000u);
}

TEST_F(RingTest, HoldsAsManyRecordsAsFit) {
    for (U32 number = 0; number < 1000; ++number) {
        write("abcd", number); // 24 bytes, and a payload of 10
    }
    EXPECT_EQ(texts().size(), RingBuffer::minSize / 40);
}

TEST_F(RingTest, RecordsBearTheTimeOfTheSystemClock) {
    auto const now = [] {
        auto const time = std::chrono::system_clock::now().time_since_epoch();
        return static_cast<U64>(std::chrono::nanoseconds(time).count());
    };
    U64 const before = now();
    write("x");
    U64 const after = now();
    std::optional<DecodedRecord> const record = Reader(ring_.bytes()).next();
    ASSERT_TRUE(record);
    constexpr U64 tolerance = 1'000'000; // ns
    EXPECT_GE(record->time + tolerance, before);
    EXPECT_LE(record->time, after + tolerance);
}

TEST_F(RingTest, RecordSkipsAMessageDisabledAfterItsFirstRecord) {
    static constinit MsgDescriptor kept("unit", 1, 0);
    static constinit MsgDescriptor site("unit", 2, 0);
    auto const writeBoth = [&](U32 round) {
        record(ring_, kept, "kept ", round);
        record(ring_, site, "site ", round);
    };
    writeBoth(1);
    ring_.messageEnabledIs(site.msgId(), false);
    writeBoth(2);
    ring_.messageEnabledIs(site.msgId(), true);
    writeBoth(3);
    EXPECT_EQ(texts(), (Texts{"kept 1", "site 1", "kept 2", "kept 3", "site 3"}));
    EXPECT_EQ(ring_.recordCount(), 5u);
}

TEST_F(RingTest, TellsWhatItKnowsAndTakes) {
    static constinit MsgDescriptor site("unit", 1, 0);
    using Answers = std::array<bool, 4>;
    auto const answers = [&] {
        return Answers{ring_.messageEnabled(site.msgIdOrNone()), ring_.takes(site),
                       ring_.knows(site), ring_.readyFor(site)};
    };
    EXPECT_EQ(answers(), (Answers{true, true, false, false}));
    record(ring_, site, "site");
    EXPECT_EQ(answers(), (Answers{true, true, true, true}));
    ring_.messageEnabledIs(site.msgId(), false);
    EXPECT_EQ(answers(), (Answers{false, false, true, false}));
    ring_.messageEnabledIs(site.msgId(), true);
    EXPECT_EQ(answers(), (Answers{true, true, true, true}));
}

TEST_F(RingTest, MessageCanBeDisabledBeforeTheRingKnowsIt) {
    static constinit MsgDescriptor site("unit", 1, 0);
    RingBuffer other(RingBuffer::minSize);
    record(other, site, "text");
    ring_.messageEnabledIs(site.msgId(), false);
    record(ring_, site, "text");
    EXPECT_EQ(texts(), Texts{});
    ring_.messageEnabledIs(site.msgId(), true);
    record(ring_, site, "text");
    EXPECT_EQ(texts(), Texts{"text"});
}

TEST_F(RingTest, OneWordingOfACallSiteCanBeDisabled) {
    static constinit MsgDescriptor site("unit", 1, 0);
    auto const say = [&](Qor::Words words) { record(ring_, site, words); };
    say("one");
    say("two");
    ring_.messageEnabledIs(Reader(ring_.bytes()).rest()[1].msgId, false);
    say("one");
    say("two");
    EXPECT_EQ(texts(), (Texts{"one", "two", "one"}));
}

TEST_F(RingTest, FirstWordingOfACallSiteCanBeDisabled) {
    static constinit MsgDescriptor site("unit", 1, 0);
    auto const say = [&](Qor::Words words) { record(ring_, site, words); };
    say("one");
    say("two");
    ring_.messageEnabledIs(Reader(ring_.bytes()).rest()[0].msgId, false);
    say("one");
    say("two");
    say("three");
    EXPECT_EQ(texts(), (Texts{"one", "two", "two", "three"}));
}

TEST_F(RingTest, EveryRingDescribesItsOwnMessages) {
    write("first ring");
    RingBuffer other(RingBuffer::minSize);
    static constinit MsgDescriptor site("unit", 1, 0);
    record(other, site, "second ", std::string_view("ring"));
    record(ring_, site, "second ", std::string_view("message"));
    EXPECT_EQ(textsIn(other.bytes()), Texts{"second ring"});
    EXPECT_EQ(texts(), (Texts{"name first ring number 0", "second message"}));
}

TEST_F(RingTest, WhenTheRoomForDescriptionsIsUsedUpRecordsLoseTheirText) {
    std::vector<std::unique_ptr<MsgDescriptor>> sites;
    std::string const unit(1000, 'u');
    for (U32 line = 0; line < 30; ++line) {
        sites.push_back(std::make_unique<MsgDescriptor>(unit.c_str(), line, 0));
        record(ring_, *sites.back(), "number ", line);
    }
    Texts const held = texts();
    ASSERT_EQ(held.size(), 30u);
    EXPECT_EQ(held.front(), "number 0");
    EXPECT_EQ(held[14], "number 14");
    EXPECT_EQ(held.back(), "(the description of this message is lost)");
}

TEST_F(RingTest, RecordCanBeWrittenByHand) {
    static constinit MsgDescriptor site("unit", 1, 0);
    std::array const words{Qor::Words("index: "), Qor::Words(", name: ")};
    ring_.describe(site.withWords("w4ws", words));
    std::byte* at = ring_.startMsg(site, sizeof(U32) + sizeof(U16) + 3);
    at = RingBuffer::append(at, U32{17});
    at = RingBuffer::append(at, U16{3});
    RingBuffer::appendBytes(at, "bgp");
    EXPECT_EQ(texts(), Texts{}) << "a record counts when it ends";
    ring_.endMsg();
    EXPECT_EQ(texts(), Texts{"index: 17, name: bgp"});
}

TEST_F(RingTest, RecordThatNeverEndsLeavesTheOthersReadable) {
    static constinit MsgDescriptor site("unit", 1, 0);
    site.withWords("s", {});
    for (U32 number = 0; number < 1000; ++number) {
        write("abcd", number);
    }
    Texts const before = texts();
    std::byte* const payload = ring_.startMsg(site, 200);
    std::memset(payload, 0x7F, 200);
    Texts const after = texts();
    EXPECT_EQ(after, Texts(before.end() - static_cast<std::ptrdiff_t>(after.size()), before.end()));
    EXPECT_GE(after.size(), before.size() - 7);
}

/// The compiler may store the parts of a record in any order, so the head of an old record can be
/// there while its text is overwritten.
TEST_F(RingTest, RecordThatNeverEndsHidesAllThatItMayHaveOverwritten) {
    static constinit MsgDescriptor site("unit", 1, 0);
    site.withWords("s", {});
    for (U32 number = 0; number < 1000; ++number) {
        write("abcd", number);
    }
    std::size_t const held = texts().size();
    constexpr std::size_t oldSize = 40;
    constexpr std::size_t newSize = 224;
    std::byte* const payload = ring_.startMsg(site, newSize - sizeof(RingFormat::RecordHeader));
    for (std::size_t old = RingBuffer::minSize % oldSize; old < newSize; old += oldSize) {
        std::memset(payload + old + sizeof(U16), 'Z', 4); // the text of the record at that distance
    }
    Texts const after = texts();
    EXPECT_EQ(after.size(), held - 6);
    for (std::string const& text : after) {
        EXPECT_THAT(text, testing::StartsWith("name abcd number "));
    }
}

TEST(RingBufferDeathTest, SizeIsAPowerOfTwoWithinItsLimits) {
    std::string const failure = "Assertion 'std::has_single_bit\\(size\\)";
    EXPECT_DEATH(RingBuffer(RingBuffer::minSize / 2), failure);
    EXPECT_DEATH(RingBuffer(RingBuffer::minSize + 1), failure);
    EXPECT_DEATH(RingBuffer(RingBuffer::maxSize * 2), failure);
}

TEST(RingBufferDeathTest, UnassignedMessageCannotBeWritten) {
    RingBuffer ring(RingBuffer::minSize);
    MsgDescriptor const site("unit", 1, 0);
    EXPECT_DEATH(ring.startMsg(site, 8), "Assertion 'msgId_ >= 0' failed");
}

TEST(RingBufferDeathTest, MessageThatCannotBeIsNotSwitched) {
    RingBuffer ring(RingBuffer::minSize);
    EXPECT_DEATH(ring.messageEnabledIs(MsgDescriptor::maxMessages, false),
                 "Assertion 'msgId < MsgDescriptor::maxMessages' failed");
}

/// The tests below change the current ring and put back the one before.
class CurrentRing : public testing::Test {
protected:
    CurrentRing() : former_(RingBuffer::current()) {}
    ~CurrentRing() override { RingBuffer::currentIs(former_); }

    RingBuffer* former_;
};

TEST_F(CurrentRing, IsTheOneThatWasSet) {
    RingBuffer ring(RingBuffer::minSize);
    EXPECT_EQ(RingBuffer::currentIs(&ring), former_);
    EXPECT_EQ(RingBuffer::current(), &ring);
    EXPECT_EQ(RingBuffer::currentIfAny(), &ring);
    EXPECT_EQ(RingBuffer::currentIs(nullptr), &ring);
    EXPECT_EQ(RingBuffer::current(), nullptr);
    EXPECT_EQ(RingBuffer::currentIfAny(), nullptr);
}

TEST_F(CurrentRing, IsAbsentAfterItsDestruction) {
    {
        RingBuffer ring(RingBuffer::minSize);
        RingBuffer::currentIs(&ring);
    }
    EXPECT_EQ(RingBuffer::current(), nullptr);
}

TEST_F(CurrentRing, StaysWhenAnotherRingIsDestroyed) {
    RingBuffer ring(RingBuffer::minSize);
    RingBuffer::currentIs(&ring);
    { RingBuffer const other(RingBuffer::minSize); }
    EXPECT_EQ(RingBuffer::current(), &ring);
}

/// A process of its own, in which nothing has used the ring yet.
TEST(CurrentRingDeathTest, OneOfDefaultSizeIsBuiltUnlessTheHostHasChosen) {
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            bool const noneBefore = RingBuffer::currentIfAny() == nullptr;
            RingBuffer const* const ring = RingBuffer::current();
            bool const large = ring != nullptr && ring->bytes().size() > RingBuffer::defaultSize;
            std::exit(noneBefore && large && RingBuffer::currentIfAny() == ring ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
    EXPECT_EXIT(
        {
            RingBuffer::currentIs(nullptr);
            std::exit(RingBuffer::current() == nullptr ? 7 : 1);
        },
        testing::ExitedWithCode(7), "");
}

} // namespace
} // namespace Lumlog
