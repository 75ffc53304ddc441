// The table of traces in docs/operations.md: each trace has its row, and each row has its trace.

#include "VornicL3Shared/allocator/TraceTable.h"

#include "VornicL3Shared/allocator/TracedLife.h"
#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Test {
namespace {

std::filesystem::path const source = Support::sourceFolder();

/// The life in which each trace is made.
class EveryTrace : public testing::Test {
protected:
    EveryTrace() { life.run(); }

    static std::vector<Lumlog::DecodedRecord> records() {
        return Lumlog::Reader(Lumlog::RingBuffer::currentIfAny()->bytes()).rest();
    }

    TracedLife life;
    TraceTable table{source / "docs" / "operations.md"};
};

TEST_F(EveryTrace, HasARowAndEachRowHasATrace) {
    std::set<std::string> untold;
    for (std::string const& line : life.world.capture.traces()) {
        if (!table.tellsOfLine(static_cast<U32>(std::stoul(line)), line.substr(2))) {
            untold.insert("line " + line);
        }
    }
    for (Lumlog::DecodedRecord const& record : records()) {
        if (!table.tellsOfRecord(record.level, record.text)) {
            untold.insert("record " + std::to_string(record.level) + ' ' + record.text);
        }
    }
    EXPECT_EQ(untold, std::set<std::string>());
    EXPECT_EQ(table.unused(), std::set<std::string>());
    EXPECT_GT(table.rowCount(), 30u);
}

TEST_F(EveryTrace, IsMadeInThisWorld) {
    auto const made = records();
    auto const statements = traceStatements(source / "VornicL3Shared");
    std::set<std::string> silent;
    for (TraceStatement const& statement : statements) {
        if (std::none_of(made.begin(), made.end(), [&](Lumlog::DecodedRecord const& record) {
                return statement.mayHaveMade(record.level, record.line, record.text);
            })) {
            silent.insert(statement.file + ':' + std::to_string(statement.firstLine));
        }
    }
    EXPECT_EQ(silent, std::set<std::string>());
    EXPECT_GT(statements.size(), 35u);
}

TEST_F(EveryTrace, ThatHasNoRowIsFound) {
    EXPECT_FALSE(table.tellsOfLine(5, "allocVpIndex index allocated is: none"));
    EXPECT_FALSE(table.tellsOfLine(1, "allocVpIndex index allocated is: 12"));
    EXPECT_TRUE(table.tellsOfLine(5, "allocVpIndex index allocated is: 12"));
    EXPECT_TRUE(table.tellsOfRecord(5, "handleEFilterDisableVport vport deleteion for: bgp"));
    EXPECT_FALSE(table.tellsOfLine(5, "handleEFilterDisableVport vport deleteion for: bgp"));
    EXPECT_EQ(table.unused().count("recycleOrFreeVpIndex: "), 1u);
}

} // namespace
} // namespace Test
