#include "VornicL3Shared/model/HandlerWords.h"
#include "VornicL3Shared/model/Model.h"

/// What an allocator does whatever the kind, and the three local kinds.
namespace ModelTest {

bool Model::requested(Client client, Kind kind, Key key) {
    return state_.configs[client.config].keys[kind].has(key);
}

void Model::handleClientInitialized(Client client) {
    trace(1, "handleInitialized", " ", nameOf(client));
    counterIs(client.status, &Status::size, machine().settings.tableSize);
    for (Kind const kind : fixedOrder) {
        sweep(client, kind);
    }
}

void Model::sweep(Client client, Kind kind) {
    trace(1, handlerWords(kind).handler);
    auto const keys = state_.configs[client.config].keys[kind];
    for (auto const& [key, present] : keys) {
        handleKey(client, kind, key);
    }
}

void Model::handleKey(Client client, Kind kind, Key key) {
    if (kind == Kind::remote || kind == Kind::mlag) {
        handleRemote(client, kind, key);
    } else {
        handleLocal(client, kind, key);
    }
}

void Model::handleLocal(Client client, Kind kind, Key key) {
    HandlerWords const& words = handlerWords(kind);
    trace(1, words.handler, words.label, keyText(kind, key).text);
    Reference const reference = state_.references[kind].get(key);
    if (requested(client, kind, key)) {
        addLocal(client, kind, key, reference);
    } else {
        trace(5, words.handler, " vport deletion for: ", nameOf(client));
        withdraw(client, kind, key, reference);
    }
}

void Model::addLocal(Client client, Kind kind, Key key, Reference reference) {
    HandlerWords const& words = handlerWords(kind);
    std::string const& text = keyText(kind, key).text;
    trace(5, words.handler, " vport addition for: ", nameOf(client));
    VPort vPort;
    if (state_.references[kind].has(key)) {
        trace(5, words.handler, " existing vport found");
        vPort = reference.vPort;
        if (beliefs_.sharedIndicesCountAsRequests) {
            verifyAndUpdateAllocStats(client, vPort.index);
        }
    } else {
        trace(5, words.handler, words.allocating, text);
        vPort = allocate(client, kind, key, beliefs_.localKindsAskHigh);
        reference.vPort = vPort;
    }
    trace(5, words.handler, words.label, text, " vPort: ", vPort.index);
    reference.add(nameOf(client));
    statusIs(client.status, kind, key, vPort);
    referenceIs(kind, key, reference);
}

/// A new index, counted and reported.
VPort Model::allocate(Client client, Kind kind, Key key, bool preferHigh) {
    U32 const index = allocVpIndex(preferHigh);
    verifyAndUpdateAllocStats(client, index);
    if (index == invalidIndex) {
        logFull(fullText(kind, key));
    } else {
        bool const remote = kind == Kind::remote || kind == Kind::mlag;
        trace(5, remote ? "handleRemoteVportCommon" : handlerWords(kind).handler,
              " allocated vpIndex: ", index);
    }
    return {index};
}

void Model::withdraw(Client client, Kind kind, Key key, Reference reference) {
    U32 const index = state_.statuses[client.status].vports[kind].get(key).index;
    reference.del(nameOf(client));
    if (reference.names.empty()) {
        release(kind, key, index);
    } else {
        referenceIs(kind, key, reference);
    }
    statusDel(client.status, kind, key);
    updateFreeStats(client, index);
}

void Model::release(Kind kind, Key key, U32 index) {
    bool const remote = kind == Kind::remote || kind == Kind::mlag;
    trace(5, remote ? "handleRemoteVportCommon" : handlerWords(kind).handler,
          " freeing vpIndex: ", index);
    referenceDel(kind, key);
    if (machine().settings.reallocation) {
        recycleOrFreeVpIndex(index);
    } else {
        freeVpIndex(index);
    }
}

void Model::verifyAndUpdateAllocStats(Client client, U32 index) {
    Status const& status = state_.statuses[client.status];
    if (index == invalidIndex) {
        counterIs(client.status, &Status::failures, status.failures + 1);
        return;
    }
    char const* const function =
        "void VornicCentral::VpIndexAllocator::verifyAndUpdateAllocStats(U16)";
    check(index <= status.size, "vpIndex <= vpIndexStatus()->vpTableSize()", function);
    check(index >= beliefs_.reservedIndices, "vpIndex >= maxSystemSourceVp_", function);
    counterIs(client.status, &Status::requests, status.requests + 1);
}

void Model::updateFreeStats(Client client, U32 index) {
    if (index != invalidIndex) {
        counterIs(client.status, &Status::frees, state_.statuses[client.status].frees + 1);
    }
}

} // namespace ModelTest
