#include "netzo/IntfId.h"

#include "support/MultiThreaded.h"
#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

#include <atomic>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace {

using Netzo::IntfId;

TEST(IntfId, DefaultIsTheEmptyName) {
    std::size_t const before = IntfId::namesInUse();
    IntfId const none;
    EXPECT_TRUE(none.empty());
    EXPECT_EQ(none, IntfId(""));
    EXPECT_EQ(none.stringValue(), "");
    EXPECT_EQ(none.shortName(), "");
    EXPECT_EQ(none.hash(), Pelo::String().hash());
    EXPECT_EQ(IntfId::namesInUse(), before);
}

TEST(IntfId, EveryNameIsKeptInFull) {
    using namespace std::string_view_literals;
    std::string const longName = "Ethernet" + std::string(100000, '1');
    for (std::string_view const name :
         {"E"sv, "Ethernet1/1"sv, "Port-Channel 7"sv, "peer link: \xC3\xA4\xFF"sv, "a\0b"sv, "\n"sv,
          std::string_view(longName)}) {
        IntfId const intf(name);
        EXPECT_EQ(intf.stringValue(), name);
        EXPECT_EQ(intf.name(), name);
        EXPECT_EQ(Support::printed(intf), name);
        EXPECT_FALSE(intf.empty());
    }
}

TEST(IntfId, IdsOfOneNameAreEqualAndOthersAreNot) {
    IntfId const one("Ethernet1");
    IntfId const same(Pelo::String("Ethernet1"));
    IntfId const other("Ethernet2");
    EXPECT_EQ(one, same);
    EXPECT_EQ(one.hash(), same.hash());
    EXPECT_EQ(one.name().data(), same.name().data());
    EXPECT_NE(one, other);
    EXPECT_NE(one.hash(), other.hash());
    EXPECT_NE(one, IntfId("Ethernet1 "));
    EXPECT_NE(one, IntfId());
}

TEST(IntfId, NamesOfOneHashAreToldApart) {
    std::string const forgetful =
        "\x93\xFD\x59\x66\xB8\xFE\xE8\xD6"; // a word that makes the hash 0
    IntfId const one("Ethernet" + forgetful);
    IntfId const other("Loopback" + forgetful);
    ASSERT_EQ(one.hash(), other.hash());
    EXPECT_NE(one, other);
    EXPECT_EQ(other.name(), "Loopback" + forgetful);
}

TEST(IntfId, HashIsThatOfTheNameAsAString) {
    EXPECT_EQ(IntfId("Ethernet1").hash(), Pelo::String("Ethernet1").hash());
}

TEST(IntfId, SharesTheTextOfAString) {
    Pelo::String const text("Management0/shared-text");
    EXPECT_EQ(IntfId(text).name().data(), text.data());
}

TEST(IntfId, CopiesAndMovesAreValues) {
    IntfId one("Ethernet1");
    IntfId copy(one);
    EXPECT_EQ(copy, one);
    IntfId moved(std::move(one));
    EXPECT_EQ(moved, copy);
    EXPECT_TRUE(one.empty()); // NOLINT(bugprone-use-after-move): a moved-from id is the empty name
    one = moved;
    EXPECT_EQ(one, copy);
    IntfId& self = one;
    one = self;
    EXPECT_EQ(one, copy);
    one = IntfId("Ethernet2");
    EXPECT_EQ(one.name(), "Ethernet2");
    EXPECT_EQ(copy.name(), "Ethernet1");
    one = IntfId();
    EXPECT_TRUE(one.empty());
}

TEST(IntfId, ShortNameIsTwoLettersAndTheTextFromTheFirstDigit) {
    std::vector<std::pair<char const*, char const*>> const cases{
        {"Ethernet1/1", "Et1/1"},
        {"Ethernet1/2/3.100", "Et1/2/3.100"},
        {"Port-Channel10", "Po10"},
        {"et1", "et1"},
        {"Et1 peer", "Et1 peer"},
        {"Ethernet", "Ethernet"}, // no digit
        {"E1", "E1"},             // and from here on: not two letters
        {"1/1", "1/1"},
        {"_Ethernet1", "_Ethernet1"},
        {"E-thernet1", "E-thernet1"},
        {"\xC3\xA4thernet1", "\xC3\xA4thernet1"},
        {"{Ethernet1", "{Ethernet1"},
        {"E{thernet1", "E{thernet1"},
        {"Et", "Et"},
        {"E", "E"},
        {"", ""},
    };
    for (auto const& [name, shortName] : cases) {
        IntfId const intf(name);
        EXPECT_EQ(intf.shortName(), shortName) << name;
        auto const [letters, rest] = intf.shortNameParts();
        EXPECT_EQ(std::string(letters) + std::string(rest), shortName) << name;
    }
}

TEST(IntfId, ParseTakesNamesWithoutControlCharacters) {
    using Support::parseOutcome;
    using namespace std::string_view_literals;
    EXPECT_EQ(parseOutcome<IntfId>("Ethernet1/1"), "Ethernet1/1");
    EXPECT_EQ(parseOutcome<IntfId>(" blanks, \"quotes\" and \\ "), " blanks, \"quotes\" and \\ ");
    EXPECT_EQ(parseOutcome<IntfId>("\xC3\xA4:@/"), "\xC3\xA4:@/");
    EXPECT_EQ(parseOutcome<IntfId>(""), "at 0: expected an interface name");
    std::string const control = ": expected an interface name without control characters";
    EXPECT_EQ(parseOutcome<IntfId>("Eth\t1"), "at 3" + control);
    EXPECT_EQ(parseOutcome<IntfId>("\x7F"), "at 0" + control);
    EXPECT_EQ(parseOutcome<IntfId>("Eth\0"sv), "at 3" + control);
    EXPECT_EQ(parseOutcome<IntfId>("Eth1\x1F"), "at 4" + control);
    EXPECT_EQ(parseOutcome<IntfId>("\xC3\xA4\xC2\x80"), "at 2" + control);
    EXPECT_EQ(parseOutcome<IntfId>("\xC2\x9F"), "at 0" + control);
    EXPECT_EQ(parseOutcome<IntfId>("\xC2\xA0"), "\xC2\xA0");
    EXPECT_EQ(parseOutcome<IntfId>("\x80"), "\x80"); // no character of UTF-8
}

TEST(IntfId, LastIdOfANameTakesItOutOfTheTable) {
    std::size_t const before = IntfId::namesInUse();
    {
        IntfId const one("only-here-1");
        IntfId const copy(one);
        IntfId const again("only-here-1");
        IntfId const other("only-here-2");
        EXPECT_EQ(IntfId::namesInUse(), before + 2);
    }
    EXPECT_EQ(IntfId::namesInUse(), before);
}

TEST(IntfId, AMillionNamesInTurnAreNotKept) {
    std::size_t const before = IntfId::namesInUse();
    for (int number = 0; number < 1000000; ++number) {
        IntfId const intf("Ethernet" + std::to_string(number));
        ASSERT_EQ(IntfId::namesInUse(), before + 1);
    }
    EXPECT_EQ(IntfId::namesInUse(), before);
}

TEST(IntfId, ManyNamesAtATimeAreToldApartAndLeave) {
    std::size_t const before = IntfId::namesInUse();
    {
        std::vector<IntfId> intfs;
        for (int number = 0; number < 100000; ++number) {
            intfs.emplace_back("many" + std::to_string(number));
        }
        EXPECT_EQ(IntfId::namesInUse(), before + intfs.size());
        for (int number = 0; number < 100000; number += 7) {
            std::string const name = "many" + std::to_string(number);
            ASSERT_EQ(IntfId(name), intfs[static_cast<std::size_t>(number)]);
        }
        EXPECT_EQ(IntfId::namesInUse(), before + intfs.size());
    }
    EXPECT_EQ(IntfId::namesInUse(), before);
}

TEST(IntfId, ThreadsShareNamesUnderTheThreadControlRule) {
    std::size_t const before = IntfId::namesInUse();
    {
        Support::MultiThreaded const on;
        IntfId const kept("shared-0");
        std::atomic<int> wrong = 0;
        std::vector<std::thread> threads;
        for (int thread = 0; thread < 4; ++thread) {
            threads.emplace_back([&wrong, kept] {
                for (int round = 0; round < 20000; ++round) {
                    std::string const name = "shared-" + std::to_string(round % 3);
                    IntfId const intf(name);
                    IntfId copy(intf);
                    bool const right = copy.name() == name && (copy == kept) == (round % 3 == 0);
                    copy = kept;
                    wrong += right ? 0 : 1;
                }
            });
        }
        for (std::thread& thread : threads) {
            thread.join();
        }
        EXPECT_EQ(wrong, 0);
    }
    EXPECT_EQ(IntfId::namesInUse(), before);
}

} // namespace
