#include "agent/RingScripts.h"
#include "qor/Sinks.h"
#include "ring/RingReport.h"
#include "view/TextTable.h"

#include <gtest/gtest.h>

namespace VpAgentTest {
namespace {

using VpAgent::TextTable;

/// What people see of these records.
std::string table(Json const& records, std::size_t from = 0) {
    TextTable table{"TIME", ">LEVEL", "CALL SITE", ">MESSAGE", "TEXT"};
    for (std::size_t at = from; at < records.size(); ++at) {
        Json const& record = records[at];
        table.row({Qor::utcTimeText(record.at("time")), record.at("level").dump(),
                   VpAgent::callSite(record.at("unit").get<std::string>(), record.at("line")),
                   record.at("msgId").dump(), record.at("text")});
    }
    return table.text();
}

TEST(CallSite, IsTheLastPartOfTheUnitAndTheLine) {
    EXPECT_EQ(VpAgent::callSite("/src/folder/Unit", 12), "Unit:12");
    EXPECT_EQ(VpAgent::callSite("Unit", 12), "Unit:12");
    EXPECT_EQ(VpAgent::callSite("", 0), ":0");
}

using ShowRing = RingFiles;

TEST_F(ShowRing, GivesEachRecordAsAnObject) {
    Json answer = lastJson("start table-size=8\nshow ring\n");
    for (Json& record : answer.at("ring")) {
        EXPECT_GT(record.at("time"), 1'700'000'000'000'000'000u);
        EXPECT_GT(record.at("line"), 0u);
        record.at("time") = 0;
        record.at("line") = 0;
    }
    EXPECT_EQ(answer.dump(),
              R"({"ok":"show","line":2,"ring":[)"
              R"({"sequence":0,"time":0,"level":1,)"
              R"("unit":"/src/VornicL3Shared/VornicL3VpIndexAllocator","line":0,"msgId":0,)"
              R"("text":"handleInitialized"},)"
              R"({"sequence":1,"time":0,"level":1,)"
              R"("unit":"/src/VornicL3Shared/VornicL3VpIndexAllocator","line":0,"msgId":1,)"
              R"("text":"reconcile"}]})");
}

TEST_F(ShowRing, ShowsPeopleTheSameWithTheNewestAtTheEnd) {
    dumpOf(someRecords, "ring");
    std::string const show = "show ring --from " + path("ring");
    Json const records = lastJson(show + '\n').at("ring");
    std::string const all = std::to_string(records.size());
    std::string const heading = "RING BUFFER of \"" + path("ring") + "\", the last ";
    EXPECT_EQ(textOf(show), heading + all + " of " + all + " records\n" + table(records));
    EXPECT_EQ(textOf(show + " --last 3"),
              heading + "3 of " + all + " records\n" + table(records, records.size() - 3));
    EXPECT_EQ(lastJson(show + " --last 3").at("ring").dump(),
              Json(std::vector<Json>(records.end() - 3, records.end())).dump());
    EXPECT_EQ(lastJson(show + " --last 1000").at("ring").dump(), records.dump());
    EXPECT_EQ(records.back().at("text"), "freeVpIndex index freed is: 63");
}

TEST_F(ShowRing, ShowsPeopleAHundredUnlessTheyWantAll) {
    std::string script = "client add leaf\nstart table-size=64\n";
    for (int vlan = 1; vlan < 20; ++vlan) {
        script += "request leaf vlan " + std::to_string(vlan) + '\n';
    }
    dumpOf(script, "ring");
    std::string const show = "show ring --from " + path("ring");
    Json const records = lastJson(show).at("ring");
    ASSERT_GT(records.size(), 101u);
    std::string const all = std::to_string(records.size());
    std::string const heading = "RING BUFFER of \"" + path("ring") + "\", the last ";
    EXPECT_EQ(textOf(show), heading + "100 of " + all + " records; --all shows more\n" +
                                table(records, records.size() - 100));
    std::string const whole = heading + all + " of " + all + " records\n" + table(records);
    EXPECT_EQ(textOf(show + " --all"), whole);
    EXPECT_EQ(textOf(show + " --last " + all), whole);
    EXPECT_EQ(lastJson(show + " --all").at("ring").dump(), records.dump());
}

TEST_F(ShowRing, CountsTheRecordsThatWereOverwritten) {
    std::string script = "client add leaf\nstart table-size=9\n";
    for (int round = 0; round < 3000; ++round) {
        script += "request leaf vlan 1\nwithdraw leaf vlan 1\n";
    }
    dumpOf(script, "ring");
    std::string const show = "show ring --from " + path("ring");
    Json const records = lastJson(show).at("ring");
    std::size_t const ever = records.back().at("sequence").get<std::size_t>() + 1;
    ASSERT_GT(ever, records.size());
    EXPECT_EQ(records.front().at("sequence"), ever - records.size());
    EXPECT_EQ(textOf(show + " --last 1"), "RING BUFFER of \"" + path("ring") +
                                              "\", the last 1 of " + VpAgent::grouped(ever) +
                                              " records\n" + table(records, records.size() - 1));
}

TEST_F(ShowRing, SaysThatThereAreNoRecords) {
    EXPECT_EQ(textOf("show ring"), "RING BUFFER\n  no records\n");
    EXPECT_EQ(lastJson("show ring").dump(), R"({"ok":"show","line":1,"ring":[]})");
}

TEST_F(ShowRing, LeavesTheExcerptOfTheOverviewAsItIs) {
    std::string const out = textOf(std::string(someRecords) + "show\n");
    std::string const excerpt = out.substr(out.find("RING BUFFER"));
    EXPECT_EQ(std::count(excerpt.begin(), excerpt.end(), '\n'), 6) << excerpt;
    EXPECT_EQ(excerpt.find("RING BUFFER, the last 5 of "), 0u) << excerpt;
    EXPECT_TRUE(out.ends_with("  5  freeVpIndex index freed is: 63\n")) << excerpt;
}

TEST_F(ShowRing, RefusesOptionsThatMakeNoSense) {
    std::string const words = "[--from FILE] [--ring N] [--ctf DIR] [--last N] [--all] (column 11)";
    std::string const numbers = "expected a number from 1 to 4294967295 (column 18)";
    std::vector<std::pair<std::string, std::string>> const refusals{
        {"leaf", "bad option \"leaf\", expected " + words},
        {"--From x", "bad option \"--From\", expected " + words},
        {"--last", "a word is missing, expected --last N (column 17)"},
        {"--all --from", "a word is missing, expected --from FILE (column 23)"},
        {"--last 0", "bad number \"0\", " + numbers},
        {"--last x", "bad number \"x\", " + numbers},
        {"--last 4294967296",
         "bad number \"4294967296\", expected a number from 1 to 4294967295 (column 27)"},
        {"--ring 0", "bad number \"0\", " + numbers},
        {"--ring 1", "--ring is given without a file, expected --from FILE (column 11)"},
        {"--all --all", "--all is given twice, expected it once (column 17)"},
        {"--last 3 --all", "--last and --all are given, expected one of them (column 20)"},
    };
    for (auto const& [options, refusal] : refusals) {
        EXPECT_EQ(errorOf("", "show ring " + options), refusal);
    }
}

TEST_F(ShowRing, IsExplained) {
    EXPECT_EQ(textOf("help show").substr(0, 66),
              "show ring [--from FILE] [--ring N] [--ctf DIR] [--last N] [--all]\n");
    EXPECT_NE(textOf("help show").find("    --last N: the newest N records\n"), std::string::npos);
    EXPECT_NE(textOf("help").find("ring dump FILE"), std::string::npos);
}

} // namespace
} // namespace VpAgentTest
