#include "VornicL3Shared/model/Model.h"

/// The state machine's start and how it follows the config directory.
namespace ModelTest {

void Model::start(Settings const& settings) {
    state_.machine.emplace();
    machine().settings = settings;
    try {
        handleInitialized();
    } catch (Refused const&) { // no half-built state machine survives
        state_.machine.reset();
        throw;
    }
    machine().active = true;
}

void Model::handleInitialized() {
    trace(1, "handleInitialized");
    vpBitmapIs(0, machine().settings.tableSize, false);
    for (U32 index = 0; index < 8; ++index) {
        setVpBitmap(index);
    }
    reconcile();
    handleVpIndexConfig();
    machine().initialized = true;
}

void Model::handleVpIndexConfig() {
    if (machine().settings.configDir) {
        state_.configDir.walk([&](std::string const& name) { handleVpIndexConfig(name); });
    }
}

/// Whether the state machine finds a config of that name.
bool Model::configured(std::string const& name) {
    return machine().settings.configDir && state_.configDir.has(name);
}

void Model::handleVpIndexConfig(std::string const& name) {
    trace(1, "handleVpIndexConfig", ", Name ", name);
    if (!configured(name)) {
        trace(1, "handleVpIndexConfig", ", Name ", name, " ignore deletes");
        return;
    }
    check(state_.statusDir.has(name), "vpIndexStatusDir()->vpIndexStatusHas( name )",
          "void VornicCentral::VpIndexAllocatorDirSm::handleVpIndexConfig(const String&)");
    vpIndexAllocatorIs(state_.configDir.get(name), state_.statusDir.get(name),
                       machine().settings.vfiForwarding);
}

void Model::vpIndexAllocatorIs(RecordId config, RecordId status, bool vfiForwarding) {
    std::string const name = state_.configs[config].name;
    if (Allocator const* const there = machine().allocator(name)) {
        if (there->client.config != config) {
            throw Refused{"vpIndexConfig"};
        }
        if (there->client.status != status) {
            throw Refused{"vpIndexStatus"};
        }
        if (there->vfiForwarding != vfiForwarding) {
            throw Refused{"vfiForwarding"};
        }
        return;
    }
    Client const client{config, status};
    handleClientInitialized(client);
    machine().allocators.emplace_back(name, Allocator{client, vfiForwarding});
}

void Model::vpIndexAllocatorDel(std::string const& name) {
    std::erase_if(machine().allocators, [&](auto const& each) { return each.first == name; });
}

void Model::reactorsOn(bool active) {
    if (machine().active == active) {
        return;
    }
    machine().active = active;
    machine().subscribed = active;
    for (auto& [name, allocator] : machine().allocators) {
        allocator.active = active;
    }
}

} // namespace ModelTest
