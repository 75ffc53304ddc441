#include "statefile/Loader.h"

#include "language/Parse.h"
#include "text/Utf8.h"

#include <algorithm>
#include <limits>
#include <unordered_map>

namespace VpAgent {

using namespace VornicCentral;

namespace {

constexpr U64 largestCounter = std::numeric_limits<U32>::max();

/// Fills a database from a file, table after table.
class Loading {
public:
    Loading(Connection& connection, Database& database)
        : connection_(connection), database_(database) {}

    void clients();
    template <class Record> void members(Record& record);
    template <class Record> void membersOfClients(Pelo::Ptr<Record> Client::*record);

    Loaded result;

private:
    void client(RowReader& row);
    void listConfigs();
    template <class Record> void member(RowReader& row, Record& record);
    template <class Record, class Kind>
    void member(RowReader& row, Record& record, std::string_view keyText);
    void endRow(RowReader& row);

    Connection& connection_;
    Database& database_;
    std::unordered_map<U64, Client const*> clients_;
};

U32 counter(RowReader& row) { return static_cast<U32>(row.number(largestCounter)); }

void Loading::clients() {
    RowReader row(connection_, clientTable());
    while (row.next()) {
        client(row);
    }
    listConfigs();
}

void Loading::client(RowReader& row) {
    U64 const id = row.number(Seal::bound - 1);
    std::string_view const name = row.text();
    if (nameFault(name) || database_.find(name) != nullptr) {
        row.refuse(inQuotes(name) + " is no client name, or is there twice");
    }
    Client const& client = database_.know(name);
    U64 const configPosition = row.number(Seal::bound - 1);
    client.status->vpTableSizeIs(counter(row));
    client.status->vpAllocRequestsIs(counter(row));
    client.status->vpAllocFailuresIs(counter(row));
    client.status->vpFreeRequestsIs(counter(row));
    U64 const statusPosition = row.position();

    database_.statuses()->vpIndexStatusIs(client.name, client.status);
    clients_.emplace(id, &client);
    result.clients.push_back({id, client.name, configPosition, statusPosition});
    result.firstFreeClient = std::max(result.firstFreeClient, id + 1);
    result.firstFreePosition =
        std::max(result.firstFreePosition, std::max(configPosition, statusPosition) + 1);
}

/// Fills the config directory in its own order.
void Loading::listConfigs() {
    std::vector<ClientRow const*> listed;
    for (ClientRow const& client : result.clients) {
        if (client.configPosition != 0) {
            listed.push_back(&client);
        }
    }
    auto const position = [](ClientRow const* client) { return client->configPosition; };
    std::sort(listed.begin(), listed.end(),
              [&](ClientRow const* a, ClientRow const* b) { return position(a) < position(b); });
    for (std::size_t at = 0; at < listed.size(); ++at) {
        if (at != 0 && position(listed[at]) == position(listed[at - 1])) {
            throw Damage("two clients have one position in the config directory");
        }
        Client const& client = *clients_.at(listed[at]->id);
        database_.configs()->vpIndexConfigIs(client.name, client.config);
    }
}

template <class Record> void Loading::members(Record& record) {
    RowReader row(connection_, tableOf<Record>());
    while (row.next()) {
        member(row, record);
    }
}

template <class Record> void Loading::membersOfClients(Pelo::Ptr<Record> Client::*record) {
    RowReader row(connection_, tableOf<Record>());
    while (row.next()) {
        U64 const id = row.number(Seal::bound - 1);
        auto const found = clients_.find(id);
        if (found == clients_.end()) {
            row.refuse("client " + std::to_string(id) + " is not in the table \"client\"");
        }
        member(row, *(found->second->*record));
    }
}

template <class Record> void Loading::member(RowReader& row, Record& record) {
    std::string const kindWord(row.text());
    std::string const keyText(row.text());
    bool known = false;
    forEachKind([&](auto kind) {
        using Kind = decltype(kind);
        if (kindWord == Kind::word) {
            known = true;
            member<Record, Kind>(row, record, keyText);
        }
    });
    if (!known) {
        row.refuse(inQuotes(kindWord) + " is no kind");
    }
}

template <class Record, class Kind>
void Loading::member(RowReader& row, Record& record, std::string_view keyText) {
    auto const key = Kind::Key::parse(keyText);
    if (!key || key->stringValue() != keyText || record.template has<Kind>(*key)) {
        row.refuse(inQuotes(keyText) + " is no " + Kind::word + " key, or is there twice");
    }
    auto const value = StoredValue<typename Record::Value>::read(row);
    endRow(row);
    record.template is<Kind>(*key, value);
}

void Loading::endRow(RowReader& row) {
    result.firstFreePosition = std::max(result.firstFreePosition, row.position() + 1);
}

} // namespace

Loaded load(Connection& connection, Database& database) {
    Loading loading(connection, database);
    loading.clients();
    loading.membersOfClients(&Client::config);
    loading.membersOfClients(&Client::status);
    loading.members(*database.references());
    loading.members(*database.waiting());
    loading.members(*database.boot());
    return std::move(loading.result);
}

} // namespace VpAgent
