#include "pelo/String.h"

#include "support/Allocations.h"
#include "support/MultiThreaded.h"
#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Pelo::String;
using namespace std::string_view_literals;

TEST(String, DefaultIsTheEmptyTextAndNeedsNoStorage) {
    Support::FailingAllocations const noMemory(0);
    String const none;
    String const empty("");
    String const emptyView{std::string_view()};
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none.size(), 0u);
    EXPECT_STREQ(none.data(), "");
    EXPECT_EQ(none, empty);
    EXPECT_EQ(none, emptyView);
    EXPECT_EQ(none.hash(), empty.hash());
}

TEST(String, HoldsEveryByteAndEndsWithNul) {
    std::string const longText(100000, 'x');
    for (std::string_view const text : {"a"sv, "bgp"sv, "peer link \xC3\xA4\xFF"sv, "a\0b"sv,
                                        "\0"sv, std::string_view(longText)}) {
        String const string(text);
        EXPECT_EQ(string.view(), text);
        EXPECT_EQ(string.size(), text.size());
        EXPECT_EQ(string.data()[text.size()], '\0');
        EXPECT_FALSE(string.empty());
        EXPECT_EQ(Support::printed(string), text);
    }
}

TEST(String, OutlivesTheTextThatItWasMadeFrom) {
    std::string source = "Ethernet1";
    String const string(source);
    source.assign("overwritten");
    EXPECT_EQ(string, "Ethernet1");
}

TEST(String, CopiesShareTheText) {
    String const text("Ethernet1");
    Support::FailingAllocations const noMemory(0);
    String const copy(text);
    String assigned;
    assigned = copy;
    EXPECT_EQ(copy.data(), text.data());
    EXPECT_EQ(assigned.data(), text.data());
}

TEST(String, MoveLeavesTheEmptyText) {
    String text("bgp");
    String moved(std::move(text));
    EXPECT_TRUE(text.empty()); // NOLINT(bugprone-use-after-move): as its contract says
    EXPECT_EQ(moved, "bgp");
    text = std::move(moved);
    EXPECT_EQ(text, "bgp");
    String& self = text;
    text = self;
    text = std::move(self);
    EXPECT_EQ(text, "bgp");
}

TEST(String, TextLivesAsLongAsAnyCopy) {
    String last;
    {
        String const first("Port-Channel7");
        String const second(first);
        last = second;
    }
    EXPECT_EQ(last, "Port-Channel7");
}

TEST(String, LastCopyGivesTheStorageBack) {
    Support::CountedAllocations const since;
    {
        String const first("Port-Channel7");
        String second(first);
        second = String("Ethernet1");
    }
    EXPECT_EQ(since.count(), 2u);
    EXPECT_EQ(since.live(), 0);
}

TEST(String, EqualityIsThatOfTheBytes) {
    EXPECT_EQ(String("bgp"), String("bgp"));
    EXPECT_EQ(String("bgp").hash(), String("bgp").hash());
    EXPECT_NE(String("bgp"), String("BGP"));
    EXPECT_NE(String("bgp"), String("bgp "));
    EXPECT_NE(String("bgp"), String());
    EXPECT_NE(String("a\0b"sv), String("a"));
    EXPECT_NE(String("a\0b"sv), String("a\0c"sv));
}

TEST(String, TextsOfOneHashAreEqualOnlyByTheirBytes) {
    // A word of these bytes wipes out what the ones before it have left in the hash.
    U64 const wiping = 0xD6E8FEB86659FD93u;
    std::string word(sizeof wiping, '\0');
    std::memcpy(word.data(), &wiping, sizeof wiping);
    String const one("Ethernet" + word);
    String const other("Loopback" + word);
    ASSERT_EQ(one.hash(), other.hash());
    EXPECT_NE(one, other);
    EXPECT_EQ(one, String("Ethernet" + word));
}

TEST(String, ComparesWithPlainTextWithoutMakingAString) {
    String const text("bgp");
    std::string const plain = "bgp";
    Support::FailingAllocations const noMemory(0);
    EXPECT_TRUE(text == "bgp");
    EXPECT_TRUE("bgp" == text);
    EXPECT_TRUE(text == plain);
    EXPECT_TRUE(text == "bgp"sv);
    EXPECT_TRUE("bgp"sv == text);
    EXPECT_TRUE(text != "bg"sv);
}

TEST(String, OrdersByBytesAsUnsignedNumbers) {
    std::vector<String> const ordered = {"",  "\0"sv, "\0a"sv, "A",    "Ab",
                                         "B", "a",    "\x7F",  "\x80", "\xFF"};
    for (std::size_t i = 0; i < ordered.size(); ++i) {
        for (std::size_t j = 0; j < ordered.size(); ++j) {
            int const comparison = ordered[i].compare(ordered[j]);
            EXPECT_EQ(comparison < 0, i < j) << i << ' ' << j;
            EXPECT_EQ(comparison == 0, i == j) << i << ' ' << j;
            EXPECT_EQ(ordered[i] < ordered[j], i < j) << i << ' ' << j;
            EXPECT_EQ(ordered[i] >= ordered[j], i >= j) << i << ' ' << j;
        }
    }
}

TEST(String, HashIsTheSameInEveryProcess) {
    EXPECT_EQ(String().hash(), 0u);
    EXPECT_EQ(String("bgp").hash(), String(std::string("b") + "gp").hash());
    EXPECT_NE(String("bgp").hash(), String("bgq").hash());
}

TEST(String, RefusesATextOfFourGigabytes) {
    char const byte = 'x';
    std::string_view const tooLong(&byte, std::size_t{1} << 32); // refused before it is read
    EXPECT_THROW(String{tooLong}, std::length_error);
}

TEST(String, WithoutMemoryThereIsNoString) {
    Support::FailingAllocations const noMemory(0);
    EXPECT_THROW(String("bgp"), std::bad_alloc);
}

TEST(String, OneTextIsSharedByCopiesOfManyThreads) {
    Support::MultiThreaded const on;
    auto text = std::make_unique<String const>("shared by all");
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([first = *text] {
            std::vector<String> held(16);
            for (std::size_t round = 0; round < 20000; ++round) {
                held[round % 16] = first;
                held[(round + 5) % 16] = held[round % 16];
            }
            EXPECT_TRUE(std::all_of(held.begin(), held.end(),
                                    [](String const& one) { return one == "shared by all"; }));
        });
    }
    text.reset(); // the last thread destroys the text
    for (std::thread& thread : threads) {
        thread.join();
    }
}

} // namespace
