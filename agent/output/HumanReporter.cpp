#include "output/HumanReporter.h"

#include "Limits.h"
#include "output/Dump.h"
#include "state/Agent.h"
#include "text/Utf8.h"
#include "view/MulticastView.h"
#include "view/VerifyAdvice.h"

#include <algorithm>
#include <type_traits>

namespace VpAgent {

namespace {

void write(std::string&, std::monostate, Agent const&) {}

void write(std::string&, QuitReply, Agent const&) {}

void write(std::string& out, CallReply const& reply, Agent const&) {
    std::visit(
        [&](auto const& result) {
            using Result = std::remove_cvref_t<decltype(result)>;
            if constexpr (std::is_same_v<Result, bool>) {
                out += result ? "true\n" : "false\n";
            } else if constexpr (std::is_same_v<Result, U64>) {
                out += std::to_string(result) + '\n';
            } else if constexpr (std::is_same_v<Result, std::string>) {
                out += printable(result) + '\n';
            }
        },
        reply.result);
}

void write(std::string& out, VerifyReply const& reply, Agent const& agent) {
    if (reply.passed) {
        out += "verify: passed\n";
        return;
    }
    out += "verify: FAILED: " + reply.assertion + "\n  in " + reply.function + '\n' +
           verifyAdvice(reply, agent);
}

void write(std::string& out, ImportReply const& reply, Agent const&) {
    std::string counts;
    VornicCentral::forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        std::size_t const count = reply.requests[VornicCentral::kindOrder<Kind>];
        if (count != 0) {
            counts += (counts.empty() ? "" : ", ") + std::to_string(count) + ' ' + Kind::word;
        }
    });
    out += "import: client " + printable(reply.client) + ": " +
           (counts.empty() ? "nothing to request" : counts) + '\n';
}

void write(std::string& out, TextReply const& reply, Agent const&) {
    out += printableLines(reply.text) + '\n';
}

void write(std::string& out, InspectReply const& reply, Agent const&) {
    out += printableLines(inspectedText(reply.inspected)) + '\n';
}

void write(std::string& out, RingReply const& reply, Agent const&) {
    out += printableLines(ringText(reply.report)) + '\n';
}

void write(std::string& out, DumpReply, Agent const& agent) {
    JsonWriter json(out);
    writeState(json, agent);
    out += '\n';
}

void write(std::string& out, McastReply, Agent const& agent) {
    out += viewMulticast(agent.multicast);
}

/// Where the character begins that the byte there belongs to, or that byte when it is in none.
std::size_t characterStart(std::string_view text, std::size_t at) noexcept {
    constexpr std::size_t longest = 4;
    for (std::size_t start = at; at < text.size() && at - start < longest; --start) {
        if (utf8At(text, start).length > at - start) {
            return start;
        }
        if (start == 0) {
            break;
        }
    }
    return at;
}

/// The part of a line that a message repeats: all of it, or as much around `at` as is allowed, in
/// whole characters.
Place quotedPart(std::string_view line, std::size_t at) {
    if (line.size() <= Limits::quote) {
        return {0, line.size()};
    }
    constexpr std::size_t before = Limits::quote / 2;
    std::size_t const last = line.size() - Limits::quote;
    std::size_t const from = characterStart(line, std::min(at - std::min(at, before), last));
    return {from, characterStart(line, from + Limits::quote) - from};
}

} // namespace

void HumanReporter::trace(U32 level, std::string_view text) {
    output_.err() += "trace " + std::to_string(level) + ": " + printable(text) + '\n';
    output_.lineDone();
}

void HumanReporter::log(std::string_view id, U32 severity, std::string_view text) {
    output_.err() +=
        printable(id) + " (severity " + std::to_string(severity) + "): " + printable(text) + '\n';
    output_.lineDone();
}

void HumanReporter::multicast(McastEvent const& event) {
    output_.out() += eventText(event) + '\n';
    output_.lineDone();
}

void HumanReporter::done(CommandLine const&, std::string_view, Reply const& reply,
                         Agent const& agent) {
    bool const silent = std::holds_alternative<std::monostate>(reply.content) && reply.note.empty();
    if (silent) {
        return;
    }
    std::string& out = output_.out();
    std::visit([&](auto const& content) { write(out, content, agent); }, reply.content);
    if (!reply.note.empty()) {
        out += printable(reply.note) + '\n';
    }
    output_.lineDone();
}

void HumanReporter::refused(CommandLine const& line, Refusal const& refusal) {
    std::string& err = output_.err();
    err += line.terminal ? "error" : printable(line.source) + ':' + std::to_string(line.number);
    err += ": " + printable(refusal.what()) + '\n';
    if (refusal.place()) {
        err += markedLine(line.text, *refusal.place(), "    ");
    }
    output_.lineDone();
}

std::string markedLine(std::string_view line, Place place, std::string_view indent) {
    place.at = std::min(place.at, line.size());
    Place const part = quotedPart(line, place.at);
    bool const toEnd = part.at + part.length == line.size();
    std::string shown;
    for (char const c : line.substr(part.at, part.length)) {
        shown += c == '\t' ? ' ' : c;
    }
    std::size_t const at = std::min(place.at - part.at, shown.size());
    std::size_t const end = at + std::min(place.length, shown.size() - at);
    std::string const before =
        std::string(part.at == 0 ? "" : "...") + printable(std::string_view(shown).substr(0, at));
    std::string const marked = printable(std::string_view(shown).substr(at, end - at));
    std::string const after = printable(std::string_view(shown).substr(end)) + (toEnd ? "" : "...");
    // A place at the very end stands behind a blank, where the missing word would be.
    std::size_t const column = utf8Length(before) + (place.length == 0 ? 1 : 0);
    std::size_t const width = std::max<std::size_t>(utf8Length(marked), 1);
    return std::string(indent) + before + marked + after + '\n' + std::string(indent) +
           std::string(column, ' ') + '^' + std::string(width - 1, '~') + '\n';
}

} // namespace VpAgent
