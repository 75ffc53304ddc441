#include "ring/RingReport.h"

namespace VpAgent {

namespace {

void writeSource(JsonWriter& json, RingSource const& source) {
    if (!source.file.empty()) {
        json.member("from", source.file).member("damaged", U64{source.damaged});
    }
}

void writeRecord(JsonWriter& json, Lumlog::DecodedRecord const& record) {
    json.openObject()
        .member("sequence", record.sequence)
        .member("time", record.time)
        .member("level", record.level)
        .member("unit", record.unit)
        .member("line", record.line)
        .member("msgId", record.msgId)
        .member("text", record.text)
        .closeObject();
}

void write(JsonWriter& json, RingListing const& listing) {
    writeSource(json, listing.source);
    json.key("ring").openArray();
    for (Lumlog::DecodedRecord const& record : listing.records) {
        writeRecord(json, record);
    }
    json.closeArray();
}

void write(JsonWriter& json, RingTrace const& trace) {
    writeSource(json, trace.source);
    json.member("ctf", trace.directory).member("records", trace.records);
}

void write(JsonWriter& json, RingSaved const& saved) {
    json.member("file", saved.file).member("bytes", saved.bytes);
}

void write(JsonWriter& json, MessageListing const& listing) {
    json.key("messages").openArray();
    for (auto const& [description, on] : listing.messages) {
        json.openObject()
            .member("msgId", description.msgId)
            .member("on", on)
            .member("level", description.level)
            .member("unit", description.unit)
            .member("line", description.line)
            .member("format", description.wording())
            .closeObject();
    }
    json.closeArray();
}

} // namespace

void writeRing(JsonWriter& json, RingReport const& report) {
    std::visit([&](auto const& each) { write(json, each); }, report);
}

} // namespace VpAgent
