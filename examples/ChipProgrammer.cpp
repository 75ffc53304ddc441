// A chip programmer: it follows the statuses of all clients and writes the chip's VP table.
//
// Three things make this more than one write a notification:
// - Clients that request the same virtual port share one index. The entry is written for the first
//   of them and cleared when the last one has withdrawn.
// - A virtual port that waits for an index has none to write.
// - An index that is released may be given to another virtual port at once, and its new user may be
//   heard of first. An entry is therefore cleared only if it still holds the port that left it.

#include "AgentRecords.h"
#include "StatusFollower.h"

#include <iostream>
#include <list>
#include <map>
#include <string>

using namespace VornicCentral;

namespace {

class ChipProgrammer {
public:
    /// Programs what a client has been given, and from now on what it is given.
    void follow(Pelo::Ptr<VpIndexStatus const> const& status) {
        Held& held = heldByClient_.emplace_back();
        followers_.emplace_back(status,
                                [this, &held](std::string const& vport, VirtualPort const* given) {
                                    change(held, vport, given == nullptr ? VirtualPort() : *given);
                                });
    }

    void printTable() const {
        std::cout << "the chip's table:\n";
        for (auto const& [index, entry] : table_) {
            std::cout << "    " << index << ": " << entry.vport << '\n';
        }
    }

private:
    /// What one client holds, by the name of the virtual port. Those without an index are left out.
    using Held = std::map<std::string, U16>;

    /// What stands in an entry of the chip, and how many clients hold it.
    struct Entry {
        std::string vport;
        U32 clients;
    };

    /// The new index is written before the former one is cleared, so that traffic always has one.
    void change(Held& held, std::string const& vport, VirtualPort now) {
        auto const place = held.find(vport);
        VirtualPort const former = place == held.end() ? VirtualPort() : VirtualPort(place->second);
        if (now == former) {
            return;
        }
        if (now.valid()) {
            held[vport] = now.vpIndex();
            take(now.vpIndex(), vport);
        } else {
            held.erase(place);
        }
        if (former.valid()) {
            leave(former.vpIndex(), vport);
        }
    }

    void take(U16 index, std::string const& vport) {
        Entry& entry = table_[index];
        if (entry.vport == vport) {
            ++entry.clients;
        } else {
            entry = {vport, 1};
            std::cout << "    write entry " << index << ": " << vport << '\n';
        }
    }

    void leave(U16 index, std::string const& vport) {
        auto const place = table_.find(index);
        bool const stillHeld = place != table_.end() && place->second.vport == vport;
        if (stillHeld && --place->second.clients == 0) {
            table_.erase(place);
            std::cout << "    clear entry " << index << '\n';
        }
    }

    std::map<U16, Entry> table_;
    std::list<Held> heldByClient_; // lists, because the followers must stay where they are
    std::list<Examples::StatusFollower> followers_;
};

} // namespace

int main() {
    // Four entries are free: 8 to 11. They are given from the highest down.
    Examples::AgentRecords records;
    auto stateMachine = records.start(12);
    auto const bridging = records.clientAdd("bridging");
    auto const bgp = records.clientAdd("bgp");
    auto const vlan = [](U16 number) { return Bridging::VlanId(number); };

    std::cout << "bridging has vlan 10 and vlan 20 when the chip programmer starts\n";
    bridging->vlanVportIs(vlan(10), true);
    bridging->vlanVportIs(vlan(20), true);
    ChipProgrammer programmer;
    programmer.follow(records.statuses->vpIndexStatus("bridging"));
    programmer.follow(records.statuses->vpIndexStatus("bgp"));

    std::cout << "bgp requests vlan 20 too, which is programmed already\n";
    bgp->vlanVportIs(vlan(20), true);

    std::cout << "bgp requests vlan 30 and vlan 40, then vlan 50, which finds the table full\n";
    bgp->vlanVportIs(vlan(30), true);
    bgp->vlanVportIs(vlan(40), true);
    bgp->vlanVportIs(vlan(50), true);

    std::cout << "bridging withdraws vlan 20, which bgp still uses\n";
    bridging->vlanVportDel(vlan(20));

    std::cout << "bridging withdraws vlan 10, whose index goes to vlan 50\n";
    bridging->vlanVportDel(vlan(10));

    std::cout << "bgp withdraws vlan 30\n";
    bgp->vlanVportDel(vlan(30));
    programmer.printTable();

    // An index changes when the references are lost, so that every index is given anew.
    std::cout << "the agent restarts without its references\n";
    stateMachine = nullptr;
    records.references = vpReferenceListFactory("references");
    stateMachine = records.start(12);
    programmer.printTable();
}
