#include "language/Arguments.h"

#include "language/CommandTable.h"
#include "language/Help.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

namespace VpAgent {
namespace {

/// The refusal of a line: its message, and the place where it is marked.
std::tuple<std::string, std::size_t, std::size_t> refusalOf(std::string_view line) {
    Words words;
    words.read(line);
    try {
        parseArguments(findCommand(words), words);
    } catch (Refusal const& refusal) {
        Place const place = refusal.place().value_or(Place{999, 999});
        return {refusal.what(), place.at, place.length};
    }
    return {"not refused", 0, 0};
}

using At = std::tuple<std::string, std::size_t, std::size_t>;

TEST(Arguments, AreReadByTheirTypes) {
    Words words;
    words.read("put status bgp edge Ethernet1:7 12");
    Arguments const arguments = parseArguments(findCommand(words), words);
    EXPECT_EQ(arguments.command.raw, "put status");
    EXPECT_EQ(arguments.client->text, "bgp");
    EXPECT_EQ(arguments.vport->text(), "edge Ethernet1:7");
    EXPECT_EQ(arguments.index, 12);
    EXPECT_TRUE(arguments.rest.empty());
}

TEST(Arguments, MayBeAList) {
    Words words;
    words.read("put reference vlan 7 12 bgp \"a b\"");
    Arguments const arguments = parseArguments(findCommand(words), words);
    ASSERT_EQ(arguments.rest.size(), 2u);
    EXPECT_EQ(arguments.rest[1].text, "a b");
}

TEST(Arguments, MayBeLeftOutWhereTheyAreOptional) {
    Words words;
    words.read("import leaf.json");
    Arguments const arguments = parseArguments(findCommand(words), words);
    EXPECT_EQ(arguments.word->text, "leaf.json");
    EXPECT_EQ(arguments.client, nullptr);
}

TEST(Arguments, AreRefusedWhenOneIsMissing) {
    EXPECT_EQ(refusalOf("request bgp vlan"),
              (At{"a word is missing, expected request NAME VPORT", 16, 0}));
    EXPECT_EQ(refusalOf("put boot vlan 7  "),
              (At{"a word is missing, expected put boot VPORT INDEX", 15, 0}));
    EXPECT_EQ(refusalOf("echo"), (At{"a word is missing, expected echo TEXT...", 4, 0}));
}

TEST(Arguments, AreRefusedWhenOneIsTooMany) {
    EXPECT_EQ(refusalOf("dump all"), (At{"\"all\" is one word too many, expected dump", 5, 3}));
    EXPECT_EQ(refusalOf("import a b c"),
              (At{"\"c\" is one word too many, expected import FILE [NAME]", 11, 1}));
}

TEST(Arguments, HoldClientNamesTo255Bytes) {
    std::string const name(256, 'a');
    EXPECT_EQ(refusalOf("client add " + name),
              (At{"bad client name \"" + name + "\", expected a name of 1 to 255 bytes", 11, 256}));
    EXPECT_EQ(std::get<0>(refusalOf("put reference vlan 1 2 a \"\"")),
              "bad client name \"\", expected a name of 1 to 255 bytes");
}

TEST(Commands, AreRefusedWhenUnknown) {
    EXPECT_EQ(refusalOf("requests bgp vlan 1"),
              (At{"unknown command \"requests\", expected client, request, withdraw, put, drop, "
                  "clear, save-boot, import, start, stop, restart, call, call-client, clear-stale, "
                  "verify, mcast, dump, show, inspect, ring, message, begin, commit, echo, help or "
                  "quit",
                  0, 8}));
    EXPECT_EQ(refusalOf("client"),
              (At{"a word is missing, expected client add, client remove or client retire", 6, 0}));
    EXPECT_EQ(refusalOf("put bot vlan 1 2"),
              (At{"unknown command \"put bot\", expected put reference, put status, put waiting or "
                  "put boot",
                  4, 3}));
    EXPECT_EQ(std::get<1>(refusalOf("Dump")), 0u);
}

TEST(Commands, AreAllExplained) {
    EXPECT_NE(helpText({}).find("withdraw NAME VPORT"), std::string::npos);
    Words words;
    words.read("start client show");
    EXPECT_NE(helpText(words.all().first(1))
                  .find("start [table-size=N] [reallocation=on|off] [vfi-forwarding=on|off] "
                        "[remote-low=on|off]\n"),
              std::string::npos);
    EXPECT_NE(helpText(words.all().subspan(1, 1)).find("client retire NAME\n"), std::string::npos);
    EXPECT_NE(helpText(words.all().subspan(2, 1)).find("show [WHAT [NAME]]\n"), std::string::npos);
    EXPECT_NE(helpText(words.all().subspan(2, 1))
                  .find("WHAT: clients, counters, log, references, ring, table, waiting"),
              std::string::npos);
}

} // namespace
} // namespace VpAgent
