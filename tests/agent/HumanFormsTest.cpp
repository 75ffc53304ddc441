#include "Limits.h"
#include "output/HumanReporter.h"
#include "pelo/Ptr.h"
#include "text/Utf8.h"
#include "view/Pool.h"
#include "view/TextTable.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace VpAgent {
namespace {

using Runs = std::vector<Run>;

TEST(MarkedLine, PointsAtThePlace) {
    EXPECT_EQ(markedLine("request bgp vlan 5000", {17, 4}, "  "), "  request bgp vlan 5000\n"
                                                                  "                   ^~~~\n");
    EXPECT_EQ(markedLine("dump x", {5, 1}, ""), "dump x\n     ^\n");
}

TEST(MarkedLine, PointsBehindTheLineWhereAWordIsMissing) {
    EXPECT_EQ(markedLine("client add", {10, 0}, ""), "client add\n           ^\n");
}

TEST(MarkedLine, CountsCharactersAndShowsEscapes) {
    EXPECT_EQ(markedLine("\techo Z\xC3\xBC\x1b", {9, 1}, ""), " echo Z\xC3\xBC\\x1B\n"
                                                              "        ^~~~\n");
}

TEST(Printable, ShowsControlCharactersAsEscapes) {
    EXPECT_EQ(printable("a\x1b[2J\x7f"), "a\\x1B[2J\\x7F");
    EXPECT_EQ(printable("\xC2\x9B"), "\\xC2\\x9B");
    EXPECT_EQ(printable("Z\xC3\xBCrich \xFF"), "Z\xC3\xBCrich \\xFF");
}

TEST(Quotes, HoldTheBeginningOfALongText) {
    EXPECT_EQ(inQuotes("a\x1b"), "\"a\\x1B\"");
    std::string const longest(Limits::quote, 'x');
    EXPECT_EQ(inQuotes(longest), '"' + longest + '"');
    EXPECT_EQ(inQuotes(longest + 'y'), '"' + longest + "...\"");
    std::string const cut = longest.substr(2);
    EXPECT_EQ(inQuotes(cut + "\xE2\x82\xAC"), '"' + cut + "...\"");
    EXPECT_EQ(inQuotes(std::string(Limits::quote + 9, '\x80')), "\"...\"");
}

TEST(TextTable, MakesColumnsAsWideAsTheirCells) {
    TextTable table{"CLIENT", ">COUNT", "REMARK"};
    table.row({"Z\xC3\xBCrich", "1,000", ""});
    table.row({"a\nb", "7", "removed"});
    EXPECT_EQ(table.text(""), "CLIENT  COUNT  REMARK\n"
                              "Z\xC3\xBCrich  1,000\n"
                              "a\\x0Ab      7  removed\n");
}

TEST(Numbers, AreGroupedForPeople) {
    EXPECT_EQ(grouped(0), "0");
    EXPECT_EQ(grouped(999), "999");
    EXPECT_EQ(grouped(1000), "1,000");
    EXPECT_EQ(grouped(1234567), "1,234,567");
    EXPECT_EQ(counted(1, "client"), "1 client");
    EXPECT_EQ(counted(2, "client"), "2 clients");
}

TEST(UsedRuns, AreInclusiveAndAscending) {
    auto const pool = Pelo::newNode<Bask::Bitmap>(U64{0}, U32{64}, Bask::HBitmap::BitState::clear);
    EXPECT_EQ(usedRuns(*pool), Runs{});
    for (U32 const index : {63u, 0u, 1u, 2u, 9u}) {
        pool->setBit(index);
    }
    EXPECT_EQ(usedRuns(*pool), (Runs{{0, 2}, {9, 9}, {63, 63}}));
}

} // namespace
} // namespace VpAgent
