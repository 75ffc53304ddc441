#pragma once

#include "pelo/Integers.h"
#include "requests/WatchedMap.h"

#include <cstdlib>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Bench {

/// The steps of the library for edge virtual ports, as a plain program would go them: it follows
/// what clients request, hands out the highest free index, shares it between clients, keeps who
/// uses it, lists the keys that wait for an index, and leaves the same records on the way.
///
/// `Policy` says with what:
///
///     Key            an interface and a VLAN: `letters()`, `digits()`, `intf()`, `vlan()`
///     Map<K, V>      a hash map with the interface of the standard one
///     Names          a set of client names with the interface of the standard one
///     Pool           of indices: `mark`, `takeHighest`, `free`, `full`
///     Recorder       `write<line, level>(operation, pieces...)`: one record
template <class Policy> class Program {
public:
    using Key = typename Policy::Key;
    using Names = typename Policy::Names;
    static constexpr U32 noIndex = 65535;
    static constexpr U32 reserved = 8;

    struct Reference {
        U32 index = noIndex;
        Names clients;
        friend bool operator==(Reference const&, Reference const&) = default;
    };

    struct Client {
        explicit Client(std::string clientName) : name(std::move(clientName)) {}

        std::string name;
        WatchedMap<Policy, bool> config;
        WatchedMap<Policy, U32> status;
        U32 requests = 0;
        U32 failures = 0;
        U32 releases = 0;
    };

    explicit Program(U32 tableSize) : tableSize_(tableSize) {}

    Client& clientAdd(std::string const& name) {
        clients_.push_back(std::make_unique<Client>(name));
        return *clients_.back();
    }
    WatchedMap<Policy, Reference>& references() noexcept { return references_; }
    typename Policy::Recorder& recorder() noexcept { return recorder_; }

    /// Marks what the references hold, and then serves what each client requests.
    void start();
    /// Lets go of the pool and of all watchers; the records stay.
    void stop();

private:
    void reconcile();
    void dropUnrequested(Client& client);
    void handle(Client& client, Key const& key);
    void add(Client& client, Key const& key, Reference reference, bool held);
    void withdraw(Client& client, Key const& key, Reference reference);
    void recycleOrFree(U32 index);
    bool handOver(U32 index);
    void handleInvalid(Key const& key);
    U32 allocate();
    void mark(U32 index);
    Client& client(std::string const& name);

    U32 tableSize_;
    typename Policy::Recorder recorder_;
    std::optional<typename Policy::Pool> pool_;
    std::vector<std::unique_ptr<Client>> clients_;
    WatchedMap<Policy, Reference> references_;
    WatchedMap<Policy, bool> waiting_;
};

template <class Policy> void Program<Policy>::start() {
    recorder_.template write<__LINE__, 1>("handleInitialized");
    pool_.emplace(tableSize_);
    for (U32 index = 0; index < reserved; ++index) {
        mark(index);
    }
    references_.watch([this](Key const& key) { handleInvalid(key); });
    reconcile();
    for (auto const& each : clients_) {
        recorder_.template write<__LINE__, 1>("handleInitialized", " ", each->name);
        each->config.watch([this, at = each.get()](Key const& key) { handle(*at, key); });
        for (auto const& [key, requested] : each->config.members()) {
            handle(*each, key);
        }
    }
}

template <class Policy> void Program<Policy>::stop() {
    for (auto const& each : clients_) {
        each->config.watchersDel();
    }
    references_.watchersDel();
    pool_.reset();
}

template <class Policy> void Program<Policy>::reconcile() {
    recorder_.template write<__LINE__, 1>("reconcile");
    for (auto const& [key, held] : references_.members()) {
        mark(held.index);
        recorder_.template write<__LINE__, 5>("reconcile", " recovered vpIndex: ", held.index,
                                              " for", " port: ", key.letters(), key.digits(),
                                              " vlan: ", key.vlan());
        references_.set(key, Reference{held.index, {}});
        if (held.index == noIndex) {
            waiting_.set(key, true);
        }
    }
    for (auto const& each : clients_) {
        recorder_.template write<__LINE__, 5>("reconcile", " clean up status for: ", each->name);
        dropUnrequested(*each);
    }
}

template <class Policy> void Program<Policy>::dropUnrequested(Client& client) {
    std::vector<Key> dropped;
    for (auto const& [key, index] : client.status.members()) {
        if (!client.config.has(key)) {
            dropped.push_back(key);
        }
    }
    for (Key const& key : dropped) {
        recorder_.template write<__LINE__, 5>("reconcile", " delete status for",
                                              " port: ", key.intf(), " vlan: ", key.vlan());
        client.status.erase(key);
        Reference reference = *references_.find(key);
        reference.clients.erase(client.name);
        references_.set(key, reference);
    }
}

/// A key that a client requests gets its index; one that it does not request any more gives it
/// back.
template <class Policy> void Program<Policy>::handle(Client& client, Key const& key) {
    recorder_.template write<__LINE__, 1>("handleEdgeVport", " port: ", key.letters(), key.digits(),
                                          " vlan: ", key.vlan());
    Reference const* const found = references_.find(key);
    bool const held = found != nullptr;
    Reference reference = held ? *found : Reference{};
    if (client.config.has(key)) {
        add(client, key, std::move(reference), held);
    } else {
        withdraw(client, key, std::move(reference));
    }
}

template <class Policy>
void Program<Policy>::add(Client& client, Key const& key, Reference reference, bool held) {
    recorder_.template write<__LINE__, 5>("handleEdgeVport", " vport addition for: ", client.name);
    if (held) {
        recorder_.template write<__LINE__, 5>("handleEdgeVport", " existing vport found");
    } else {
        recorder_.template write<__LINE__, 5>(
            "handleEdgeVport", " allocating vp index for pvKey: ", key.intf(), ":", key.vlan());
        reference.index = allocate();
        if (reference.index == noIndex) {
            ++client.failures;
        } else {
            ++client.requests;
            recorder_.template write<__LINE__, 5>("handleEdgeVport",
                                                  " allocated vpIndex: ", reference.index);
        }
    }
    recorder_.template write<__LINE__, 5>("handleEdgeVport", " port: ", key.letters(), key.digits(),
                                          " vlan: ", key.vlan(), " vpIndex: ", reference.index);
    reference.clients.insert(client.name);
    client.status.set(key, reference.index);
    references_.set(key, reference);
}

template <class Policy>
void Program<Policy>::withdraw(Client& client, Key const& key, Reference reference) {
    recorder_.template write<__LINE__, 5>("handleEdgeVport", " vport deletion for: ", client.name);
    U32 const* const given = client.status.find(key);
    U32 const index = given == nullptr ? noIndex : *given;
    reference.clients.erase(client.name);
    if (!reference.clients.empty()) {
        references_.set(key, reference);
    } else {
        recorder_.template write<__LINE__, 5>("handleEdgeVport", " freeing vpIndex: ", index);
        references_.erase(key);
        recycleOrFree(index);
    }
    client.status.erase(key);
    if (index != noIndex) {
        ++client.releases;
    }
}

template <class Policy> void Program<Policy>::recycleOrFree(U32 index) {
    recorder_.template write<__LINE__, 1>("recycleOrFreeVpIndex");
    if (index == noIndex || (!waiting_.members().empty() && handOver(index))) {
        return;
    }
    recorder_.template write<__LINE__, 5>("freeVpIndex", " index freed is: ", index);
    pool_->free(index);
}

/// Gives the index to a key that waits, for all of its clients; false when none can take it.
template <class Policy> bool Program<Policy>::handOver(U32 index) {
    for (auto const& [waitingKey, waits] : waiting_.members()) {
        Reference const* const found = references_.find(waitingKey);
        if (found == nullptr || found->clients.empty()) {
            continue;
        }
        Key const key = waitingKey;
        Reference reference = *found;
        for (std::string const& name : reference.clients) {
            recorder_.template write<__LINE__, 7>("recycleOrFreeVpIndex",
                                                  " Recycling vpIndex : ", index, " to ", name, " ",
                                                  key.intf(), ":", key.vlan());
            client(name).status.set(key, index);
        }
        reference.index = index;
        references_.set(key, reference);
        return true;
    }
    return false;
}

/// Keeps the list of waiting keys equal to the keys whose reference holds no index.
template <class Policy> void Program<Policy>::handleInvalid(Key const& key) {
    recorder_.template write<__LINE__, 1>("handleInvalidEdgeVport", " port: ", key.letters(),
                                          key.digits(), " vlan: ", key.vlan());
    Reference const* const found = references_.find(key);
    if (found == nullptr) {
        recorder_.template write<__LINE__, 5>("handleInvalidEdgeVport", " vport deleted ");
        waiting_.erase(key);
        return;
    }
    recorder_.template write<__LINE__, 5>("handleInvalidEdgeVport",
                                          " vport addition/modification for: ", found->index);
    if (found->index == noIndex) {
        recorder_.template write<__LINE__, 5>("handleInvalidEdgeVport",
                                              " vport added : ", found->index);
        waiting_.set(key, true);
    } else {
        recorder_.template write<__LINE__, 5>("handleInvalidEdgeVport",
                                              " vport deleted : ", found->index);
        waiting_.erase(key);
    }
}

template <class Policy> U32 Program<Policy>::allocate() {
    if (pool_->full()) {
        recorder_.template write<__LINE__, 5>("allocVpIndex",
                                              " VpIndex full return invalidVirtualPort");
        return noIndex;
    }
    U32 const index = pool_->takeHighest();
    recorder_.template write<__LINE__, 5>("allocVpIndex", " index allocated is: ", index);
    return index;
}

/// Two keys must never hold one index.
template <class Policy> void Program<Policy>::mark(U32 index) {
    if (index < tableSize_ && !pool_->mark(index)) {
        std::abort();
    }
}

template <class Policy>
typename Program<Policy>::Client& Program<Policy>::client(std::string const& name) {
    for (auto const& each : clients_) {
        if (each->name == name) {
            return *each;
        }
    }
    std::abort();
}

} // namespace Bench
