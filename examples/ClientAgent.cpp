// A client agent: it requests virtual ports of several kinds and follows what it is given.
//
// A client never asks for its results. It subscribes to its status and is told of each one when it
// comes, be it within the request or, for a virtual port that found the table full, much later.

#include "AgentRecords.h"
#include "StatusFollower.h"

#include <iostream>
#include <string>

using namespace VornicCentral;

namespace {

/// One client of the allocator, known by its name.
class ClientAgent {
public:
    ClientAgent(Examples::AgentRecords& records, char const* name)
        : name_(name),
          config_(records.clientAdd(name)),
          status_(records.statuses->vpIndexStatus(name)),
          follower_(status_, [this](std::string const& vport, VirtualPort const* given) {
              hear(vport, given);
          }) {}

    /// Requests and gives back. The kind is a type of "vpstate/Kinds.h", with its type of key.
    template <class Kind> void request(typename Kind::Key const& key) {
        std::cout << name_ << " requests " << Examples::vportText<Kind>(key) << '\n';
        config_->is<Kind>(key, true);
    }
    template <class Kind> void giveBack(typename Kind::Key const& key) {
        std::cout << name_ << " gives " << Examples::vportText<Kind>(key) << " back\n";
        config_->del<Kind>(key);
    }

    void printCounters() const {
        std::cout << name_ << ": indices taken from the pool: " << status_->vpAllocRequests()
                  << ", table found full: " << status_->vpAllocFailures()
                  << ", indices given back: " << status_->vpFreeRequests() << '\n';
    }

private:
    /// Here a real agent would forward traffic to the virtual port, or stop doing so.
    void hear(std::string const& vport, VirtualPort const* given) const {
        std::cout << "    " << name_ << " hears: " << vport;
        if (given == nullptr) {
            std::cout << " is withdrawn\n";
        } else if (given->valid()) {
            std::cout << " has the index " << *given << '\n';
        } else {
            std::cout << " waits for an index\n";
        }
    }

    char const* name_;
    Pelo::Ptr<VpIndexConfig> config_;
    Pelo::Ptr<VpIndexStatus const> status_;
    Examples::StatusFollower follower_;
};

} // namespace

int main() {
    // A table of 12 entries has four for virtual ports, since the system keeps eight.
    Examples::AgentRecords records;
    auto const stateMachine = records.start(12);
    ClientAgent bridging(records, "bridging");
    ClientAgent bgp(records, "bgp");

    RemoteVtepKey const vtep(Vxlan::SwTunnelGroupId(17), Netzo::IpGenAddr({10, 0, 0, 2}));
    PortVlanKey const port(Netzo::IntfId("Ethernet1/1"), Bridging::VlanId(100));
    Bridging::VlanId const vlan100(100);
    Bridging::VlanId const vlan200(200);

    // As long as there is room, the answer comes within the request.
    bridging.request<RemoteVport>(vtep);
    bridging.request<EdgeVport>(port);
    bridging.request<VlanVport>(vlan100);
    bgp.request<EFilterDisableVport>(Netzo::IntfId("Ethernet7"));

    // Whoever requests what another client holds shares its index, also when the table is full.
    bgp.request<VlanVport>(vlan100);

    // There is no fifth index. The request stays, and waits; the allocator logs that the resources
    // are insufficient, to standard error unless the host has set a log sink (FollowMessages.cpp).
    bgp.request<VlanVport>(vlan200);

    // What a client gives back is free only when nobody else uses it: bgp still has VLAN 100.
    bridging.giveBack<VlanVport>(vlan100);

    // Nobody else uses the edge port, so its index goes to the VLAN that waits.
    bridging.giveBack<EdgeVport>(port);

    bridging.printCounters();
    bgp.printCounters();
}
