#include "qor/Words.h"

#include <gtest/gtest.h>

#include <type_traits>

namespace Qor {
namespace {

struct EdgeKind {
    static constexpr Words label{" vlan: "};
};

TEST(Words, AreALiteral) {
    static_assert(EdgeKind::label.view() == " vlan: ");
    static_assert(EdgeKind::label.size() == 7);
    static_assert(Words().view().empty());
    static_assert(Words("a") == Words("a"));
    static_assert(Words("a") != Words("b"));
    EXPECT_STREQ(EdgeKind::label.data(), " vlan: ");
}

TEST(Words, MayBeGivenWhereTextIsExpected) {
    std::string_view const text = EdgeKind::label;
    EXPECT_EQ(text, " vlan: ");
}

TEST(Words, CannotBeMadeOfAPointer) {
    EXPECT_FALSE((std::is_constructible_v<Words, char const*>));
    EXPECT_FALSE((std::is_constructible_v<Words, std::string_view>));
}

} // namespace
} // namespace Qor
