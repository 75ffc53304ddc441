#include "VornicL3Shared/model/ModelState.h"

namespace ModelTest {
namespace {

template <class V> void append(std::string& text, Record<V> const& record) {
    for (Kind const kind : fixedOrder) {
        if (record[kind].empty()) {
            continue;
        }
        text += std::string(" ") + wordOf(kind) + "{";
        char const* separator = "";
        for (auto const& [key, value] : record[kind]) {
            text += separator + keyText(kind, key).text + valueText(value);
            separator = " ";
        }
        text += "}";
    }
}

/// The set bits as runs.
void append(std::string& text, std::vector<bool> const& bits) {
    text += std::to_string(bits.size()) + ":";
    for (std::size_t first = 0; first < bits.size(); ++first) {
        if (!bits[first]) {
            continue;
        }
        std::size_t last = first;
        while (last + 1 < bits.size() && bits[last + 1]) {
            ++last;
        }
        text += " " + std::to_string(first) + (last > first ? "-" + std::to_string(last) : "");
        first = last;
    }
}

void append(std::string& text, Status const& status) {
    append(text, status.vports);
    text += " requests=" + std::to_string(status.requests);
    text += " failures=" + std::to_string(status.failures);
    text += " frees=" + std::to_string(status.frees);
    text += " size=" + std::to_string(status.size);
}

} // namespace

std::string valueText(Flag) { return ""; }
std::string valueText(VPort value) { return "=" + std::to_string(value.index); }
std::string valueText(Reference const& value) {
    std::string text = valueText(value.vPort) + "[";
    for (std::string const& name : value.names) {
        text += (text.back() == '[' ? "" : " ") + name; // as the tests print it, a name or none
    }
    return text + "]";
}

std::string textOf(State const& state) {
    std::string text = "pool ";
    if (state.machine && state.machine->pool) {
        append(text, state.machine->pool->bits);
    } else {
        text += "none";
    }
    for (auto const& [name, id] : state.configDir) {
        text += "\nconfig " + name + ":";
        append(text, state.configs[id].keys);
    }
    for (auto const& [name, id] : state.statusDir) {
        text += "\nstatus " + name + ":";
        append(text, state.statuses[id]);
    }
    text += "\nreferences:";
    append(text, state.references);
    text += "\nwaiting:";
    append(text, state.waiting);
    text += "\nboot:";
    append(text, state.boot);
    return text + "\n";
}

} // namespace ModelTest
