#include "VornicL3Shared/model/Model.h"

/// What a start recovers, and the clean-up of what nobody claimed.
namespace ModelTest {
namespace {

struct RestartWords {
    char const* recovered;
    char const* recoveredKey;
    char const* skipping;
    char const* deleting;
};
RestartWords const& restartWords(Kind kind) {
    static std::array<RestartWords, kindCount> const words = {{
        {" recovered vpIndex: ", " for vtep: ", " skipping reconcile for vtep: ",
         " delete status for vtep: "},
        {" recovered mlag vpIndex: ", " for remote vtep: ", " skipping reconcile for vtep: ",
         " delete status (mlag) for vtep: "},
        {" recovered vpIndex: ", " for edge port: ", " skipping reconcile for edgePort: ",
         " delete status for pvKey: "},
        {" recovered vpIndex: ", " for vlan: ", " skipping reconcile for vlan: ",
         " delete status for vlan: "},
        {" recovered vpIndex: ", " for intf: ", " skipping reconcile for intf: ",
         " delete status for intf: "},
    }};
    return words.at(static_cast<std::size_t>(kind));
}

/// A reference as people read it.
std::string readable(Reference const& reference) {
    std::string text = "{vPort: " + std::to_string(reference.vPort.index) + ", references: [";
    for (std::size_t at = 0; at < reference.names.size(); ++at) {
        text += (at == 0 ? "" : ", ") + reference.names[at];
    }
    return text + "]}";
}

} // namespace

void Model::reconcile() {
    trace(1, "reconcile");
    for (Kind const kind : fixedOrder) {
        state_.references[kind].walk([&](Key key) { recoverReference(kind, key); });
    }
    bool fromBoot = true;
    for (Kind const kind : beliefs_.hinderBootRecovery) {
        fromBoot = fromBoot && state_.references[kind].empty();
    }
    for (Kind const kind : fixedOrder) {
        if (fromBoot) {
            state_.boot[kind].walk([&](Key key) { recoverBootEntry(kind, key); });
        }
    }
    if (machine().settings.configDir) {
        state_.configDir.walk([&](std::string const& name) { cleanUpStatus(name); });
    }
}

void Model::recoverReference(Kind kind, Key key) {
    Reference reference = state_.references[kind].get(key);
    reference.names.clear();
    setVpBitmap(reference.vPort.index);
    trace(5, "reconcile", restartWords(kind).recovered, reference.vPort.index,
          restartWords(kind).recoveredKey, keyText(kind, key).text);
    referenceIs(kind, key, reference);
    if (machine().settings.reallocation && reference.vPort.index == invalidIndex) {
        waitingIs(kind, key, {true});
    }
}

void Model::recoverBootEntry(Kind kind, Key key) {
    if (state_.references[kind].has(key)) {
        return;
    }
    VPort const vPort = state_.boot[kind].get(key);
    std::string const& text = keyText(kind, key).text;
    if (vPort.index >= 1 && vPort.index <= 7) {
        trace(5, "reconcile", restartWords(kind).skipping, text,
              " as it is using a reserved vp index");
        bootDel(kind, key);
        return;
    }
    setVpBitmap(vPort.index);
    trace(5, "reconcile", restartWords(kind).recovered, vPort.index,
          restartWords(kind).recoveredKey, text);
    referenceIs(kind, key, Reference{vPort, {}});
    if (machine().settings.reallocation && vPort.index == invalidIndex) {
        waitingIs(kind, key, {true});
    }
}

void Model::cleanUpStatus(std::string const& name) {
    trace(5, "reconcile", " clean up status for: ", name);
    if (!state_.statusDir.has(name)) {
        return;
    }
    RecordId const status = state_.statusDir.get(name);
    Config const& config = state_.configs[state_.configDir.get(name)];
    for (Kind const kind : fixedOrder) {
        state_.statuses[status].vports[kind].walk([&](Key key) {
            if (config.keys[kind].has(key)) {
                return;
            }
            trace(5, "reconcile", restartWords(kind).deleting, keyText(kind, key).text);
            statusDel(status, kind, key);
            Reference reference = state_.references[kind].get(key);
            reference.del(name);
            referenceIs(kind, key, reference);
        });
    }
}

void Model::clearStaleEntries() {
    trace(1, "clearStaleEntries");
    for (Kind const kind : fixedOrder) {
        state_.references[kind].walk([&](Key key) {
            Reference const reference = state_.references[kind].get(key);
            if (!reference.names.empty()) {
                return;
            }
            trace(1, "clearStaleEntries", " free  ", readable(reference));
            if (machine().settings.reallocation) {
                recycleOrFreeVpIndex(reference.vPort.index);
            } else {
                freeVpIndex(reference.vPort.index);
            }
            referenceDel(kind, key);
        });
    }
}

} // namespace ModelTest
