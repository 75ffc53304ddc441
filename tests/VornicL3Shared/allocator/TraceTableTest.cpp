// The table of traces in docs/operations.md: each trace has its row, and each row has its trace.

#include "VornicL3Shared/allocator/TraceTable.h"

#include "VornicL3Shared/support/World.h"
#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "support/Places.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Test {
namespace {

std::filesystem::path const source = Support::sourceFolder();

/// A world in which each trace is made: of the life of a client, of the five kinds requested,
/// shared, waiting, served and withdrawn, of a restart from references and of one from the boot
/// status.
class EveryTrace : public testing::Test {
protected:
    EveryTrace() : world({.tableSize = 13, .reallocation = true}) {
        world.client("bgp");
        world.client("bridging");
        world.start();
        shareAndWait();
        world.start();
        eachVport("2", [&](auto const& vport) { world.withdraw("bgp", vport); });
        world.configDir->vpIndexConfigDel("bridging");
        world.stop();
        recoverFromBoot();
    }

    /// Calls `use` with a virtual port of each kind; those of two numbers differ.
    template <class Use> static void eachVport(std::string const& number, Use const& use) {
        use(remote("10.0.0." + number + "@17"));
        use(mlag("10.0.0." + number + "@17"));
        use(edge("Ethernet1/" + number + ":100"));
        use(vlan(static_cast<U16>(100 + std::stoi(number))));
        use(efilter("Ethernet2/" + number));
    }

    /// The first five fill the table and are shared; the second five wait, and take the indices of
    /// the first.
    void shareAndWait() {
        for (char const* const name : {"bgp", "bridging"}) {
            eachVport("1", [&](auto const& vport) { world.request(name, vport); });
        }
        eachVport("2", [&](auto const& vport) { world.request("bgp", vport); });
        world.sm->handleInvalidRemoteVport();
        world.sm->handleInvalidMlagRemoteVport();
        world.sm->handleInvalidEdgeVport();
        world.sm->handleInvalidVlanVport();
        world.sm->handleInvalidEFilterDisableVport();
        for (char const* const name : {"bgp", "bridging"}) {
            eachVport("1", [&](auto const& vport) { world.withdraw(name, vport); });
        }
        world.sm->verify();
    }

    /// The boot status holds an index of the system's for each kind, and one that is recovered; the
    /// status of the client has keys that it does not request.
    void recoverFromBoot() {
        U16 reserved = 1;
        U16 index = 8;
        auto const bootIs = [&](auto const& vport, U16 vpIndex) {
            world.boot->is<typename std::decay_t<decltype(vport)>::Kind>(
                vport.key, VornicCentral::VirtualPort(vpIndex));
        };
        eachVport("3", [&](auto const& vport) { bootIs(vport, reserved++); });
        eachVport("4", [&](auto const& vport) { bootIs(vport, index++); });
        eachVport("5", [&](auto const& vport) {
            world.status("bgp").is<typename std::decay_t<decltype(vport)>::Kind>(
                vport.key, VornicCentral::VirtualPort(12));
        });
        world.start();
        world.sm->clearStaleEntries();
    }

    static std::vector<Lumlog::DecodedRecord> records() {
        return Lumlog::Reader(Lumlog::RingBuffer::currentIfAny()->bytes()).rest();
    }

    World world;
    TraceTable table{source / "docs" / "operations.md"};
};

TEST_F(EveryTrace, HasARowAndEachRowHasATrace) {
    std::set<std::string> untold;
    for (std::string const& line : world.capture.traces()) {
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
