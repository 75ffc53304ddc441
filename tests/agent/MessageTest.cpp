#include "agent/RingScripts.h"
#include "view/TextTable.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace VpAgentTest {
namespace {

using Texts = std::vector<std::string>;

constexpr char const* twoMessages = "start table-size=8\nstop\n"; // two records

/// The numbers of the messages that are on, and of those that are off.
std::pair<std::vector<int>, std::vector<int>> onAndOff(Json const& answer) {
    std::pair<std::vector<int>, std::vector<int>> numbers;
    for (Json const& message : answer.at("messages")) {
        (message.at("on") ? numbers.first : numbers.second).push_back(message.at("msgId"));
    }
    return numbers;
}
using OnAndOff = std::pair<std::vector<int>, std::vector<int>>;

TEST(Message, ListsWhatTheRingKnows) {
    Json answer = lastJson(std::string(twoMessages) + "client add leaf\nstart table-size=8\n" +
                           "message off 1\nmessage\n");
    Json& messages = answer.at("messages");
    messages.erase(messages.begin() + 3, messages.end());
    for (Json& message : messages) {
        EXPECT_GT(message.at("line"), 0u);
        message.at("line") = 0;
    }
    EXPECT_EQ(answer.dump(), R"({"ok":"message","line":6,"messages":[)"
                             R"({"msgId":0,"on":true,"level":1,)"
                             R"("unit":"/src/VornicL3Shared/VornicL3VpIndexAllocator","line":0,)"
                             R"("format":"handleInitialized"},)"
                             R"({"msgId":1,"on":false,"level":1,)"
                             R"("unit":"/src/VornicL3Shared/VornicL3VpIndexAllocator","line":0,)"
                             R"("format":"reconcile"},)"
                             R"({"msgId":2,"on":true,"level":5,)"
                             R"("unit":"/src/VornicL3Shared/VornicL3VpIndexAllocator","line":0,)"
                             R"("format":"reconcile clean up status for: {text}"}]})");
}

TEST(Message, ShowsPeopleTheSame) {
    std::string const script = std::string(someRecords) + "message off 1 3\nmessage\n";
    VpAgent::TextTable table{">NUMBER", "", ">LEVEL", "CALL SITE", "FORMAT"};
    Json const answer = lastJson(script);
    for (Json const& message : answer.at("messages")) {
        std::string const unit = message.at("unit");
        table.row({message.at("msgId").dump(), message.at("on") ? "on" : "off",
                   message.at("level").dump(),
                   unit.substr(unit.rfind('/') + 1) + ':' + message.at("line").dump(),
                   message.at("format")});
    }
    EXPECT_EQ(textOf(script), "MESSAGES\n" + table.text());
}

TEST(Message, ListIsEmptyBeforeTheFirstRecord) {
    EXPECT_EQ(lastJson("message").dump(), R"({"ok":"message","line":1,"messages":[]})");
    EXPECT_EQ(textOf("message"), "MESSAGES\n  none so far\n");
}

TEST(Message, OffKeepsItOutOfTheRingUntilItIsOnAgain) {
    std::vector<Json> const lines =
        jsonLines(std::string(twoMessages) + "message off 1\nstart table-size=8\nstop\n"
                                             "message off 0 1\nstart table-size=8\nstop\n"
                                             "message on 1 0\nmessage off 0\n"
                                             "start table-size=8\nshow ring\nmessage\n");
    EXPECT_EQ(ringTexts(lines[lines.size() - 2]),
              (Texts{"handleInitialized", "reconcile", "handleInitialized", "reconcile"}));
    EXPECT_EQ(onAndOff(lines.back()), (OnAndOff{{1}, {0}}));
    EXPECT_EQ(lines[2].dump(), R"({"ok":"message","line":3})");
    EXPECT_EQ(textOf(std::string(twoMessages) + "message off 1\nmessage on 1\n"), "");
}

TEST(Message, UnknownNumberIsRefusedAndNothingChanged) {
    std::string const script = std::string(twoMessages) + "message off 1\n";
    std::string const what = "expected a number that 'message' lists ";
    std::vector<std::pair<std::string, std::string>> const refusals{
        {"message off 0 2", "unknown message \"2\", " + what + "(column 15)"},
        {"message on 1 65535", "unknown message \"65535\", " + what + "(column 14)"},
        {"message off 0 x", "bad message number \"x\", expected a number from 0 to 65535 "
                            "(column 15)"},
        {"message off 0 -1", "bad message number \"-1\", expected a number from 0 to 65535 "
                             "(column 15)"},
        {"message off 65536", "bad message number \"65536\", expected a number from 0 to 65535 "
                              "(column 17)"},
        {"message on", "a word is missing, expected message on NUMBER... (column 11)"},
        {"message 1", "unknown command \"message 1\", expected message, message off or message on "
                      "(column 9)"},
    };
    for (auto const& [command, refusal] : refusals) {
        std::vector<Json> const lines = jsonLines(script + command + "\nmessage\n", 2);
        EXPECT_EQ(lines[lines.size() - 2].at("error"), refusal);
        EXPECT_EQ(onAndOff(lines.back()), (OnAndOff{{0}, {1}})) << command;
    }
}

} // namespace
} // namespace VpAgentTest
