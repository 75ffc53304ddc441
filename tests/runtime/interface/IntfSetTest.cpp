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
    EXPECT_EQ(Support::printed(set), "[, Ethernet1]");
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

} // namespace
