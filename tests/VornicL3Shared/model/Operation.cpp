#include "VornicL3Shared/model/Operation.h"

#include <string_view>

namespace ModelTest {
namespace {

std::string_view lineOf(Verb verb) {
    static std::vector<std::string_view> const lines = {
#define MODEL_TEST_LINE(verb, line) line,
        MODEL_TEST_VERBS(MODEL_TEST_LINE)
#undef MODEL_TEST_LINE
    };
    return lines.at(static_cast<std::size_t>(verb));
}

/// As operations are named after a kind.
std::string typeOf(Kind kind) {
    static std::array<char const*, kindCount> const types = {
        "RemoteVport", "MlagRemoteVport", "EdgeVport", "VlanVport", "EFilterDisableVport"};
    return types.at(static_cast<std::size_t>(kind));
}

std::string word(std::string const& text) {
    return text.empty() || text.find(' ') != std::string::npos ? '"' + text + '"' : text;
}

std::string wordOf(Variant variant) {
    static std::array<char const*, variantCount> const words = {
        "in-order",           "without-config", "without-state-machine", "without-status",
        "without-references", "other-switch",   "status-of-other"};
    return words.at(static_cast<std::size_t>(variant));
}

std::string wordOf(Counter counter) {
    static std::array<char const*, counterCount> const words = {"requests", "failures", "frees"};
    return words.at(static_cast<std::size_t>(counter));
}

std::string textOf(Settings const& settings) {
    auto const onOff = [](bool flag) { return flag ? "on" : "off"; };
    return "table-size=" + std::to_string(settings.tableSize) +
           " reallocation=" + onOff(settings.reallocation) +
           " remote-low=" + onOff(settings.remoteLow) +
           " vfi-forwarding=" + onOff(settings.vfiForwarding) +
           (settings.capabilities ? "" : " without-capabilities") +
           (settings.configDir ? "" : " without-config-dir");
}

std::string operandOf(Operation const& operation, std::string_view name) {
    if (name == "client") {
        return word(operation.client);
    }
    if (name == "other") {
        return word(operation.other);
    }
    if (name == "variant") {
        return wordOf(operation.variant);
    }
    if (name == "counter") {
        return wordOf(operation.counter);
    }
    if (name == "kind") {
        return wordOf(operation.kind);
    }
    if (name == "Kind") {
        return typeOf(operation.kind);
    }
    if (name == "key") {
        return word(keyText(operation.kind, operation.key).text);
    }
    if (name == "number") {
        return std::to_string(operation.number);
    }
    if (name == "size") {
        return std::to_string(operation.size);
    }
    if (name == "flag") {
        return operation.flag ? "true" : "false";
    }
    if (name == "settings") {
        return textOf(operation.settings);
    }
    std::string text; // names
    for (std::string const& each : operation.names) {
        text += " " + word(each);
    }
    return text;
}

} // namespace

Reference referenceOf(Operation const& operation) {
    Reference reference{{operation.number}, {}};
    for (std::string const& name : operation.names) {
        reference.add(name);
    }
    return reference;
}

std::string textOf(Operation const& operation) {
    std::string text;
    std::string_view line = lineOf(operation.verb);
    while (!line.empty()) {
        std::size_t const open = line.find('{');
        text += line.substr(0, open);
        if (open == std::string_view::npos) {
            break;
        }
        std::size_t const close = line.find('}', open);
        text += operandOf(operation, line.substr(open + 1, close - open - 1));
        line.remove_prefix(close + 1);
    }
    return text;
}

} // namespace ModelTest
