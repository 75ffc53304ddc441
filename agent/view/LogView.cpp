#include "lumlog/Reader.h"
#include "lumlog/RingBuffer.h"
#include "qor/Sinks.h"
#include "state/Agent.h"
#include "text/Utf8.h"
#include "view/TextTable.h"
#include "view/Views.h"

#include <algorithm>

namespace VpAgent {

std::string viewLog(Agent const& agent, ViewRange range) {
    auto const& messages = agent.logs.messages();
    if (messages.empty()) {
        return "LOG MESSAGES\n  none\n";
    }
    TextTable table{">", "MESSAGE", "TEXT"};
    std::size_t const shown = std::min(range.lines, messages.size());
    for (auto at = messages.end() - static_cast<std::ptrdiff_t>(shown); at != messages.end();
         ++at) {
        table.row({grouped(at->number), at->id, at->text});
    }
    return "LOG MESSAGES, the last " + grouped(shown) + " of " + grouped(agent.logs.count()) +
           '\n' + table.text();
}

std::string viewRing(Agent const&, ViewRange range) {
    Lumlog::RingBuffer const* const ring = Lumlog::RingBuffer::current();
    if (ring == nullptr || ring->recordCount() == 0) {
        return "RING BUFFER\n  no records\n";
    }
    auto const records = Lumlog::Reader(ring->bytes()).rest();
    std::size_t const shown = std::min(range.lines, records.size());
    std::string text = "RING BUFFER, the last " + grouped(shown) + " of " +
                       grouped(ring->recordCount()) + " records\n";
    for (auto at = records.end() - static_cast<std::ptrdiff_t>(shown); at != records.end(); ++at) {
        text += "  " + Qor::utcTimeText(at->time) + "  " + std::to_string(at->level) + "  " +
                printable(at->text) + '\n';
    }
    return text;
}

} // namespace VpAgent
