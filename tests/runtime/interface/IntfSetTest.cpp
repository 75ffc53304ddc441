#include "interface/IntfSet.h"

#include "support/ParseOutcome.h"
#include "support/Random.h"

#include <gtest/gtest.h>

#include <set>
#include <string>
#include <vector>

namespace {

using Interface::IntfSet;
using Netzo::IntfId;

TEST(IntfSet, DefaultIsEmpty) {
    IntfSet const set;
    EXPECT_TRUE(set.empty());
    EXPECT_EQ(set.size(), 0u);
    EXPECT_EQ(set.begin(), set.end());
    EXPECT_EQ(Support::printed(set), "[]");
    EXPECT_FALSE(set.contains(IntfId("Ethernet1")));
}

TEST(IntfSet, IteratesByNameWhateverTheOrderOfInsertion) {
    IntfSet const set{IntfId("Ethernet2"), IntfId("Ethernet1"), IntfId("Ethernet10"),
                      IntfId("Ethernet1")};
    EXPECT_EQ(set.size(), 3u);
    EXPECT_EQ(Support::printed(set), "[Ethernet1, Ethernet10, Ethernet2]");
    EXPECT_EQ(set, (IntfSet{IntfId("Ethernet10"), IntfId("Ethernet1"), IntfId("Ethernet2")}));
}

TEST(IntfSet, InsertAndEraseSayWhetherTheyChangedTheSet) {
    IntfSet set;
    EXPECT_TRUE(set.insert(IntfId("Ethernet1")));
    EXPECT_FALSE(set.insert(IntfId("Ethernet1")));
    EXPECT_FALSE(set.erase(IntfId("Ethernet2")));
    EXPECT_TRUE(set.erase(IntfId("Ethernet1")));
    EXPECT_FALSE(set.erase(IntfId("Ethernet1")));
    EXPECT_TRUE(set.empty());
}

TEST(IntfSet, HoldsTheEmptyNameToo) {
    IntfSet set{IntfId("Ethernet1"), IntfId()};
    EXPECT_TRUE(set.contains(IntfId()));
    EXPECT_EQ(Support::printed(set), R"(["", Ethernet1])");
    EXPECT_TRUE(set.erase(IntfId()));
    EXPECT_EQ(set, IntfSet{IntfId("Ethernet1")});
}

TEST(IntfSet, EraseTakesAMemberOfTheSetItself) {
    IntfSet set{IntfId("Ethernet1"), IntfId("Ethernet2")};
    EXPECT_TRUE(set.erase(*set.begin()));
    EXPECT_EQ(set, IntfSet{IntfId("Ethernet2")});
}

TEST(IntfSet, ClearedSetLetsItsNamesGo) {
    std::size_t const before = IntfId::namesInUse();
    IntfSet set{IntfId("only-in-a-set-1"), IntfId("only-in-a-set-2")};
    EXPECT_EQ(IntfId::namesInUse(), before + 2);
    set.clear();
    EXPECT_EQ(IntfId::namesInUse(), before);
}

TEST(IntfSet, AgreesWithASetOfNames) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    IntfSet set;
    std::set<std::string> model;
    for (int step = 0; step < 5000; ++step) {
        std::string const name = "Ethernet" + std::to_string(random.below(64));
        IntfSet const former(set);
        bool const changed = random.oneIn(2) ? set.insert(IntfId(name)) == model.insert(name).second
                                             : set.erase(IntfId(name)) == (model.erase(name) == 1);
        ASSERT_TRUE(changed);
        ASSERT_EQ(set == former, set.size() == former.size());
        ASSERT_EQ(set.contains(IntfId(name)), model.contains(name));
        std::vector<std::string> names;
        for (IntfId const& intf : set) {
            names.push_back(intf.stringValue());
        }
        ASSERT_EQ(names, std::vector<std::string>(model.begin(), model.end()));
    }
}

std::string outcome(std::string_view text) { return Support::parseOutcome<IntfSet>(text); }

TEST(IntfSet, ReadsNamesInAnyOrderWithAndWithoutBlanks) {
    EXPECT_EQ(outcome("[]"), "[]");
    EXPECT_EQ(outcome("[  ]"), "[]");
    EXPECT_EQ(outcome("[Ethernet1]"), "[Ethernet1]");
    EXPECT_EQ(outcome("[Ethernet2,Ethernet1]"), "[Ethernet1, Ethernet2]");
    EXPECT_EQ(outcome("[ Ethernet2 , port 7,Ethernet1 ]"), "[Ethernet1, Ethernet2, port 7]");
    EXPECT_EQ(outcome("[Ethernet1, Ethernet1]"), "[Ethernet1]");
}

TEST(IntfSet, WritesNamesInQuotesThatCannotStandAlone) {
    EXPECT_EQ(Support::printed(IntfSet{IntfId("a,b"), IntfId("c]"), IntfId("d\"e\\"), IntfId(" f"),
                                       IntfId("g "), IntfId("h\\"), IntfId("[i"), IntfId()}),
              R"(["", " f", [i, "a,b", "c]", "d\"e\\", "g ", h\])");
}

TEST(IntfSet, ReadsBackWhatItWrites) {
    Support::Random random;
    SCOPED_TRACE(random.note());
    std::string const characters = "ab ,]\"\\[";
    for (int round = 0; round < 2000; ++round) {
        IntfSet set;
        for (U32 members = random.below(4); members > 0; --members) {
            std::string name;
            for (U32 length = random.below(5); length > 0; --length) {
                name += characters[random.below(static_cast<U32>(characters.size()))];
            }
            set.insert(IntfId(name));
        }
        auto const read = IntfSet::parse(set.stringValue());
        ASSERT_TRUE(read) << set << ": expected " << read.error().expected;
        ASSERT_EQ(*read, set) << set;
    }
}

TEST(IntfSet, SaysWhatDoesNotFitAndWhere) {
    EXPECT_EQ(outcome(""), "at 0: expected [");
    EXPECT_EQ(outcome("Ethernet1"), "at 0: expected [");
    EXPECT_EQ(outcome(" []"), "at 0: expected [");
    EXPECT_EQ(outcome("["), "at 1: expected an interface name");
    EXPECT_EQ(outcome("[Ethernet1"), "at 10: expected a comma or ]");
    EXPECT_EQ(outcome("[Ethernet1,]"), "at 11: expected an interface name");
    EXPECT_EQ(outcome("[, Ethernet1]"), "at 1: expected an interface name");
    EXPECT_EQ(outcome("[Ethernet1]]"), "at 11: expected nothing behind the ]");
    EXPECT_EQ(outcome("[] "), "at 2: expected nothing behind the ]");
    EXPECT_EQ(outcome("[Et\"1\"]"), "at 3: expected a comma or ]");
    EXPECT_EQ(outcome("[\"Et1\"2]"), "at 6: expected a comma or ]");
    EXPECT_EQ(outcome("[\"Et1"), "at 5: expected a closing quote");
    EXPECT_EQ(outcome("[\"Et\\1\"]"), "at 5: expected \" or \\ behind a \\");
    EXPECT_EQ(outcome("[\"Et\\"), "at 5: expected \" or \\ behind a \\");
    EXPECT_EQ(outcome("[a, E\n1]"), "at 5: expected an interface name without control characters");
    EXPECT_EQ(outcome("[a, \"\\\"\n1\"]"),
              "at 4: expected an interface name without control characters");
}

} // namespace
