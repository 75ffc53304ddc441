#include "lumlog/MsgDescriptor.h"

#include <gtest/gtest.h>

#include <array>

namespace Lumlog {
namespace {

TEST(MsgDescriptor, KnowsItsCallSite) {
    MsgDescriptor const site("/src/unit", 42, 5);
    EXPECT_STREQ(site.unit(), "/src/unit");
    EXPECT_EQ(site.line(), 42u);
    EXPECT_EQ(site.level(), 5u);
    EXPECT_EQ(site.msgIdOrNone(), MsgDescriptor::noMsgId);
    EXPECT_TRUE(site.words().empty());
}

TEST(MsgDescriptor, GetsItsNumberOnFirstUse) {
    MsgDescriptor first("unit", 1, 0);
    MsgDescriptor second("unit", 2, 0);
    std::array const words{Qor::Words("op"), Qor::Words(" piece: ")};
    EXPECT_EQ(&first.withWords("ww4", words), &first);
    second.withWords("", {});
    EXPECT_EQ(second.msgId(), first.msgId() + 1);
    EXPECT_EQ(first.msgIdOrNone(), first.msgId());
    EXPECT_STREQ(first.format(), "ww4");
    ASSERT_EQ(first.words().size(), 2u);
    EXPECT_EQ(first.words()[1].view(), " piece: ");
    U32 const assigned = first.msgId();
    first.withWords("ww4", words);
    EXPECT_EQ(first.msgId(), assigned);
}

TEST(MsgDescriptorDeathTest, UnassignedNumberIsFatal) {
    MsgDescriptor const site("unit", 1, 0);
    EXPECT_DEATH(site.msgId(),
                 "MsgDescriptor.h:[0-9]+: U32 Lumlog::MsgDescriptor::msgId\\(\\) const.*: "
                 "Assertion 'msgId_ >= 0' failed");
}

TEST(MsgDescriptorDeathTest, TooManyLiteralsAreFatal) {
    MsgDescriptor site("unit", 1, 0);
    std::array<Qor::Words, MsgDescriptor::maxWords + 1> const words;
    EXPECT_DEATH(site.withWords("", words), "Assertion 'words.size\\(\\) <= maxWords' failed");
}

TEST(MsgDescriptorDeathTest, MoreMessagesThanThereAreNumbersAreFatal) {
    auto const numberAll = [] {
        for (U32 message = 0; message <= MsgDescriptor::maxMessages; ++message) {
            MsgDescriptor("unit", 1, 0).withWords("", {});
        }
    };
    EXPECT_DEATH(numberAll(), "Assertion 'assigned < maxMessages' failed");
}

} // namespace
} // namespace Lumlog
