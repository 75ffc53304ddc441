#pragma once

#include "VornicL3Shared/VornicL3VpIndexAllocator.h"
#include "VornicL3Shared/support/Capture.h"
#include "VornicL3Shared/support/Vports.h"

#include <string>

namespace Test {

/// How a world starts its state machine.
struct Settings {
    U32 tableSize = 16;
    bool reallocation = false;
    bool vfiForwarding = false;
    bool remoteLow = false;
    std::size_t ringSize = std::size_t{1} << 22; ///< bytes of the capture's ring buffer
};

/// A whole agent around the library: the shared records, the two directories, and the state machine
/// when started.
///
/// Everything that the library reports is captured; `state()` is the whole state as text, for one
/// comparison.
class World {
public:
    explicit World(Settings const& chosen = {}) : settings(chosen), capture(chosen.ringSize) {}

    /// Makes a client: its status first, then its config.
    void client(char const* name) {
        statusDir->vpIndexStatusIs(name, VornicCentral::vpIndexStatusFactory(name));
        configDir->vpIndexConfigIs(name, VornicCentral::vpIndexConfigFactory(name));
    }
    /// Ends the state machine, if there is one, and starts a new one over the records as they are.
    void start();
    void stop() { sm = nullptr; }

    template <class V> void request(char const* name, V const& vport) {
        config(name).is<typename V::Kind>(vport.key, true);
    }
    template <class V> void withdraw(char const* name, V const& vport) {
        config(name).del<typename V::Kind>(vport.key);
    }
    /// The index in the client's status; 65535 when the key is not there or waits.
    template <class V> U16 indexOf(char const* name, V const& vport) const {
        return status(name).get<typename V::Kind>(vport.key).vpIndex();
    }
    template <class V> bool waits(V const& vport) const {
        return waiting->has<typename V::Kind>(vport.key);
    }

    VornicCentral::VpIndexConfig& config(char const* name) const {
        return *configDir->vpIndexConfig(name);
    }
    VornicCentral::VpIndexStatus& status(char const* name) const {
        return *statusDir->vpIndexStatus(name);
    }
    VornicCentral::VpIndexAllocator& allocator(char const* name) const {
        return *sm->vpIndexAllocator(name);
    }

    /// One line each for the pool (set bits as runs), each client's requests, results and counters,
    /// the references, the waiting keys and the boot status; empty collections are left out,
    /// members stand in collection order:
    ///
    ///     pool 16: 0-7 15
    ///     config bgp: edge{Et1:100}
    ///     status bgp: edge{Et1:100=15} requests=1 failures=0 frees=0 size=16
    ///     references: edge{Et1:100=15[bgp]}
    ///     waiting:
    ///     boot:
    std::string state() const;
    std::string pool() const;

    Settings settings;
    Capture capture;
    Pelo::Ptr<VornicCentral::VpReferenceList> references =
        VornicCentral::vpReferenceListFactory("references");
    Pelo::Ptr<VornicCentral::VpInvalidReferenceList> waiting =
        VornicCentral::vpInvalidReferenceListFactory("waiting");
    Pelo::Ptr<VornicCentral::VpIndexConfigDir> configDir =
        VornicCentral::vpIndexConfigDirFactory("config");
    Pelo::Ptr<VornicCentral::VpIndexStatusDir> statusDir =
        VornicCentral::vpIndexStatusDirFactory("status");
    Pelo::Ptr<VornicCentral::VxlanBootStatus> boot = VornicCentral::vxlanBootStatusFactory("boot");
    Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm> sm;
};

} // namespace Test
