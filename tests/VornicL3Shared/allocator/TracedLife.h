#pragma once

#include "VornicL3Shared/support/World.h"

#include <string>
#include <type_traits>

namespace Test {

/// A world in which each trace is made when it runs: of the life of a client, of the five kinds
/// requested, shared, waiting, served and withdrawn, of a restart from references and of one from
/// the boot status.
class TracedLife {
public:
    void run() {
        world.client("bgp");
        world.client("bridging");
        world.start();
        shareAndWait();
        world.start();
        eachVport("2", [&](auto const& vport) { world.withdraw("bgp", vport); });
        world.configDir->vpIndexConfigDel("bridging");
        world.stop();
        recoverFromBoot();
    }

    World world{{.tableSize = 13, .reallocation = true}};

private:
    /// Calls `use` with a virtual port of each kind; those of two numbers differ.
    template <class Use> static void eachVport(std::string const& number, Use const& use) {
        use(remote("10.0.0." + number + "@17"));
        use(mlag("10.0.0." + number + "@17"));
        use(edge("Ethernet1/" + number + ":100"));
        use(vlan(static_cast<U16>(100 + std::stoi(number))));
        use(efilter("Ethernet2/" + number));
    }

    /// The first five fill the table and are shared; the second five wait, and take the indices of
    /// the first.
    void shareAndWait() {
        for (char const* const name : {"bgp", "bridging"}) {
            eachVport("1", [&](auto const& vport) { world.request(name, vport); });
        }
        eachVport("2", [&](auto const& vport) { world.request("bgp", vport); });
        world.sm->handleInvalidRemoteVport();
        world.sm->handleInvalidMlagRemoteVport();
        world.sm->handleInvalidEdgeVport();
        world.sm->handleInvalidVlanVport();
        world.sm->handleInvalidEFilterDisableVport();
        for (char const* const name : {"bgp", "bridging"}) {
            eachVport("1", [&](auto const& vport) { world.withdraw(name, vport); });
        }
        world.sm->verify();
    }

    /// The boot status holds an index of the system's for each kind, and one that is recovered; the
    /// status of the client has keys that it does not request.
    void recoverFromBoot() {
        U16 reserved = 1;
        U16 index = 8;
        auto const bootIs = [&](auto const& vport, U16 vpIndex) {
            world.boot->is<typename std::decay_t<decltype(vport)>::Kind>(
                vport.key, VornicCentral::VirtualPort(vpIndex));
        };
        eachVport("3", [&](auto const& vport) { bootIs(vport, reserved++); });
        eachVport("4", [&](auto const& vport) { bootIs(vport, index++); });
        eachVport("5", [&](auto const& vport) {
            world.status("bgp").is<typename std::decay_t<decltype(vport)>::Kind>(
                vport.key, VornicCentral::VirtualPort(12));
        });
        world.start();
        world.sm->clearStaleEntries();
    }
};

} // namespace Test
