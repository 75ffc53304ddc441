#include "state/Database.h"

namespace VpAgent {

using namespace VornicCentral;

Database::Database()
    : references_(VpReferenceList::VpReferenceListIs("vpReference")),
      waiting_(VpInvalidReferenceList::VpInvalidReferenceListIs("vpInvalidReference")),
      boot_(VxlanBootStatus::VxlanBootStatusIs("vxlanBootStatus")),
      configs_(VpIndexConfigDir::VpIndexConfigDirIs("vpIndexConfig")),
      statuses_(VpIndexStatusDir::VpIndexStatusDirIs("vpIndexStatus")) {}

Client const* Database::find(std::string_view name) const {
    auto const found = clients_.find(name);
    return found == clients_.end() ? nullptr : &found->second;
}

namespace {

/// The members of one record of each client.
template <class Record>
std::size_t membersOf(Database const& database, Pelo::Ptr<Record> Client::*record) {
    std::size_t count = 0;
    database.forEachClient([&](Client const& client) { count += (client.*record)->memberCount(); });
    return count;
}

} // namespace

bool Database::takeRoomForRequests(std::size_t count) {
    return requestRoom_.take(count, [this] { return membersOf(*this, &Client::config); });
}

bool Database::takeRoomForStatuses(std::size_t count) {
    return statusRoom_.take(count, [this] { return membersOf(*this, &Client::status); });
}

Client const& Database::know(std::string_view name) {
    auto found = clients_.find(name);
    if (found == clients_.end()) {
        Pelo::String const key(name);
        Client client{key, VpIndexConfig::VpIndexConfigIs(key),
                      VpIndexStatus::VpIndexStatusIs(key)};
        found = clients_.emplace(key, std::move(client)).first;
    }
    return found->second;
}

Client const& Database::add(std::string_view name) {
    Client const& client = know(name);
    statuses_->vpIndexStatusIs(client.name, client.status);
    configs_->vpIndexConfigIs(client.name, client.config);
    return client;
}

void Database::forget(Client const& client) {
    statuses_->vpIndexStatusDel(client.name);
    clients_.erase(clients_.find(client.name));
}

} // namespace VpAgent
