// What a client and a starting agent wait for, through all layers: the config is written, and the
// status and the reference are there when that returns.

#include "operations.h"

#include <VornicL3Shared/VornicL3VpIndexAllocator.h>

#include <string>
#include <vector>

namespace Operations {

namespace {

using namespace VornicCentral;

constexpr U32 systemIndices = 8;

/// Edge port number `at`: 1,000 VLANs an interface.
PortVlanKey key(U32 at) {
    return {Netzo::IntfId("Ethernet" + std::to_string(at / 1000)),
            Bridging::VlanId(static_cast<U16>(at % 1000 + 1))};
}

std::vector<PortVlanKey> keys(U32 count) {
    std::vector<PortVlanKey> all;
    for (U32 at = 0; at < count; ++at) {
        all.push_back(key(at));
    }
    return all;
}

/// An agent with one client, whose state machine runs.
struct Agent {
    explicit Agent(U32 size = 65535) : tableSize(size) {
        statuses->vpIndexStatusIs("bgp", status);
        configs->vpIndexConfigIs("bgp", config);
        start();
    }

    void start() {
        stateMachine = vpIndexAllocatorDirSmFactory(references, waiting, configs, statuses,
                                                    tableSize, boot, true, false, capabilities);
    }

    void request(std::vector<PortVlanKey> const& all) {
        for (PortVlanKey const& each : all) {
            config->edgeVportIs(each, true);
        }
    }

    U32 tableSize;
    Pelo::Ptr<VpReferenceList> references = vpReferenceListFactory("references");
    Pelo::Ptr<VpInvalidReferenceList> waiting = vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VpIndexConfig> config = vpIndexConfigFactory("bgp");
    Pelo::Ptr<VpIndexStatus> status = vpIndexStatusFactory("bgp");
    Pelo::Ptr<VpIndexConfigDir> configs = vpIndexConfigDirFactory("configs");
    Pelo::Ptr<VpIndexStatusDir> statuses = vpIndexStatusDirFactory("statuses");
    Pelo::Ptr<VxlanBootStatus> boot = vxlanBootStatusFactory("boot");
    Pelo::Ptr<VxlanCapabilities> capabilities = vxlanCapabilitiesFactory("capabilities", false);
    Pelo::Ptr<VpIndexAllocatorDirSm> stateMachine;
};

} // namespace

void request(U32 count) {
    Agent agent;
    auto const all = keys(count);
    counted([&] { agent.request(all); });
    expect(agent.references->edgeVport().memberCount() == count, "not every request was served");
}

void release(U32 count) {
    Agent agent;
    auto const all = keys(count);
    agent.request(all);
    counted([&] {
        for (PortVlanKey const& each : all) {
            agent.config->edgeVportDel(each);
        }
    });
    expect(agent.references->edgeVport().memberCount() == 0, "not every index was released");
}

/// An index is released and handed to the first of 1,000 waiting keys; the key that gave it up then
/// asks again and waits as the last one.
void handOver(U32 count) {
    constexpr U32 waiting = 1000;
    Agent agent(1024);
    auto const all = keys(agent.tableSize - systemIndices + waiting);
    agent.request(all);
    counted([&] {
        std::size_t at = 0;
        for (U32 done = 0; done < count; ++done) {
            agent.config->edgeVportDel(all[at]);
            agent.config->edgeVportIs(all[at], true);
            at = at + 1 == all.size() ? 0 : at + 1;
        }
    });
    expect(agent.waiting->edgeVport().memberCount() == waiting, "another number of keys waits");
}

/// A start that recovers `count` references, whose client then asks for each again.
void startWithReferences(U32 count) {
    Agent agent;
    agent.request(keys(count));
    agent.stateMachine = nullptr;
    counted([&] { agent.start(); });
    expect(agent.references->edgeVport().memberCount() == count, "not every reference was kept");
}

} // namespace Operations
