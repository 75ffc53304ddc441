#include "output/Dump.h"

#include "state/Agent.h"
#include "view/Pool.h"

namespace VpAgent {

namespace {

using namespace VornicCentral;

void writeAgent(JsonWriter& json, Machine const& machine) {
    json.key("agent").openObject().member("running", machine.running());
    if (machine.running()) {
        VpIndexAllocatorDirSm const& stateMachine = machine.stateMachine();
        json.member("initialized", stateMachine.initialized());
        json.member("tableSize", stateMachine.vpTableSize());
        json.member("reallocation", stateMachine.vpReallocationEnabled());
        json.member("vfiForwarding", stateMachine.vfiForwarding());
        json.member("remoteLow", stateMachine.vxlanCapabilities()->remoteVportLowIndex());
        json.key("allocators").openArray();
        forEachMember(stateMachine.vpIndexAllocator(),
                      [&](Pelo::String const& name, auto const&) { json.text(name); });
        json.closeArray();
    }
    json.closeObject();
}

void writePool(JsonWriter& json, Machine const& machine) {
    json.key("pool");
    auto const pool = machine.running() ? machine.stateMachine().vpBitmap() : nullptr;
    if (!pool) {
        json.null();
        return;
    }
    json.openObject().member("size", pool->size()).member("used", pool->numBitsInSetState());
    json.key("runs").openArray();
    for (Run const& run : usedRuns(*pool)) {
        json.openArray().number(run.first).number(run.last).closeArray();
    }
    json.closeArray().closeObject();
}

/// The keys of each kind, for records whose values say nothing more.
template <class Record> void writeKeys(JsonWriter& json, Record const& record) {
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        json.key(Kind::collection).openArray();
        forEachMember(record.template collection<Kind>(),
                      [&](auto const& key, bool) { json.text(key.stringValue()); });
        json.closeArray();
    });
}

void writeValue(JsonWriter& json, VirtualPort vPort) { json.number(vPort.vpIndex()); }

void writeValue(JsonWriter& json, VpReference const& reference) {
    json.openObject()
        .member("vpIndex", U64{reference.vPort().vpIndex()})
        .key("clients")
        .openArray();
    for (Pelo::String const& name : reference.references()) {
        json.text(name);
    }
    json.closeArray().closeObject();
}

/// The keys of each kind with their values.
template <class Record> void writeEntries(JsonWriter& json, Record const& record) {
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        json.key(Kind::collection).openObject();
        forEachMember(record.template collection<Kind>(), [&](auto const& key, auto const& value) {
            json.key(key.stringValue());
            writeValue(json, value);
        });
        json.closeObject();
    });
}

void writeConfigs(JsonWriter& json, VpIndexConfigDir const& directory) {
    json.key("config").openObject();
    forEachMember(directory.vpIndexConfig(), [&](Pelo::String const& name, auto const& config) {
        json.key(name).openObject();
        writeKeys(json, *config);
        json.closeObject();
    });
    json.closeObject();
}

void writeStatuses(JsonWriter& json, VpIndexStatusDir const& directory) {
    json.key("status").openObject();
    forEachMember(directory.vpIndexStatus(), [&](Pelo::String const& name, auto const& status) {
        json.key(name).openObject().member("vpTableSize", status->vpTableSize());
        json.member("vpAllocRequests", status->vpAllocRequests());
        json.member("vpAllocFailures", status->vpAllocFailures());
        json.member("vpFreeRequests", status->vpFreeRequests());
        writeEntries(json, *status);
        json.closeObject();
    });
    json.closeObject();
}

} // namespace

void writeState(JsonWriter& json, Agent const& agent) {
    Database const& database = agent.database;
    json.openObject();
    writeAgent(json, agent.machine);
    writePool(json, agent.machine);
    writeConfigs(json, *database.configs());
    writeStatuses(json, *database.statuses());
    json.key("references").openObject();
    writeEntries(json, *database.references());
    json.closeObject().key("waiting").openObject();
    writeKeys(json, *database.waiting());
    json.closeObject().key("boot").openObject();
    writeEntries(json, *database.boot());
    json.closeObject().closeObject();
}

} // namespace VpAgent
