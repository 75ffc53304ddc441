#pragma once

#include "VornicL3Shared/Export.h"
#include "VornicL3Shared/HandlerTurns.h"
#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"
#include "bask/Bitmap.h"
#include "vpstate/VpInvalidReferenceList.h"
#include "vpstate/VxlanBootStatus.h"
#include "vpstate/VxlanCapabilities.h"

namespace VornicCentral {

/// The allocator directory state machine: the one object that the agent creates to run VP index
/// allocation.
///
/// It owns the pool of VP indices, one bit per entry of the chip's VP table, and one
/// `VpIndexAllocator` per client name. Indices 0 to 7 are reserved for the system and never handed
/// out. It follows the config directory, so that a client that appears gets its allocator, and the
/// reference list, so that keys without an index are kept waiting.
///
/// The constructor runs the whole start-up: the pool is made, the reserved indices are marked, the
/// indices of the reference list and the boot status are recovered, and every client of the config
/// directory is served. A client whose config is removed keeps its allocator, its status and its
/// indices. It has no thread of its own; all of it runs on the agent's event thread, inside
/// notifications and the operations that the owner calls.
///
/// Handlers run one at a time: when a subscriber of the records that a handler writes changes a
/// config at once, that change is handled after the handler is done. It may also drop the last
/// pointer to the state machine, which then lives until its reactor returns.
///
/// What stops the process: a client with a config and no status; an index that is marked twice; a
/// table that is neither full nor has a free entry; an index that is handed to a client and is the
/// system's or above the size that the client's status knows; a waiting key whose reference names a
/// client without config, status or request; the checks of `verify`; and any exception that leaves
/// a reactor.
///
/// Its traces, and those of the allocators, have the handle "VornicVpIndexAllocator", which
/// `Qor::TraceHandle::find` knows from the first trace on, that of building a state machine: level
/// 1 is the entry of each operation and handler, 5 each step, 7 each client that gets a recycled
/// index. It logs "VORNIC_VIRTUALPORT_RESOURCE_FULL" when a requested key finds the table full, and
/// "VORNIC_VIRTUALPORT_RESOURCE_NORMAL" when a waiting key gets an index, both without a rate
/// limit.
class VORNICL3SHARED_API VpIndexAllocatorDirSm final
    : public Pelo::Node,
      public Pelo::SlabAllocated<VpIndexAllocatorDirSm> {
public:
    using Allocators = Qor::HashMap2018<Pelo::String, Pelo::Ptr<VpIndexAllocator>>;

    /// The number of reserved indices, the lowest of the table.
    static constexpr U32 maxSystemSourceVp_ = 8;

    /// Every pointer may be null; what is null is neither watched nor read. Three are missed: the
    /// boot status when the reference list has no remote, no edge and no VLAN entry, and the
    /// reference list when a client requests a key (the null-pointer-argument exception, after
    /// which nothing is left of the state machine, while records keep what was written to them;
    /// within a notification it ends the process), and the status directory when a client has a
    /// config (the process stops). Without capabilities remote VTEPs take the highest index, as the
    /// other kinds do.
    ///
    /// `vpTableSize` is in entries and at most 65535: in a larger table the index 65535, which
    /// means "no index", would be handed out, which callers must not let happen. One of 8 or fewer
    /// is full from the start. With `vpReallocationEnabled`, keys that find the table full wait for
    /// an index that is released. `vfiForwarding` is handed to the allocators, which only keep it.
    ///
    /// Cost: one walk of all records, and a handler for each key that is requested.
    VpIndexAllocatorDirSm(Pelo::Ptr<VpReferenceList> const& vpReference,
                          Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
                          Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
                          Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
                          Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus,
                          bool vpReallocationEnabled, bool vfiForwarding,
                          Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities);
    ~VpIndexAllocatorDirSm() override;

    /// Builds a state machine and switches its reactors on, as `vpIndexAllocatorDirSmFactory` does.
    static Pelo::Ptr<VpIndexAllocatorDirSm>
    VpIndexAllocatorDirSmIs(Pelo::Ptr<VpReferenceList> const& vpReference,
                            Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
                            Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
                            Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
                            Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus,
                            bool vpReallocationEnabled, bool vfiForwarding,
                            Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities);

    Pelo::Ptr<VpReferenceList> const& vpReference() const noexcept { return vpReference_; }
    Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference() const noexcept {
        return vpInvalidReference_;
    }
    Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir() const noexcept {
        return vpIndexConfigDir_;
    }
    Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir() const noexcept {
        return vpIndexStatusDir_;
    }
    U32 vpTableSize() const noexcept { return vpTableSize_; }
    Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus() const noexcept { return vxlanBootStatus_; }
    bool vpReallocationEnabled() const noexcept { return vpReallocationEnabled_; }
    bool vfiForwarding() const noexcept { return vfiForwarding_; }
    Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities() const noexcept {
        return vxlanCapabilities_;
    }
    bool initialized() const noexcept { return initialized_; }

    /// The start-up sequence. The constructor runs it; calling it again starts from an empty pool
    /// only if the pool was deleted or replaced before, and otherwise stops the process at the
    /// first reserved index.
    void handleInitialized();

    // The pool of VP indices. `setVpBitmap`, `allocVpIndex` and `freeVpIndex` must not be called
    // while there is none.

    /// Null before start-up and after `vpBitmapDel`, and whatever needs the pool then stops the
    /// process with "vpBitmap_ != nullptr". Whoever changes a bit here bypasses all checks.
    Pelo::Ptr<Bask::Bitmap> const& vpBitmap() const noexcept { return vpBitmap_; }
    /// The pool with these properties: the one that is there, with its bits, when it was built with
    /// the same three values, else a new one in its place. `size` in bits.
    Pelo::Ptr<Bask::Bitmap> vpBitmapIs(U64 id, U32 size, Bask::HBitmap::BitState initialBitState);
    /// Detaches the pool and returns it.
    Pelo::Ptr<Bask::Bitmap> vpBitmapDel();
    /// Marks an index as used. An index above the table size is ignored; the table size itself
    /// passes that test and reaches the pool, which has no such bit. An index that is in use
    /// already stops the process.
    void setVpBitmap(U32 vpIndex);
    /// Takes the highest or the lowest free index; 65535 when the table is full. Cost: one word per
    /// level of the pool.
    U16 allocVpIndex(bool indexPreferenceHigh);
    /// Gives an index back; 65535 is ignored. Nothing is checked: the caller must hold the index,
    /// and must never free one below 8.
    void freeVpIndex(U32 vpIndex);
    /// True for 1 to 7. Index 0 is reserved like them and is not a default VP.
    bool isDefaultVp(U32 vpIndex) const noexcept {
        return vpIndex >= 1 && vpIndex < maxSystemSourceVp_;
    }

    // The allocators, one per client.

    Allocators const& vpIndexAllocator() const noexcept { return vpIndexAllocator_; }
    /// The allocator of a name; null when there is none.
    Pelo::Ptr<VpIndexAllocator> vpIndexAllocator(Pelo::String const& name) const;
    bool vpIndexAllocatorHas(Pelo::String const& name) const noexcept {
        return vpIndexAllocator_.has(name);
    }
    /// The allocator for `vpIndexConfig`, made when its name has none, which serves all that is
    /// requested before this returns. Throws the null-pointer-argument exception for a null config
    /// or, when one is made, a null state machine, and the mutator-reinstantiating exception when
    /// the name's allocator was made with other arguments; that allocator stays.
    Pelo::Ptr<VpIndexAllocator>
    vpIndexAllocatorIs(VpIndexAllocatorDirSm* vpIndexAllocatorDirSm,
                       Pelo::Ptr<VpIndexConfig const> const& vpIndexConfig,
                       Pelo::Ptr<VpIndexStatus> const& vpIndexStatus,
                       Pelo::Ptr<VpReferenceList> const& vpReference, bool vfiForwarding);
    /// Removes one allocator and returns it (null when there was none), or removes all. For the
    /// owner: the state machine itself never does, and the statuses and indices of the name stay.
    /// Whoever keeps one that was removed must switch its reactor off: it goes on serving its
    /// config, and must not do so when the state machine is gone.
    Pelo::Ptr<VpIndexAllocator> vpIndexAllocatorDel(Pelo::String const& name);
    void vpIndexAllocatorDelAll();

    /// Makes the allocator of one name, or of every name, of the config directory where there is
    /// none yet. A name that is not there any more is ignored, one without a status stops the
    /// process, and one whose config or status is another record than before is refused as by
    /// `vpIndexAllocatorIs`.
    void handleVpIndexConfig(Pelo::String const& name);
    void handleVpIndexConfig();

    // Waiting keys.

    /// Makes a key wait (puts it into the invalid reference list) exactly if its reference holds
    /// the invalid virtual port. Does nothing while reallocation is not enabled.
    void handleInvalidRemoteVport(RemoteVtepKey const& key);
    void handleInvalidMlagRemoteVport(RemoteVtepKey const& key);
    void handleInvalidEdgeVport(PortVlanKey const& pvKey);
    void handleInvalidVlanVport(Bridging::VlanId vlan);
    void handleInvalidEFilterDisableVport(Netzo::IntfId intf);

    /// The same for every key of one kind that has a reference.
    void handleInvalidRemoteVport();
    void handleInvalidMlagRemoteVport();
    void handleInvalidEdgeVport();
    void handleInvalidVlanVport();
    void handleInvalidEFilterDisableVport();

    /// Hands an index that nobody uses any more to the first waiting key whose reference names a
    /// client (VLAN kind first, then remote, MLAG remote, edge, eFilterDisable, first come first
    /// served), or frees it.
    ///
    /// With reallocation disabled, or before start-up has finished, the index is freed first, and
    /// handed over all the same when a key waits: whoever calls it then must know that. The waiting
    /// entry of the key that takes the index is not removed here but by the handler that the change
    /// of its reference wakes. Bits of `vpIndex` above the sixteenth are cut off; an index past the
    /// end of the pool is handed over like any other. Called while changes of configs or other
    /// releases wait for their turn, it waits until they are done; until then the index counts as
    /// used. Cost: proportional to the waiting keys that have to be passed over and to the clients
    /// of the key that takes the index. A client that is named by the key's reference but has no
    /// config, no status or no such request stops the process, and so does a subscriber of one
    /// client's status that withdraws the key for another client while the index is handed over.
    void recycleOrFreeVpIndex(U32 vpIndex);

    // Restart, clean-up, verification.

    /// Recovers the pool from the reference list, and from the boot status when the reference list
    /// has no remote, no edge and no VLAN entry (the two other kinds do not count); every reference
    /// is left without clients, who enter themselves again; entries of statuses that the config of
    /// the same name does not back are removed. An index that two entries hold stops the process,
    /// and so does a reference with an index below 8 or a boot entry with index 0; boot entries
    /// with the indices 1 to 7 are dropped. An index past the end of the pool, as after a restart
    /// with a smaller table, stays with its key and marks no bit, so that `verify` fails until the
    /// key is gone. A boot status that is needed and null is refused with the null-pointer-argument
    /// exception, when the references have been recovered already. Cost: linear in the entries.
    ///
    /// Start-up runs it once, on a fresh pool and before the clients. A second call stops the
    /// process at the first index that is in use, and takes the clients out of references that hold
    /// none.
    void reconcile();
    /// Removes every reference that names no client and releases its index. For the owner to call
    /// when the clients have come back after a restart; not part of start-up. Called within a
    /// notification, it waits until the running handler is done. Cost: linear in the references;
    /// with reallocation, each released index also passes over the waiting keys that name no
    /// client.
    void clearStaleEntries();
    /// Checks every allocator and then the table: the first disagreement stops the process. Changes
    /// nothing; returns at once while start-up has not finished. Each reference counts as one set
    /// bit of the pool, one that waits without an index too: so it fails while any key waits. Not
    /// for subscribers, who are called between the writes of a handler. It fails as well while a
    /// reference names no client, as after a restart until `clearStaleEntries`. Cost: linear in the
    /// keys of all clients.
    void verify() const;

    /// The reactors of the config directory and of the reference list.
    static void vpIndexConfigDirDispatch(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                                         Pelo::FieldId field, void const* key,
                                         void const* value) noexcept;
    static void vpReferenceDispatch(Pelo::Publisher* publisher, Pelo::Subscriber* subscriber,
                                    Pelo::FieldId field, void const* key,
                                    void const* value) noexcept;

    /// Switches the reactors of the state machine and of all its allocators on or off; nothing
    /// happens when they already are. Notifications that arrive meanwhile are ignored.
    void hasNotificationActiveIs(bool active);
    /// Makes the reactors ignore, or heed, notifications; nothing happens when they already do.
    void qorDoZombieReactors(bool zombie) noexcept;

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    VORNICL3SHARED_LOCAL Bask::Bitmap& pool() const;

    /// A client's records; null when there is none, or no directory.
    Pelo::Ptr<VpIndexConfig const> configOf(Pelo::String const& name) const;
    Pelo::Ptr<VpIndexStatus> statusOf(Pelo::String const& name) const;

    friend class VpIndexAllocator; // whose handlers take their turns with the state machine's

    /// Runs a handler in its turn. A subscriber of the records may drop the last pointer to the
    /// state machine meanwhile: it stays until the handler, and what was left to it, is done.
    template <class Handler> VORNICL3SHARED_LOCAL void inTurn(Handler const& handler) {
        Pelo::Ptr<VpIndexAllocatorDirSm> const untilDone(this);
        handlerTurns_.run(handler);
    }

    template <class Kind> VORNICL3SHARED_LOCAL void handleInvalidKey(typename Kind::Key const& key);
    template <class Kind> VORNICL3SHARED_LOCAL void handleInvalidAll();
    void recycleOrFree(U32 vpIndex);
    template <class Kind> VORNICL3SHARED_LOCAL bool recycleTo(VirtualPort vp);
    template <class Kind>
    VORNICL3SHARED_LOCAL void handOver(typename Kind::Key const& key, VpReference& reference,
                                       VirtualPort vp);
    template <class Kind> VORNICL3SHARED_LOCAL void recoverReferences();
    template <class Kind> VORNICL3SHARED_LOCAL void makeWait(typename Kind::Key const& key);
    template <class Kind> VORNICL3SHARED_LOCAL void recoverBootStatus();
    template <class Kind>
    VORNICL3SHARED_LOCAL void recoverBootEntry(typename Kind::Key const& key,
                                               VirtualPort bootVport);
    template <class Kind>
    VORNICL3SHARED_LOCAL void cleanUpStatus(Pelo::String const& name, VpIndexConfig const& config,
                                            VpIndexStatus& status);
    void clearAllKinds();
    template <class Kind> VORNICL3SHARED_LOCAL void clearStaleKind();
    template <class Kind> VORNICL3SHARED_LOCAL void verifyKind() const;

    void switchAllocators(bool active);
    void subscribe(bool on);
    void reactToConfig(Pelo::String const& name);
    void releaseAll() noexcept;
    void recoverFromReferences();
    void recoverFromBootStatus();
    void cleanUpStatuses();

    Pelo::Ptr<VpReferenceList> vpReference_;
    Pelo::Ptr<VpInvalidReferenceList> vpInvalidReference_;
    Pelo::Ptr<VpIndexConfigDir const> vpIndexConfigDir_;
    Pelo::Ptr<VpIndexStatusDir> vpIndexStatusDir_;
    U32 vpTableSize_;
    Pelo::Ptr<VxlanBootStatus> vxlanBootStatus_;
    bool vpReallocationEnabled_;
    bool vfiForwarding_;
    bool initialized_ = false;
    Pelo::Ptr<VxlanCapabilities const> vxlanCapabilities_;
    Pelo::Ptr<Bask::Bitmap> vpBitmap_;
    Allocators vpIndexAllocator_;
    HandlerTurns handlerTurns_;
    Pelo::Subscriber referenceSubscriber_;
    Pelo::Subscriber configDirSubscriber_;
};

VORNICL3SHARED_API Pelo::Ptr<VpIndexAllocatorDirSm>
vpIndexAllocatorDirSmFactory(Pelo::Ptr<VpReferenceList> const& vpReference,
                             Pelo::Ptr<VpInvalidReferenceList> const& vpInvalidReference,
                             Pelo::Ptr<VpIndexConfigDir const> const& vpIndexConfigDir,
                             Pelo::Ptr<VpIndexStatusDir> const& vpIndexStatusDir, U32 vpTableSize,
                             Pelo::Ptr<VxlanBootStatus> const& vxlanBootStatus,
                             bool vpReallocationEnabled, bool vfiForwarding,
                             Pelo::Ptr<VxlanCapabilities const> const& vxlanCapabilities);

} // namespace VornicCentral
