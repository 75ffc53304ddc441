#pragma once

#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"
#include "pelo/Ptr.h"
#include "pelo/String.h"
#include "state/KeyRoom.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VpReferenceList.h"
#include "vpstate/VxlanBootStatus.h"

#include <functional>
#include <string_view>
#include <unordered_map>

namespace VpAgent {

/// A client and its two records, which belong together as long as the client is known. The config
/// stands in the config directory unless the client was removed; the status stands in the status
/// directory.
struct Client {
    Pelo::String name;
    Pelo::Ptr<VornicCentral::VpIndexConfig> config;
    Pelo::Ptr<VornicCentral::VpIndexStatus> status;
};

/// The records that the agents share, and the clients: all that outlives the state machine.
///
/// Whoever wants to know of changes subscribes to the records and the two directories. Each mutator
/// of theirs publishes after its change; a client is known before its records appear in the
/// directories, and until they are both gone. Records live as long as the database.
///
/// Not thread-safe.
class Database {
public:
    Database();
    Database(Database const&) = delete;
    Database& operator=(Database const&) = delete;

    Pelo::Ptr<VornicCentral::VpIndexConfigDir> const& configs() const noexcept { return configs_; }
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> const& statuses() const noexcept {
        return statuses_;
    }
    Pelo::Ptr<VornicCentral::VpReferenceList> const& references() const noexcept {
        return references_;
    }
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> const& waiting() const noexcept {
        return waiting_;
    }
    Pelo::Ptr<VornicCentral::VxlanBootStatus> const& boot() const noexcept { return boot_; }

    /// The client of that name, also when it was removed; null when it is not known. Valid until it
    /// is forgotten.
    Client const* find(std::string_view name) const;

    /// Whether the client's config stands in the config directory.
    bool isListed(Client const& client) const { return configs_->vpIndexConfigHas(client.name); }

    /// Whether one client more may become known; the database itself takes any number.
    bool roomForClient() const noexcept { return clients_.size() < Limits::clients; }

    /// Takes room for so many requests, or entries of statuses, that are about to be added, by
    /// whatever clients; false when there is none. Without it the records take any number.
    bool takeRoomForRequests(std::size_t count);
    bool takeRoomForStatuses(std::size_t count);

    /// Makes sure that the client is known and that its records stand in the directories, the
    /// status first. The records of a client that was removed are those that it had. `name` is a
    /// client name.
    Client const& add(std::string_view name);

    /// Makes sure that the client is known; its records are listed in no directory yet when it was
    /// not.
    Client const& know(std::string_view name);

    /// Takes the config out of its directory; the client stays known.
    void remove(Client const& client) { configs_->vpIndexConfigDel(client.name); }

    /// Takes the status out of its directory and forgets the client, whose config is not listed any
    /// more.
    void forget(Client const& client);

    /// Calls `visit(Client const&)` for each known client, in no order.
    template <class Visit> void forEachClient(Visit visit) const {
        for (auto const& [name, client] : clients_) {
            visit(client);
        }
    }

private:
    /// Clients are looked up by texts, without making a `Pelo::String` of them.
    struct Hash {
        using is_transparent = void;
        std::size_t operator()(std::string_view name) const noexcept {
            return std::hash<std::string_view>()(name);
        }
    };
    struct Equal {
        using is_transparent = void;
        bool operator()(std::string_view a, std::string_view b) const noexcept { return a == b; }
    };

    Pelo::Ptr<VornicCentral::VpReferenceList> references_;
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting_;
    Pelo::Ptr<VornicCentral::VxlanBootStatus> boot_;
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configs_;
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statuses_;
    std::unordered_map<Pelo::String, Client, Hash, Equal> clients_;
    KeyRoom requestRoom_;
    KeyRoom statusRoom_;
};

/// Calls `visit(key, value)` for each member of a collection, in its order.
template <class Collection, class Visit>
void forEachMember(Collection const& collection, Visit visit) {
    for (typename Collection::Iterator it(collection); it; it.advance()) {
        visit(it.key(), it.value());
    }
}

} // namespace VpAgent
