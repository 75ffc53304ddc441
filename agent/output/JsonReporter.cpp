#include "output/JsonReporter.h"

#include "output/Dump.h"
#include "output/JsonWriter.h"
#include "output/McastJson.h"
#include "state/Agent.h"
#include "text/Utf8.h"

#include <type_traits>

namespace VpAgent {

namespace {

void write(JsonWriter&, std::monostate, Agent const&) {}

void write(JsonWriter&, QuitReply, Agent const&) {}

void write(JsonWriter& json, CallReply const& reply, Agent const&) {
    std::visit(
        [&](auto const& result) {
            if constexpr (!std::is_same_v<decltype(result), std::monostate const&>) {
                json.member("result", result);
            }
        },
        reply.result);
}

void write(JsonWriter& json, VerifyReply const& reply, Agent const&) {
    json.member("passed", reply.passed);
    if (!reply.passed) {
        json.member("assertion", reply.assertion).member("function", reply.function);
    }
}

void write(JsonWriter& json, ImportReply const& reply, Agent const&) {
    json.member("client", reply.client.view()).key("requests").openObject();
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        json.member(Kind::collection, U64{reply.requests[VornicCentral::kindOrder<Kind>]});
    });
    json.closeObject();
}

void write(JsonWriter& json, TextReply const& reply, Agent const&) {
    json.member("text", reply.text);
}

void write(JsonWriter& json, InspectReply const& reply, Agent const&) {
    json.key("object");
    writeInspected(json, reply.inspected);
}

void write(JsonWriter& json, RingReply const& reply, Agent const&) {
    writeRing(json, reply.report);
}

void write(JsonWriter& json, DumpReply, Agent const& agent) {
    json.key("state");
    writeState(json, agent);
}

void write(JsonWriter& json, McastReply, Agent const& agent) {
    json.key("multicast");
    writeMulticast(json, agent.multicast);
}

} // namespace

void JsonReporter::trace(U32 level, std::string_view text) {
    JsonWriter(output_.out())
        .openObject()
        .member("trace", level)
        .member("text", text)
        .closeObject();
    endLine();
}

void JsonReporter::log(std::string_view id, U32 severity, std::string_view text) {
    JsonWriter json(output_.out());
    json.openObject()
        .member("log", id)
        .member("severity", severity)
        .member("text", text)
        .closeObject();
    endLine();
}

void JsonReporter::multicast(McastEvent const& event) {
    JsonWriter json(output_.out());
    writeEvent(json, event);
    endLine();
}

void JsonReporter::done(CommandLine const& line, std::string_view command, Reply const& reply,
                        Agent const& agent) {
    JsonWriter json(output_.out());
    json.openObject().member("ok", command).member("line", U64{line.number});
    if (reply.pending) {
        json.member("pending", true);
    }
    std::visit([&](auto const& content) { write(json, content, agent); }, reply.content);
    json.closeObject();
    endLine();
}

void JsonReporter::refused(CommandLine const& line, Refusal const& refusal) {
    std::string message = refusal.what();
    if (refusal.place()) {
        auto const column = utf8Length(line.text.substr(0, refusal.place()->at)) + 1;
        message += " (column " + std::to_string(column) + ')';
    }
    JsonWriter json(output_.out());
    json.openObject().member("error", message).member("line", U64{line.number}).closeObject();
    endLine();
}

void JsonReporter::endLine() {
    output_.out() += '\n';
    output_.lineDone();
}

} // namespace VpAgent
