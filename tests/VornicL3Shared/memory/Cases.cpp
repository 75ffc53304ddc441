#include "VornicL3Shared/memory/Cases.h"

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Listener.h"

#include <optional>

namespace MemoryTest {
namespace {

using namespace VornicCentral;
using Test::efilter;
using Test::numbered;
using Test::vlan;
using Test::World;

constexpr Test::Settings roomy{.reallocation = true, .ringSize = 65536};
constexpr Test::Settings twoIndices{.tableSize = 10, .reallocation = true, .ringSize = 65536};

void twoClients(World& world) {
    world.client("bgp");
    world.client("mlag");
}

void twoClientsRunning(World& world) {
    twoClients(world);
    world.start();
}

void start(World& world) { world.start(); }

template <class Kind> void request(World& world) { world.request("bgp", numbered<Kind>(1)); }

template <class Kind> void requested(World& world) {
    twoClientsRunning(world);
    request<Kind>(world);
}

template <class Kind> void withdraw(World& world) { world.withdraw("bgp", numbered<Kind>(1)); }

void requestsOfAllKinds(World& world) {
    twoClients(world);
    forEachKind([&](auto kind) { request<decltype(kind)>(world); });
    world.request("mlag", numbered<EdgeVport>(1));
}

void full(World& world) {
    twoClientsRunning(world);
    world.request("bgp", vlan(100));
    world.request("bgp", vlan(101));
}

void fullAndWaiting(World& world) {
    full(world);
    world.request("bgp", efilter("Ethernet1"));
    world.request("mlag", efilter("Ethernet1"));
}

/// The index of the key that was withdrawn is free, and the key that was to get it waits.
void withdrawnAndNotHandedOver(World& world) {
    fullAndWaiting(world);
    world.stop();
    world.withdraw("bgp", vlan(100));
    world.references->del<VlanVport>(Bridging::VlanId(100));
}

void fiveShare(World& world) {
    for (char const* const name : {"a", "b", "c", "d", "e", "f"}) {
        world.client(name);
    }
    world.start();
    for (char const* const name : {"a", "b", "c", "d", "e"}) {
        world.request(name, vlan(100));
    }
}

/// The records of a run in whose absence the clients changed their minds.
void surviving(World& world) {
    fullAndWaiting(world);
    world.stop();
    world.withdraw("bgp", vlan(101));
    world.request("bgp", vlan(102));
}

void bootStatus(World& world) {
    twoClients(world);
    world.boot->is<VlanVport>(Bridging::VlanId(101), VirtualPort(3)); // the system's
    world.boot->is<VlanVport>(Bridging::VlanId(100), VirtualPort(8));
    world.boot->is<VlanVport>(Bridging::VlanId(102), VirtualPort(9));
    world.request("bgp", vlan(100));
    world.request("mlag", vlan(101));
    world.request("mlag", vlan(102));
}

/// The boot status was taken over in part; the next start goes by the references.
void bootStatusInPart(World& world) {
    bootStatus(world);
    world.boot->del<VlanVport>(Bridging::VlanId(101));
    world.references->is<VlanVport>(Bridging::VlanId(100), VpReference(VirtualPort(8)));
}

void oneClientRunning(World& world) {
    world.client("bgp");
    world.start();
    world.request("bgp", vlan(100));
    world.statusDir->vpIndexStatusIs("mlag", vpIndexStatusFactory("mlag"));
}

void addClient(World& world) {
    auto const config = vpIndexConfigFactory("mlag");
    config->is<VlanVport>(Bridging::VlanId(100), true);
    config->is<VlanVport>(Bridging::VlanId(101), true);
    config->is<EFilterDisableVport>(Netzo::IntfId("Ethernet1"), true);
    world.configDir->vpIndexConfigIs("mlag", config);
}

void clientAdded(World& world) {
    oneClientRunning(world);
    addClient(world);
}

void removeClient(World& world) {
    world.configDir->vpIndexConfigDel("mlag");
    world.sm->vpIndexAllocatorDel("mlag");
}

void clientAddedUnnoticed(World& world) {
    oneClientRunning(world);
    world.sm->qorDoZombieReactors(true);
    addClient(world);
    world.sm->qorDoZombieReactors(false);
}

void handleClient(World& world) { world.sm->handleVpIndexConfig("mlag"); }

void requestUnnoticed(World& world) {
    full(world);
    world.withdraw("bgp", vlan(101));
    world.allocator("bgp").qorDoZombieReactors(true);
    world.request("bgp", vlan(103));
    world.allocator("bgp").qorDoZombieReactors(false);
}

void handleKey(World& world) { world.allocator("bgp").handleVlanVport(Bridging::VlanId(103)); }

void withdrawnUnnoticed(World& world) {
    fullAndWaiting(world);
    world.allocator("bgp").qorDoZombieReactors(true);
    world.withdraw("bgp", vlan(100));
    world.allocator("bgp").qorDoZombieReactors(false);
}

void handleWithdrawnKey(World& world) {
    world.allocator("bgp").handleVlanVport(Bridging::VlanId(100));
}

void stale(World& world) {
    surviving(world);
    world.start();
}

/// When the first stale reference goes, a subscriber withdraws a request that is held, so that the
/// release of the next indices has to wait for its turn.
void staleAndWatched(World& world) {
    twoClientsRunning(world);
    for (U16 const number : {U16{100}, U16{101}, U16{102}, U16{103}}) {
        world.request("bgp", vlan(number));
    }
    world.stop();
    for (U16 const number : {U16{101}, U16{102}, U16{103}}) {
        world.withdraw("bgp", vlan(number));
    }
    world.start();
    static std::optional<Test::Listener> listener; // of the one process that prepares this
    listener.emplace(*world.references,
                     [&world](Test::Notification const&) { world.withdraw("bgp", vlan(100)); });
}

void clearStale(World& world) { world.sm->clearStaleEntries(); }

} // namespace

std::vector<Case> const& cases() {
    static std::vector<Case> const list = {
        {"StartUp", {roomy, requestsOfAllKinds, start}},
        {"RequestRemote", {roomy, twoClientsRunning, request<RemoteVport>}},
        {"RequestMlag", {roomy, twoClientsRunning, request<MlagRemoteVport>}},
        {"RequestEdge", {roomy, twoClientsRunning, request<EdgeVport>}},
        {"RequestVlan", {roomy, twoClientsRunning, request<VlanVport>}},
        {"RequestEFilter", {roomy, twoClientsRunning, request<EFilterDisableVport>}},
        {"RequestOnFullTable",
         {twoIndices, full, [](World& world) { world.request("mlag", vlan(102)); }}},
        {"RequestBySixth", {roomy, fiveShare, [](World& world) { world.request("f", vlan(100)); }}},
        {"WithdrawRemote", {roomy, requested<RemoteVport>, withdraw<RemoteVport>}},
        {"WithdrawMlag", {roomy, requested<MlagRemoteVport>, withdraw<MlagRemoteVport>}},
        {"WithdrawEdge", {roomy, requested<EdgeVport>, withdraw<EdgeVport>}},
        {"WithdrawVlan", {roomy, requested<VlanVport>, withdraw<VlanVport>}},
        {"WithdrawEFilter", {roomy, requested<EFilterDisableVport>, withdraw<EFilterDisableVport>}},
        {"WithdrawOneOfFive",
         {roomy, fiveShare, [](World& world) { world.withdraw("b", vlan(100)); }}},
        {"HandOver",
         {twoIndices, fullAndWaiting, [](World& world) { world.withdraw("bgp", vlan(100)); }},
         withdrawnAndNotHandedOver},
        {"Restart", {twoIndices, surviving, start}},
        {"RestartFromBootStatus", {twoIndices, bootStatus, start}, bootStatusInPart},
        {"AddClient", {twoIndices, oneClientRunning, addClient}},
        {"RemoveClient", {twoIndices, clientAdded, removeClient}},
        {"CallHandleClient", {twoIndices, clientAddedUnnoticed, handleClient}},
        {"CallHandleKey", {twoIndices, requestUnnoticed, handleKey}},
        {"CallHandleWithdrawnKey",
         {twoIndices, withdrawnUnnoticed, handleWithdrawnKey},
         withdrawnAndNotHandedOver},
        {"CallClearStaleEntries", {twoIndices, stale, clearStale}, nullptr, true},
        {"CallClearStaleEntriesWatched", {roomy, staleAndWatched, clearStale}, nullptr, true},
    };
    return list;
}

} // namespace MemoryTest
