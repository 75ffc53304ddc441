#pragma once

#include "VornicL3Shared/Export.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Publisher.h"
#include "pelo/Slab.h"
#include "pelo/String.h"
#include "vpstate/Kinds.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpIndexConfig.h"
#include "vpstate/VpIndexStatus.h"
#include "vpstate/VpReferenceList.h"

namespace VornicCentral {

class VpIndexAllocatorDirSm;

/// The allocator of one client: turns the keys that the client requests into VP indices.
///
/// It watches the client's `VpIndexConfig`. A key that appears gets the index that another client
/// holds for the same key, or else a new one from the pool; a key that disappears gives its index
/// back when no other client uses it. For each key it writes the virtual port into the client's
/// `VpIndexStatus`, keeps the client's name in the key's `VpReference` and writes the reference
/// last, since that write wakes the directory state machine.
///
/// When the table is full the key is recorded all the same, with the invalid index, in status and
/// reference: it waits for an index that is released later. Another client that requests a waiting
/// key shares the invalid index and does not try to allocate.
///
/// Created by `VpIndexAllocatorDirSm::vpIndexAllocatorIs`; it serves everything that is already
/// requested before its constructor returns. All of it runs on the agent's event thread, one
/// handler at a time: see the state machine.
class VORNICL3SHARED_API VpIndexAllocator final : public Pelo::Node,
                                                  public Pelo::SlabAllocated<VpIndexAllocator> {
public:
    /// `vpIndexAllocatorDirSm` is borrowed and must outlive the allocator's reactors and every call
    /// of its handlers; it must not be null. The records are shared. The config may be null: the
    /// allocator then has an empty name and nothing to serve. Status and reference list may be null
    /// as long as nothing is requested; a request then throws the null-pointer-argument exception,
    /// and the allocator is undone. Cost: one handler a requested key.
    VpIndexAllocator(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                     Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                     Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                     Pelo::Ptr<VpReferenceList> const& vpReference, bool vfiForwarding);
    ~VpIndexAllocator() override;

    /// Builds an allocator and switches its reactors on; a null state machine is refused with the
    /// null-pointer-argument exception. The state machine does not list, verify or switch off what
    /// is built here; use its own `vpIndexAllocatorIs`.
    static Pelo::Ptr<VpIndexAllocator>
    VpIndexAllocatorIs(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                       Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                       Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                       Pelo::Ptr<VpReferenceList> const& vpReference, bool vfiForwarding);

    /// The name of the config record, which is the client's.
    Pelo::String const& name() const noexcept;
    VpIndexAllocatorDirSm* vpIndexAllocatorDirSm() const noexcept { return vpIndexAllocatorDirSm_; }
    Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig() const noexcept { return vpIndexConfig_; }
    Pelo::Ptr<VpIndexStatus> const& vpIndexStatus() const noexcept { return vpIndexStatus_; }
    Pelo::Ptr<VpReferenceList> const& vpReference() const noexcept { return vpReference_; }
    bool vfiForwarding() const noexcept { return vfiForwarding_; }
    bool initialized() const noexcept { return initialized_; }

    /// Writes the table size into the status and sweeps all kinds, the remote ones first.
    void handleInitialized();

    /// Brings one key in line with the config, whether it was added, requested again or withdrawn.
    /// A key that is not requested any more gives its reference back, also one that was recovered
    /// and names nobody. For the reactor and the owner: a subscriber that calls one within the
    /// write of another handler finds records that do not agree yet.
    void handleRemoteVport(RemoteVtepKey const& key);
    void handleMlagRemoteVport(RemoteVtepKey const& key);
    void handleEdgeVport(PortVlanKey const& pvKey);
    void handleVlanVport(Bridging::VlanId vlan);
    void handleEFilterDisableVport(Netzo::IntfId intf);

    /// Handles every requested key of one kind, in the config's order. Keys that are not requested
    /// are not visited.
    void handleRemoteVport();
    void handleMlagRemoteVport();
    void handleEdgeVport();
    void handleVlanVport();
    void handleEFilterDisableVport();

    /// The two remote kinds of one key have nothing to do with each other: each of these looks only
    /// into the collections of the kind that `mlag` selects. They need the record that they read or
    /// write; without a config nothing is requested. A key that is not there reads as an empty
    /// reference and as the index 65535.
    void handleRemoteVportCommon(RemoteVtepKey const& key, bool mlag);
    VpReference getRemoteVportRef(RemoteVtepKey const& key, bool mlag) const;
    bool remoteVportInVpReference(RemoteVtepKey const& key, bool mlag) const;
    bool remoteVportInVpIndexConfig(RemoteVtepKey const& key, bool mlag) const;
    U16 getRemoteVportVpIndex(RemoteVtepKey const& key, bool mlag) const;
    void addRemoteVportToStatus(RemoteVtepKey const& key, VirtualPort const& vPort, bool mlag);
    void addRemoteVportToVpRef(RemoteVtepKey const& key, VpReference const& reference, bool mlag);
    void delRemoteVportFromVpRef(RemoteVtepKey const& key, bool mlag);
    void delRemoteVportFromVpIndexStatus(RemoteVtepKey const& key, bool mlag);

    /// Counts the outcome of one allocation: a failure for the invalid index, else a request. An
    /// index above the table size (the size itself passes), a reserved index and a missing status
    /// stop the process.
    void verifyAndUpdateAllocStats(U16 vpIndex);
    /// Counts one release by this client; the invalid index counts for nothing. A missing status
    /// stops the process.
    void updateFreeStats(U16 vpIndex);

    /// Checks that config, status, references and pool agree for this client; the first
    /// disagreement stops the process. Changes nothing. Not for subscribers, who are called between
    /// the writes of a handler. Cost: linear in the keys of config and status.
    void verify() const;
    void verifyRemoteVpIndex() const;
    void verifyMlagRemoteVpIndex() const;
    void verifyEdgeVpIndex() const;
    void verifyVlanVpIndex() const;
    void verifyEFilterDisableVpIndex() const;

    /// The reactor of the config: maps the changed collection to its keyed handler. Unknown fields
    /// are ignored, and everything is while the allocator is a zombie.
    static void vpIndexConfigDispatch(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                                      Pelo::FieldId field, void const* key,
                                      void const* value) noexcept;

    /// Switches the reactor on or off.
    void hasNotificationActiveIs(bool active);
    /// Makes the reactor ignore, or heed, notifications; nothing happens when it already does.
    void qorDoZombieReactors(bool zombie) noexcept;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    template <class Kind> VORNICL3SHARED_LOCAL void handleKey(typename Kind::Key const& key);
    template <class Kind> VORNICL3SHARED_LOCAL void handleKeyInTurn(typename Kind::Key const& key);
    template <class Kind> VORNICL3SHARED_LOCAL void handleOne(typename Kind::Key const& key);
    template <class Kind> VORNICL3SHARED_LOCAL void handleAll();
    void handleAllKinds();
    template <class Kind>
    VORNICL3SHARED_LOCAL void add(typename Kind::Key const& key, VpReference& reference, bool held);
    template <class Kind> VORNICL3SHARED_LOCAL VirtualPort allocate(typename Kind::Key const& key);
    template <class Kind>
    VORNICL3SHARED_LOCAL void takeBack(typename Kind::Key const& key, VirtualPort vPort);
    template <class Kind>
    VORNICL3SHARED_LOCAL void withdraw(typename Kind::Key const& key, VpReference& reference);
    template <class Kind>
    VORNICL3SHARED_LOCAL void release(typename Kind::Key const& key, U16 vpIndex);
    template <class Kind>
    VORNICL3SHARED_LOCAL VpReference readReference(typename Kind::Key const& key, bool& held) const;
    template <class Kind>
    VORNICL3SHARED_LOCAL void writeStatus(typename Kind::Key const& key, VirtualPort const& vPort);
    template <class Kind> VORNICL3SHARED_LOCAL void verifyKind() const;
    template <class Kind> VORNICL3SHARED_LOCAL void verifyConfig() const;
    template <class Kind> VORNICL3SHARED_LOCAL void verifyStatus() const;

    template <class Kind> VORNICL3SHARED_LOCAL void react(typename Kind::Key const& key);
    void subscribe(bool on);

    VpIndexAllocatorDirSm* vpIndexAllocatorDirSm_;
    Pelo::Ptr<VpIndexConfig const> vpIndexConfig_;
    Pelo::Subscriber configSubscriber_;
    Pelo::Ptr<VpIndexStatus> vpIndexStatus_;
    Pelo::Ptr<VpReferenceList> vpReference_;
    bool vfiForwarding_;
    bool initialized_ = false;
};

VORNICL3SHARED_API Pelo::Ptr<VpIndexAllocator>
vpIndexAllocatorFactory(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                        Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                        Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                        Pelo::Ptr<VpReferenceList> const& vpReference, bool vfiForwarding);

} // namespace VornicCentral
