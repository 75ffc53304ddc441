#include "statefile/ChangeTracker.h"

#include "pelo/NoThrow.h"

#include <algorithm>
#include <utility>

namespace VpAgent {

using namespace VornicCentral;

/// A client of the database, and its row as it was last written.
struct ChangeTracker::TrackedClient {
    TrackedClient(ChangeTracker& tracker, Client const& client, ClientRow const& clientRow)
        : row(clientRow),
          config(client.config, [&tracker, this] { tracker.touch(*this); }),
          status(client.status, [&tracker, this] { tracker.touch(*this); }) {}

    /// Whether the row was ever written.
    bool isInFile() const noexcept { return row.statusPosition != 0; }

    ClientRow row;
    bool touched = false;
    bool needsRow =
        false; ///< the client is new, or its config went into its directory or out of it
    bool takenOut = false; ///< the config went out, even if it came back
    RecordChanges<VpIndexConfig> config;
    RecordChanges<VpIndexStatus> status;
};

ChangeTracker::ChangeTracker(Database const& database, Loaded const& loaded)
    : database_(database),
      nextClient_(loaded.firstFreeClient),
      references_(database.references(), [this] { changed_ = true; }),
      waiting_(database.waiting(), [this] { changed_ = true; }),
      boot_(database.boot(), [this] { changed_ = true; }),
      configs_(this, &configListed),
      statuses_(this, &statusListed) {
    for (ClientRow const& row : loaded.clients) {
        track(*database_.find(row.name), row);
    }
    database.configs()->publisher()->subscriberAdd(&configs_, false);
    database.statuses()->publisher()->subscriberAdd(&statuses_, false);
}

ChangeTracker::~ChangeTracker() = default;

void ChangeTracker::configListed(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                                 void const* key, void const* value) noexcept {
    auto& tracker = subscriber->owner<ChangeTracker>();
    auto const found = tracker.clients_.find(*static_cast<Pelo::String const*>(key));
    if (found != tracker.clients_.end()) {
        TrackedClient& client = *found->second;
        client.needsRow = true;
        client.takenOut = client.takenOut || value == nullptr;
        Pelo::runNoThrow([&] { tracker.touch(client); });
    }
}

void ChangeTracker::statusListed(Pelo::Publisher*, Pelo::Subscriber* subscriber, Pelo::FieldId,
                                 void const* key, void const* value) noexcept {
    auto& tracker = subscriber->owner<ChangeTracker>();
    auto const& name = *static_cast<Pelo::String const*>(key);
    Pelo::runNoThrow([&] { tracker.statusIs(name, value != nullptr); });
}

/// A status came into its directory, in the place of another one perhaps, or went out of it.
void ChangeTracker::statusIs(Pelo::String const& name, bool present) {
    auto const found = clients_.find(name);
    if (found != clients_.end()) {
        forget(*found->second);
    }
    if (present) {
        ClientRow const row{nextClient_++, name, 0, 0};
        TrackedClient& client = track(*database_.find(name), row);
        client.needsRow = true;
        touch(client);
    }
}

ChangeTracker::TrackedClient& ChangeTracker::track(Client const& client, ClientRow const& row) {
    auto tracked = std::make_unique<TrackedClient>(*this, client, row);
    std::string_view const name = tracked->row.name;
    return *clients_.emplace(name, std::move(tracked)).first->second;
}

void ChangeTracker::forget(TrackedClient& client) {
    changed_ = true;
    if (client.isInFile()) {
        forgotten_.push_back(client.row.id);
    }
    std::erase(touched_, &client);
    clients_.erase(clients_.find(client.row.name));
}

void ChangeTracker::touch(TrackedClient& client) {
    changed_ = true;
    if (!client.touched) {
        client.touched = true;
        touched_.push_back(&client);
    }
}

namespace {

/// Calls `visit` for each of the clients, in the order in which they stand in a directory that
/// holds all of them.
template <class Clients, class Entries, class Visit>
void inOrder(Clients& clients, Entries const& entries, Visit visit) {
    // Members stand in one array, in the order of the directory.
    auto const member = [&](auto* client) { return entries.lookupNode(client->row.name); };
    std::sort(clients.begin(), clients.end(),
              [&](auto* a, auto* b) { return std::less<>()(member(a), member(b)); });
    std::for_each(clients.begin(), clients.end(), visit);
}

} // namespace

/// Gives each client whose place in a directory is new a position that says so.
void ChangeTracker::placeClients(Writer& writer) {
    std::vector<TrackedClient*> added;
    std::vector<TrackedClient*> listed;
    for (TrackedClient* const client : touched_) {
        if (!client->isInFile()) {
            added.push_back(client);
        }
        if (!database_.configs()->vpIndexConfigHas(client->row.name)) {
            client->row.configPosition = 0;
        } else if (client->takenOut || client->row.configPosition == 0) {
            listed.push_back(client);
        }
    }
    inOrder(added, database_.statuses()->vpIndexStatus(),
            [&](TrackedClient* client) { client->row.statusPosition = writer.nextPosition(); });
    inOrder(listed, database_.configs()->vpIndexConfig(),
            [&](TrackedClient* client) { client->row.configPosition = writer.nextPosition(); });
}

void ChangeTracker::writeTo(Writer& writer) {
    for (U64 const id : forgotten_) {
        writer.eraseClient(id);
    }
    placeClients(writer);
    for (TrackedClient* const client : touched_) {
        if (client->needsRow || client->status.attributesChanged()) {
            writer.writeClient(client->row, client->status.record());
        }
        client->config.writeTo(writer, client->row.id);
        client->status.writeTo(writer, client->row.id);
    }
    constexpr U64 nobody = 0;
    references_.writeTo(writer, nobody);
    waiting_.writeTo(writer, nobody);
    boot_.writeTo(writer, nobody);
}

void ChangeTracker::clear() {
    for (TrackedClient* const client : touched_) {
        client->config.clear();
        client->status.clear();
        client->touched = false;
        client->needsRow = false;
        client->takenOut = false;
    }
    touched_.clear();
    forgotten_.clear();
    references_.clear();
    waiting_.clear();
    boot_.clear();
    changed_ = false;
}

} // namespace VpAgent
