#pragma once

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "requests/Names.h"
#include "requests/QuietRing.h"

#include <array>
#include <string>
#include <type_traits>
#include <vector>

namespace Bench {

/// A state machine over its own records, with clients that request virtual ports of `Kind`.
template <class Kind> class OurWorld {
public:
    using Key = typename Kind::Key;

    static Key key(U32 at) {
        if constexpr (std::is_same_v<Key, VornicCentral::PortVlanKey>) {
            return {Netzo::IntfId(interfaceName(at)), Bridging::VlanId(vlanNumber(at))};
        } else {
            auto const byte = [at](U32 shift) { return static_cast<U8>(at >> shift); };
            std::array<U8, 4> const address{10, byte(16), byte(8), byte(0)};
            return {Vxlan::SwTunnelGroupId(at / 4000), Netzo::IpGenAddr(address)};
        }
    }

    explicit OurWorld(U32 clients, U32 entries = tableEntries) : entries_(entries) {
        for (U32 at = 0; at < clients; ++at) {
            Pelo::String const name(clientName(at));
            statuses_->vpIndexStatusIs(name, VornicCentral::vpIndexStatusFactory(name));
            clients_.push_back(VornicCentral::vpIndexConfigFactory(name));
            configs_->vpIndexConfigIs(name, clients_.back());
        }
        start();
    }

    /// A client requests a key, or withdraws it: everything happens before the call returns.
    void request(Key const& key, U32 client = 0) { clients_[client]->template is<Kind>(key, true); }
    void withdraw(Key const& key, U32 client = 0) { clients_[client]->template del<Kind>(key); }

    /// Makes a key look as if clients of these names held it.
    void shareBetween(Key const& key, std::vector<std::string> const& names) {
        VornicCentral::VpReference reference{VornicCentral::VirtualPort(firstShared)};
        for (std::string const& name : names) {
            reference.referenceIs(Pelo::String(name), true);
        }
        references_->is<Kind>(key, reference);
    }
    U32 waitingCount() const { return waiting_->memberCount(); }

    void start() {
        stateMachine_ = VornicCentral::vpIndexAllocatorDirSmFactory(references_, waiting_, configs_,
                                                                    statuses_, entries_, boot_,
                                                                    true, false, capabilities_);
    }
    void stop() { stateMachine_ = nullptr; }

    /// For setups, whose records nobody reads.
    template <class Work> static void unrecorded(Work const& work) {
        QuietRing const quiet;
        work();
    }

private:
    U32 entries_;
    Pelo::Ptr<VornicCentral::VpReferenceList> references_ =
        VornicCentral::vpReferenceListFactory("references");
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting_ =
        VornicCentral::vpInvalidReferenceListFactory("waiting");
    std::vector<Pelo::Ptr<VornicCentral::VpIndexConfig>> clients_;
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configs_ =
        VornicCentral::vpIndexConfigDirFactory("configs");
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statuses_ =
        VornicCentral::vpIndexStatusDirFactory("statuses");
    Pelo::Ptr<VornicCentral::VxlanBootStatus> boot_ = VornicCentral::vxlanBootStatusFactory("boot");
    Pelo::Ptr<VornicCentral::VxlanCapabilities> capabilities_ =
        VornicCentral::vxlanCapabilitiesFactory("capabilities", false);
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> stateMachine_;
};

} // namespace Bench
