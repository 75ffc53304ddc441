// hold_table VPORTS CLIENTS
//
// Holds a table of VPORTS virtual ports, each requested by CLIENTS clients, and prints what that
// takes, in bytes: of the heap, as it grew from the first record on; of the process now; and of the
// process at most.

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"

#include <malloc.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

using namespace VornicCentral;

namespace {

/// The bytes that malloc has given away, what it adds to each block included.
std::size_t heapInUse() {
    auto const state = ::mallinfo2();
    return state.uordblks + state.hblkhd;
}

/// A line of the system's account of this process, in bytes.
std::size_t ofProcess(std::string const& name) {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);) {
        if (line.starts_with(name + ':')) {
            return std::strtoull(line.c_str() + name.size() + 1, nullptr, 10) * 1024;
        }
    }
    return 0;
}

struct Table {
    explicit Table(U32 clients)
        : stateMachine(vpIndexAllocatorDirSmFactory(references, waiting, configs, statuses, 65535,
                                                    boot, true, false, capabilities)) {
        for (U32 at = 0; at < clients; ++at) {
            Pelo::String const name("client" + std::to_string(at));
            statuses->vpIndexStatusIs(name, vpIndexStatusFactory(name));
            requests.push_back(vpIndexConfigFactory(name));
            configs->vpIndexConfigIs(name, requests.back());
        }
    }

    /// Requests edge virtual port number `at`: 4,000 VLANs an interface.
    void request(U32 at) {
        for (auto const& config : requests) {
            config->edgeVportIs({Netzo::IntfId("Ethernet" + std::to_string(at / 4000)),
                                 Bridging::VlanId(static_cast<U16>(at % 4000 + 1))},
                                true);
        }
    }

    Pelo::Ptr<VpReferenceList> references = vpReferenceListFactory("references");
    Pelo::Ptr<VpInvalidReferenceList> waiting = vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VpIndexConfigDir> configs = vpIndexConfigDirFactory("configs");
    Pelo::Ptr<VpIndexStatusDir> statuses = vpIndexStatusDirFactory("statuses");
    Pelo::Ptr<VxlanBootStatus> boot = vxlanBootStatusFactory("boot");
    Pelo::Ptr<VxlanCapabilities> capabilities = vxlanCapabilitiesFactory("capabilities", false);
    std::vector<Pelo::Ptr<VpIndexConfig>> requests;
    Pelo::Ptr<VpIndexAllocatorDirSm> stateMachine;
};

} // namespace

int main(int argc, char** argv) {
    if (argc != 3) {
        std::fputs("usage: hold_table VPORTS CLIENTS\n", stderr);
        return 2;
    }
    auto const vports = static_cast<U32>(std::strtoul(argv[1], nullptr, 10));
    std::size_t const before = heapInUse();
    Table table(static_cast<U32>(std::strtoul(argv[2], nullptr, 10)));
    for (U32 at = 0; at < vports; ++at) {
        table.request(at);
    }
    std::size_t const heap = heapInUse() - before;
    if (table.references->edgeVport().memberCount() != vports) {
        std::fputs("hold_table: not every virtual port is held\n", stderr);
        return 1;
    }
    std::printf("%zu %zu %zu\n", heap, ofProcess("VmRSS"), ofProcess("VmHWM"));
    return 0;
}
