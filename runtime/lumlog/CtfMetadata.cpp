#include "lumlog/CtfMetadata.h"

#include "lumlog/Args.h"
#include "pelo/Utf8.h"

#include <bit>

namespace Lumlog::Internal {
namespace {

constexpr std::string_view types = R"(
typealias integer { size = 8; align = 8; signed = false; } := uint8_t;
typealias integer { size = 16; align = 8; signed = false; } := uint16_t;
typealias integer { size = 32; align = 8; signed = false; } := uint32_t;
typealias integer { size = 64; align = 8; signed = false; } := uint64_t;
typealias integer { size = 64; align = 8; signed = true; } := int64_t;
)";

constexpr std::string_view clockAndStream = R"TSDL(
env {
    tracer_name = "lumlog";
};

clock {
    name = "utc";
    description = "nanoseconds since 1970 (UTC)";
    freq = 1000000000;
    offset = 0;
    absolute = true;
};

typealias integer {
    size = 64; align = 8; signed = false; map = clock.utc.value;
} := utc_time_t;

stream {
    packet.context := struct {
        utc_time_t timestamp_begin;
        utc_time_t timestamp_end;
        uint64_t content_size;
        uint64_t packet_size;
    };
    event.header := struct {
        uint16_t id;
        utc_time_t timestamp;
    };
    event.context := struct {
        uint64_t sequence;
        uint64_t time;
        uint32_t msgId;
        uint32_t level;
        string unit;
        uint32_t line;
    };
};
)TSDL";

std::string trace(std::string_view uuid) {
    return "\ntrace {\n    major = 1;\n    minor = 8;\n    uuid = \"" + std::string(uuid) +
           "\";\n    byte_order = " + (std::endian::native == std::endian::little ? "le" : "be") +
           ";\n    packet.header := struct {\n        uint32_t magic;\n        uint8_t uuid[16];\n"
           "    };\n};\n";
}

/// A text as it stands between quotes.
std::string quoted(std::string_view text) {
    std::string literal = "\"";
    for (char const c : Pelo::printable(text)) {
        literal += c == '"' || c == '\\' ? std::string{'\\', c} : std::string{c};
    }
    return literal + '"';
}

std::string_view typeOf(ArgCode code) {
    switch (code) {
    case ArgCode::boolean:
    case ArgCode::u8:
        return "uint8_t";
    case ArgCode::u16:
        return "uint16_t";
    case ArgCode::u32:
        return "uint32_t";
    case ArgCode::u64:
        return "uint64_t";
    case ArgCode::s64:
        return "int64_t";
    case ArgCode::text:
    case ArgCode::address:
        return "string";
    case ArgCode::words:
        break;
    }
    return "";
}

std::string fields(DecodedMessage const& message) {
    std::string text = "        string text;\n";
    std::size_t count = 0;
    for (char const code : message.format) {
        if (std::string_view const type = typeOf(static_cast<ArgCode>(code)); !type.empty()) {
            text += "        " + std::string(type) + " arg" + std::to_string(count++) + ";\n";
        }
    }
    return text;
}

std::string event(DecodedMessage const& message) {
    std::string const site = message.unit + ':' + std::to_string(message.line) + ' ';
    return "\n/* level " + std::to_string(message.level) + " */\nevent {\n    name = " +
           quoted((message.unit.empty() ? "" : site) + message.wording()) +
           ";\n    id = " + std::to_string(message.msgId) + ";\n    fields := struct {\n" +
           fields(message) + "    };\n};\n";
}

} // namespace

std::string ctfMetadata(std::span<DecodedMessage const> messages, std::string_view uuid) {
    std::string text = "/* CTF 1.8 */\n";
    text += types;
    text += trace(uuid);
    text += clockAndStream;
    for (DecodedMessage const& message : messages) {
        text += event(message);
    }
    return text;
}

} // namespace Lumlog::Internal
