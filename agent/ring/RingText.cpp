#include "qor/Sinks.h"
#include "ring/RingReport.h"
#include "text/Utf8.h"
#include "view/TextTable.h"

#include <algorithm>

namespace VpAgent {

namespace {

std::string damageText(RingSource const& source) {
    return source.damaged == 0
               ? ""
               : "  " + counted(source.damaged, "record") + " that could not be decoded left out\n";
}

std::string heading(RingListing const& listing, std::size_t shown) {
    std::string text = "RING BUFFER";
    if (!listing.source.file.empty()) {
        text += " of " + inQuotes(listing.source.file);
    }
    if (listing.records.empty()) {
        return text + "\n  no records\n";
    }
    text += ", the last " + grouped(shown) + " of " +
            grouped(static_cast<std::size_t>(listing.records.back().sequence) + 1) + " records";
    return text + (shown < listing.records.size() ? "; --all shows more\n" : "\n");
}

std::string text(RingListing const& listing) {
    std::size_t const shown = std::min(listing.shownToPeople, listing.records.size());
    TextTable table{"TIME", ">LEVEL", "CALL SITE", ">MESSAGE", "TEXT"};
    for (std::size_t at = listing.records.size() - shown; at < listing.records.size(); ++at) {
        Lumlog::DecodedRecord const& record = listing.records[at];
        table.row({Qor::utcTimeText(record.time), std::to_string(record.level),
                   callSite(record.unit, record.line), std::to_string(record.msgId), record.text});
    }
    return heading(listing, shown) + (table.empty() ? "" : table.text()) +
           damageText(listing.source);
}

std::string text(RingTrace const& trace) {
    return "ring buffer: " + grouped(static_cast<std::size_t>(trace.records)) +
           (trace.records == 1 ? " record" : " records") + " written to " +
           inQuotes(trace.directory) + '\n' + damageText(trace.source);
}

std::string text(RingSaved const& saved) {
    return "ring buffer: " + grouped(static_cast<std::size_t>(saved.bytes)) + " bytes written to " +
           inQuotes(saved.file) + '\n';
}

std::string text(MessageListing const& listing) {
    if (listing.messages.empty()) {
        return "MESSAGES\n  none so far\n";
    }
    TextTable table{">NUMBER", "", ">LEVEL", "CALL SITE", "FORMAT"};
    for (auto const& [description, on] : listing.messages) {
        table.row({std::to_string(description.msgId), on ? "on" : "off",
                   std::to_string(description.level), callSite(description.unit, description.line),
                   description.wording()});
    }
    return "MESSAGES\n" + table.text();
}

} // namespace

std::string ringText(RingReport const& report) {
    std::string lines = std::visit([](auto const& each) { return text(each); }, report);
    lines.pop_back(); // the last line end, which who prints it adds
    return lines;
}

std::string callSite(std::string_view unit, U32 line) {
    return std::string(unit.substr(unit.rfind('/') + 1)) + ':' + // npos + 1 is 0
           std::to_string(line);
}

} // namespace VpAgent
