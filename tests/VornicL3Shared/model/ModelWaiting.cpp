#include "VornicL3Shared/model/HandlerWords.h"
#include "VornicL3Shared/model/Model.h"

/// The keys that wait for an index, and how a released index reaches one of them.
namespace ModelTest {
namespace {

char const* handlerOf(Kind kind) {
    static std::array<char const*, kindCount> const handlers = {
        "handleInvalidRemoteVport", "handleInvalidMlagRemoteVport", "handleInvalidEdgeVport",
        "handleInvalidVlanVport", "handleInvalidEFilterDisableVport"};
    return handlers.at(static_cast<std::size_t>(kind));
}

/// The label before the key in the entry trace of a handler.
char const* labelOf(Kind kind) {
    static std::array<char const*, kindCount> const labels = {
        " vtep: ", " vtep: ", " pvKey: ", " vlan: ", " intf: "};
    return labels.at(static_cast<std::size_t>(kind));
}

/// The collection's name in the trace of a hand-over, and in the assertion there.
struct RecycleWords {
    char const* collection;
    char const* missing;
};
RecycleWords const& recycleWords(Kind kind) {
    static std::array<RecycleWords, kindCount> const words = {{
        {"remoteVport", "vpIndexConfig-> remoteVportHas( remoteIter.key() )"},
        {"mlagRemoteVport", "vpIndexConfig-> mlagRemoteVportHas( remoteIter.key() )"},
        {"edgeVport", "vpIndexConfig-> edgeVportHas( edgeIter.key() )"},
        {"vlanVport", "vpIndexConfig-> vlanVportHas( vlanIter.key() )"},
        {"eFilterDisableVport", "vpIndexConfig-> eFilterDisableVportHas( eFDisIter.key() )"},
    }};
    return words.at(static_cast<std::size_t>(kind));
}

} // namespace

void Model::handleInvalid(Kind kind, Key key) {
    char const* const handler = handlerOf(kind);
    char const* const tag = kind == Kind::mlag ? " mlag" : "";
    bool const remote = kind == Kind::remote || kind == Kind::mlag;
    trace(1, handler, labelOf(kind), remote ? keyText(kind, key).vtep : keyText(kind, key).text);
    if (!machine().settings.reallocation) {
        return;
    }
    Reference const* const reference = state_.references[kind].find(key);
    if (reference == nullptr) {
        trace(5, handler, tag, " vport deleted ");
        waitingDel(kind, key);
        return;
    }
    U32 const index = reference->vPort.index;
    trace(5, handler, tag, " vport addition/modification for: ", index);
    if (index == invalidIndex) {
        trace(5, handler, tag, " vport added : ", index);
        waitingIs(kind, key, {true});
    } else {
        trace(5, handler, tag, " vport deleted : ", index);
        waitingDel(kind, key);
    }
}

void Model::handleInvalidAll(Kind kind) {
    trace(1, handlerOf(kind));
    if (machine().settings.reallocation) {
        state_.references[kind].walk([&](Key key) { handleInvalid(kind, key); });
    }
}

void Model::recycleOrFreeVpIndex(U32 index) {
    trace(1, "recycleOrFreeVpIndex");
    VPort const vp{index & 0xFFFF};
    if (!machine().settings.reallocation || !machine().initialized) {
        freeVpIndex(vp.index);
    }
    if (vp.index == invalidIndex) {
        return;
    }
    if (state_.waiting.count() == 0) {
        freeVpIndex(vp.index);
        return;
    }
    for (Kind const kind : beliefs_.recycleOrder) {
        if (recycleTo(kind, vp)) {
            return;
        }
    }
    freeVpIndex(vp.index);
}

/// Whether a key of this kind took the index.
bool Model::recycleTo(Kind kind, VPort vp) {
    auto const waiting = state_.waiting[kind];
    for (auto const& [key, present] : waiting) {
        Reference reference = state_.references[kind].get(key);
        if (!state_.references[kind].has(key) || reference.vPort.index != invalidIndex) {
            waitingDel(kind, key);
            continue;
        }
        if (reference.names.empty()) {
            continue;
        }
        for (std::string const& name : reference.names) {
            handOver(kind, key, name, vp);
        }
        logNormal(normalText(kind, key));
        reference.vPort = vp;
        referenceIs(kind, key, reference);
        return true;
    }
    return false;
}

void Model::handOver(Kind kind, Key key, std::string const& name, VPort vp) {
    char const* const function =
        "void VornicCentral::VpIndexAllocatorDirSm::recycleOrFreeVpIndex(U32)";
    check(configured(name), "!!vpIndexConfig", function);
    check(state_.statusDir.has(name), "!!vpIndexStatus", function);
    RecycleWords const& words = recycleWords(kind);
    check(state_.configs[state_.configDir.get(name)].keys[kind].has(key), words.missing, function);
    trace(7, "recycleOrFreeVpIndex",
          kind == Kind::mlag ? " Recycling mlag vpIndex : " : " Recycling vpIndex : ", vp.index,
          " to vpIndexAllocator(", name, ")->vpIndexStatus()->", words.collection, "(",
          keyText(kind, key).text, ")");
    statusIs(state_.statusDir.get(name), kind, key, vp);
}

} // namespace ModelTest
