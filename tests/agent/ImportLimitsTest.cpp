#include "Limits.h"
#include "agent/MeasuredRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>

#include <iostream>
#include <string>

namespace VpAgentTest {
namespace {

namespace Limits = VpAgent::Limits;
using testing::HasSubstr;

/// What the tree of the largest file needs.
long const treeMemory = memoryIsPadded() ? 1000 : 600;
long const littleForImports = memoryIsPadded() ? 400 : 80;

class ImportLimits : public testing::Test {
protected:
    std::string path(std::string const& name) const { return (folder_.path() / name).string(); }

    /// What the program says of a file that it is to import.
    Measured imported(std::string const& file) const {
        return measuredRun({folder_.write("script.vp", "import " + file + " a\n")});
    }

    /// The file is refused, with these words, before it took much of anything.
    void expectRefused(std::string const& file, std::string const& words,
                       long most = littleForImports) const {
        Measured const run = imported(file);
        EXPECT_EQ(run.outcome.status, 2);
        EXPECT_THAT(run.outcome.err, HasSubstr(words));
        EXPECT_LT(run.seconds, littleTime());
        EXPECT_LT(run.peakMebibytes, most);
        std::cout << run.seconds << " s, " << run.peakMebibytes << " MiB: " << words << '\n';
    }

    /// The file of these contents is refused.
    void expectTextRefused(std::string const& text, std::string const& words,
                           long most = littleForImports) const {
        expectRefused(folder_.write("a.json", text), words, most);
    }

    TemporaryFolder folder_;
};

/// Where the sanitizers make it take long, a part of what the largest file holds says as much.
std::size_t const share = memoryIsPadded() ? 16 : 1;

/// `part`, as often as it fits into the largest file beside `front` and `back`.
std::string filled(std::string const& front, std::string const& part, std::string const& back) {
    std::string text = front;
    while (text.size() + part.size() + back.size() <= Limits::importFile / share) {
        text += part;
    }
    return text + back;
}

TEST_F(ImportLimits, AFileOfTheLargestSizeIsTakenAndNoLargerOne) {
    std::string const file = R"({"VLAN_MEMBER|Vlan7|Et1": {}})";
    std::string const padding(Limits::importFile - file.size(), ' ');
    EXPECT_EQ(imported(folder_.write("a.json", file + padding)).outcome.out,
              "import: client a: 1 edge\n");
    std::string const words = "(more than 16777216 bytes), expected a readable file";
    expectTextRefused(file + padding + ' ', words);
    makeSparse(path("sparse"), std::uintmax_t{10} << 30);
    expectRefused(path("sparse"), words);
}

TEST_F(ImportLimits, WhatMayNeverEndIsNoFile) {
    ASSERT_EQ(::mkfifo(path("pipe").c_str(), 0600), 0);
    for (std::string const& file :
         {path("pipe"), std::string("/dev/zero"), std::string("/dev/null")}) {
        expectRefused(file, '"' + file + "\" (not a regular file), expected a readable file");
    }
    expectRefused(folder_.path().string(), "is a folder, expected a file");
}

TEST_F(ImportLimits, AFileOfManySmallValuesIsReadInBoundedMemory) {
    expectTextRefused(filled("[", "[],", "0]"), "[0]: VNI: an array, expected an object",
                      treeMemory);
    expectTextRefused(filled("[", "0,", "0]"), "[0]: VNI: 0, expected an object", treeMemory);
    expectTextRefused(filled("{", "\"\":0,", "\"VLAN_MEMBER|x\":0}"),
                      "VLAN_MEMBER|x: 0, expected an object", treeMemory);
}

TEST_F(ImportLimits, AMillionKeysAreReadAsFastAsAnyOthers) {
    std::string text = R"({"VLAN_MEMBER": {)";
    for (int key = 0; key < static_cast<int>(1000000 / share); ++key) {
        text += '"' + std::to_string(key) + "\":0,";
    }
    expectTextRefused(text + R"("x":0}})", "VLAN_MEMBER|0: 0, expected an object", treeMemory);
}

TEST_F(ImportLimits, WhateverIsNestedTooDeepIsRefusedAtOnce) {
    for (char const* const part : {"[", "{\"\":", "[{\"a\":"}) {
        expectTextRefused(filled("", part, ""), "nested too deep at line 1, column ");
    }
}

TEST_F(ImportLimits, NumbersTextsAndBytesOfAnySizeAreRefusedOrTaken) {
    expectTextRefused(R"({"vni": 1e999999, "remoteVteps": []})", "no JSON at line 1, column ");
    expectTextRefused(R"({"vni": )" + std::string(1000000, '9') + R"(, "remoteVteps": []})",
                      "no JSON at line 1, column ");
    expectTextRefused(R"({"vni": 99999999999999999999, "remoteVteps": []})",
                      "VNI: vni 1e+20, expected a number from 1 to 16777215");
    expectTextRefused(R"({"vni": -1, "remoteVteps": []})", "VNI: vni -1, expected a number");
    expectTextRefused("{\"vni\": \"" + std::string(1000000, '1') + "\", \"remoteVteps\": []}",
                      "VNI: vni \"111");
    expectTextRefused("{\"VLAN_MEMBER|Vlan7|\xFF\": {}}", "no JSON at line 1, column ");
    expectTextRefused(std::string("{}\0", 3), "no JSON at line 1, column 3");
    expectTextRefused(std::string(1000, '\0'), "no JSON at line 1, column 1");
    expectTextRefused(R"({"VLAN_MEMBER|Vlan7|Et\u001B[2J": {}})", "without control characters");
    expectTextRefused(R"({"VLAN_MEMBER|Vlan7|Et\u0000": {}})", "without control characters");
    expectTextRefused("", "no JSON at line 1, column 1");
}

} // namespace
} // namespace VpAgentTest
