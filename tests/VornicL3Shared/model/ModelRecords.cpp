#include "VornicL3Shared/model/Model.h"

/// Reports, and the changes of the records with whom they wake.
namespace ModelTest {
void Model::logFull(std::string const& vport) {
    journal_.line("log VORNIC_VIRTUALPORT_RESOURCE_FULL: Hardware resources are insufficient to "
                  "add virtual port for ",
                  vport.substr(0, 127));
}

void Model::logNormal(std::string const& vport) {
    journal_.line("log VORNIC_VIRTUALPORT_RESOURCE_NORMAL: Hardware resources are available to "
                  "add virtual port for ",
                  vport.substr(0, 127));
}

template <class Value>
void Model::changed(std::string const& record, Kind kind, Key key, Value const& value) {
    if (watched_) {
        journal_.line("changed ", record, " ", wordOf(kind), " ", keyText(kind, key).text,
                      valueText(value));
    }
}

void Model::deleted(std::string const& record, Kind kind, Key key) {
    if (watched_) {
        journal_.line("changed ", record, " ", wordOf(kind), " ", keyText(kind, key).text,
                      " deleted");
    }
}

/// An exception that leaves a reactor ends the process.
template <class Handler> void Model::react(Handler&& handler) {
    try {
        handler();
    } catch (Refused const&) {
        throw Terminated{};
    }
}

void Model::referenceIs(Kind kind, Key key, Reference const& value) {
    if (!state_.references[kind].is(key, value)) {
        return;
    }
    changed("references", kind, key, value);
    if (running() && machine().subscribed && !machine().zombie) {
        react([&] { handleInvalid(kind, key); });
    }
}

void Model::referenceDel(Kind kind, Key key) {
    if (!state_.references[kind].del(key)) {
        return;
    }
    deleted("references", kind, key);
    if (running() && machine().subscribed && !machine().zombie) {
        react([&] { handleInvalid(kind, key); });
    }
}

void Model::waitingIs(Kind kind, Key key, Flag value) {
    if (state_.waiting[kind].is(key, value)) {
        changed("waiting", kind, key, value);
    }
}

void Model::waitingDel(Kind kind, Key key) {
    if (state_.waiting[kind].del(key)) {
        deleted("waiting", kind, key);
    }
}

void Model::bootIs(Kind kind, Key key, VPort value) {
    if (state_.boot[kind].is(key, value)) {
        changed("boot", kind, key, value);
    }
}

void Model::bootDel(Kind kind, Key key) {
    if (state_.boot[kind].del(key)) {
        deleted("boot", kind, key);
    }
}

void Model::statusIs(RecordId id, Kind kind, Key key, VPort value) {
    if (state_.statuses[id].vports[kind].is(key, value)) {
        changed("status " + state_.statuses[id].name, kind, key, value);
    }
}

void Model::statusDel(RecordId id, Kind kind, Key key) {
    if (state_.statuses[id].vports[kind].del(key)) {
        deleted("status " + state_.statuses[id].name, kind, key);
    }
}

void Model::counterIs(RecordId id, U32 Status::*counter, U32 value) {
    Status& status = state_.statuses[id];
    if (status.*counter == value) {
        return;
    }
    status.*counter = value;
    char const* const word = counter == &Status::requests   ? "requests"
                             : counter == &Status::failures ? "failures"
                             : counter == &Status::frees    ? "frees"
                                                            : "size";
    if (watched_) {
        journal_.line("changed status ", status.name, " ", word, "=", value);
    }
}

void Model::configIs(RecordId id, Kind kind, Key key, Flag value) {
    if (state_.configs[id].keys[kind].is(key, value)) {
        changed("config " + state_.configs[id].name, kind, key, value);
        configChanged(id, kind, key);
    }
}

void Model::configDel(RecordId id, Kind kind, Key key) {
    if (state_.configs[id].keys[kind].del(key)) {
        deleted("config " + state_.configs[id].name, kind, key);
        configChanged(id, kind, key);
    }
}

/// Tells the allocator that watches this config, if there is one.
void Model::configChanged(RecordId id, Kind kind, Key key) {
    if (!running()) {
        return;
    }
    for (auto const& [name, allocator] : machine().allocators) {
        if (allocator.client.config == id && allocator.active && !allocator.zombie) {
            Client const client = allocator.client;
            react([&] { handleKey(client, kind, key); });
            return;
        }
    }
}

void Model::directoryChanged(char const* directory, std::string const& name,
                             std::string const& to) {
    if (watched_) {
        journal_.line("changed ", directory, " ", name, to);
    }
}

void Model::configDirIs(std::string const& name, RecordId id) {
    if (!state_.configDir.is(name, id)) {
        return;
    }
    directoryChanged("configs", name, "=" + state_.configs[id].name);
    if (running() && machine().settings.configDir && machine().subscribed && !machine().zombie) {
        react([&] { handleVpIndexConfig(name); });
    }
}

void Model::configDirDel(std::string const& name) {
    if (!state_.configDir.del(name)) {
        return;
    }
    directoryChanged("configs", name, " deleted");
    if (running() && machine().settings.configDir && machine().subscribed && !machine().zombie) {
        react([&] { handleVpIndexConfig(name); });
    }
}

void Model::statusDirIs(std::string const& name, RecordId id) {
    if (state_.statusDir.is(name, id)) {
        directoryChanged("statuses", name, "=" + state_.statuses[id].name);
    }
}

void Model::statusDirDel(std::string const& name) {
    if (state_.statusDir.del(name)) {
        directoryChanged("statuses", name, " deleted");
    }
}

} // namespace ModelTest
