#include "state/Agent.h"
#include "view/Pool.h"
#include "view/TextTable.h"
#include "view/Views.h"
#include "view/WithoutIndex.h"

#include <algorithm>
#include <cstdio>

namespace VpAgent {

using namespace VornicCentral;

namespace {

std::string onOff(bool on) { return on ? "on" : "off"; }

std::string percent(U32 part, U32 whole) {
    std::array<char, 32> text{};
    double const share = whole == 0 ? 0.0 : 100.0 * part / whole;
    std::snprintf(text.data(), text.size(), "%.1f %%", share);
    return text.data();
}

/// The table from its lowest to its highest index in at most 64 cells: `#` where all indices are in
/// use, `+` where at least half are, `-` where some are, `.` where none is.
std::string picture(Bask::Bitmap const& pool) {
    U64 const cells = std::min<U64>(pool.size(), 64);
    std::string text = "  |";
    for (U64 cell = 0; cell < cells; ++cell) {
        auto const from = static_cast<U32>(cell * pool.size() / cells);
        auto const to = static_cast<U32>((cell + 1) * pool.size() / cells);
        U32 used = 0;
        for (U32 index = from; index < to; ++index) {
            used += pool.isBitSet(index) ? 1u : 0u;
        }
        text += used == to - from ? '#' : used == 0 ? '.' : used * 2 >= to - from ? '+' : '-';
    }
    std::string const last = std::to_string(pool.size() - 1);
    std::string const gap(std::max<std::size_t>(cells, last.size() + 2) - last.size() - 1, ' ');
    return text + "|  # all in use, + half or more, - less, . none\n   0" + gap + last + '\n';
}

std::string runs(Bask::Bitmap const& pool, std::size_t most) {
    auto const all = usedRuns(pool);
    std::string text = "  in use:";
    for (std::size_t at = 0; at < std::min(most, all.size()); ++at) {
        text += at == 0 ? " " : ", ";
        text += std::to_string(all[at].first);
        text += all[at].first == all[at].last ? "" : '-' + std::to_string(all[at].last);
    }
    if (all.size() > most) {
        text += " and " + counted(all.size() - most, "more run");
    }
    return text + '\n';
}

std::string kinds(VpReferenceList const& references) {
    TextTable table{"KIND", ">REFERENCES", ">INDICES", ">WITHOUT INDEX"};
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        auto const& collection = references.collection<Kind>();
        std::size_t const without = withoutIndex(collection);
        table.row({Kind::word, grouped(collection.memberCount()),
                   grouped(collection.memberCount() - without), grouped(without)});
    });
    return table.text();
}

} // namespace

std::string viewTable(Agent const& agent, ViewRange range) {
    std::string text = "VP TABLE\n";
    if (!agent.machine.running()) {
        return text + "  the state machine is not running\n" + kinds(*agent.database.references());
    }
    auto const& stateMachine = agent.machine.stateMachine();
    text += "  reallocation " + onOff(stateMachine.vpReallocationEnabled()) + ", VFI forwarding " +
            onOff(stateMachine.vfiForwarding()) + ", remote VTEPs from the " +
            (stateMachine.vxlanCapabilities()->remoteVportLowIndex() ? "low" : "high") + " end\n";
    if (auto const& pool = stateMachine.vpBitmap()) {
        U32 const used = pool->numBitsInSetState();
        text += "  " + grouped(pool->size()) + " entries, " + grouped(used) + " in use (" +
                percent(used, pool->size()) + ", the system's 8 among them), " +
                grouped(pool->size() - used) + " free\n";
        if (pool->size() != 0) {
            text += picture(*pool) + runs(*pool, std::min<std::size_t>(range.lines, 100));
        }
    }
    return text + kinds(*agent.database.references());
}

} // namespace VpAgent
