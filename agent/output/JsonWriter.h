#pragma once

#include "pelo/Integers.h"

#include <string>
#include <string_view>

namespace VpAgent {

/// Writes one JSON value to the end of a text, piece by piece and on one line, in the form
/// `{"ok": "echo", "line": 11}`.
///
/// Texts are written as UTF-8; a byte that is not UTF-8 becomes U+FFFD, and control characters are
/// escaped. The caller opens and closes containers in pairs and gives each member of an object its
/// key.
class JsonWriter {
public:
    explicit JsonWriter(std::string& out) : out_(out) {}

    JsonWriter& openObject() { return open('{'); }
    JsonWriter& closeObject() { return close('}'); }
    JsonWriter& openArray() { return open('['); }
    JsonWriter& closeArray() { return close(']'); }

    /// The name of the member whose value comes next.
    JsonWriter& key(std::string_view name);

    JsonWriter& text(std::string_view value);
    JsonWriter& number(U64 value);
    JsonWriter& boolean(bool value) { return word(value ? "true" : "false"); }
    JsonWriter& null() { return word("null"); }

    JsonWriter& member(std::string_view name, std::string_view value) {
        return key(name).text(value);
    }
    JsonWriter& member(std::string_view name, char const* value) { return key(name).text(value); }
    JsonWriter& member(std::string_view name, U64 value) { return key(name).number(value); }
    JsonWriter& member(std::string_view name, U32 value) { return key(name).number(value); }
    JsonWriter& member(std::string_view name, bool value) { return key(name).boolean(value); }

private:
    JsonWriter& open(char bracket);
    JsonWriter& close(char bracket);
    JsonWriter& word(std::string_view text);
    void comma();
    void string(std::string_view value);

    std::string& out_;
    bool first_ = true; ///< the next value is the first of its container, or stands behind its key
};

} // namespace VpAgent
