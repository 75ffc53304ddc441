// From a requested key to an index, and back: the algorithm of all kinds, and the reactor that runs
// it.

#include "VornicL3Shared/VpIndexAllocator.h"
#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "allocator/KindWords.h"
#include "allocator/Trace.h"
#include "pelo/NoThrow.h"
#include "qor/Exceptions.h"

#include <type_traits>

namespace VornicCentral {
namespace {

template <class Kind> constexpr bool isRemote = std::is_same_v<typename Kind::Key, RemoteVtepKey>;

} // namespace

/// Whoever watches the records may drop the allocator meanwhile; it stays until the handler is
/// done, as the state machine does.
template <class Kind> void VpIndexAllocator::handleKey(typename Kind::Key const& key) {
    Pelo::Ptr<VpIndexAllocator> const self(this);
    vpIndexAllocatorDirSm_->inTurn([&] { handleKeyInTurn<Kind>(key); });
}

template <class Kind> void VpIndexAllocator::handleKeyInTurn(typename Kind::Key const& key) {
    using Words = KindWords<Kind>;
    VP_TRACE_TWIN(entryLevel, Words::handler, (Words::tag, Words::keyLabel, Words::shown(key)),
                  (Words::tag, RingKey{key}));
    if (!vpIndexStatus_ || !vpReference_) {
        Qor::throwMutatorArgNullPointerException(Words::handler.data(),
                                                 vpIndexStatus_ ? "vpReference" : "vpIndexStatus");
    }
    bool held = false;
    VpReference reference = readReference<Kind>(key, held);
    if (vpIndexConfig_ && vpIndexConfig_->has<Kind>(key)) {
        add<Kind>(key, reference, held);
    } else {
        withdraw<Kind>(key, reference);
    }
}

/// Whoever holds the key, this client perhaps, shares its index, the invalid one too; a key that
/// nobody holds gets an index from the pool.
template <class Kind>
void VpIndexAllocator::add(typename Kind::Key const& key, VpReference& reference, bool held) {
    using Words = KindWords<Kind>;
    VP_TRACE(stepLevel, Words::handler, Words::tag, " vport addition for: ", name());
    VirtualPort vPort;
    if (held) {
        VP_TRACE(stepLevel, Words::handler, Words::tag, Words::existing);
        vPort = reference.vPort();
    } else {
        VP_TRACE(stepLevel, Words::handler, Words::tag, Words::allocating, Words::shown(key));
        vPort = allocate<Kind>(key);
        reference.vPortIs(vPort);
    }
    VP_TRACE_TWIN(stepLevel, Words::handler, (Words::finalLabel, key, " vPort: ", vPort),
                  (Words::ringFinal(key), Words::ringIndex, vPort.vpIndex()));
    reference.referenceIs(name(), true);
    try {
        writeStatus<Kind>(key, vPort);
        vpReference_->is<Kind>(key, reference); // last: it wakes the state machine
    } catch (...) {
        if (!held) {
            takeBack<Kind>(key, vPort);
        }
        throw;
    }
}

/// Undoes an allocation that could not be recorded, so that no index is in use without a reference.
template <class Kind>
void VpIndexAllocator::takeBack(typename Kind::Key const& key, VirtualPort vPort) {
    if (vpIndexStatus_->get<Kind>(key) == vPort) {
        vpIndexStatus_->del<Kind>(key);
    }
    vpIndexAllocatorDirSm_->freeVpIndex(vPort.vpIndex());
}

/// A new index, or the invalid virtual port when the table is full. A remote VTEP follows the
/// chip's capability; the other kinds take the highest index, so that kinds asking from opposite
/// ends do not mix.
template <class Kind> VirtualPort VpIndexAllocator::allocate(typename Kind::Key const& key) {
    using Words = KindWords<Kind>;
    bool indexPreferenceHigh = true;
    if constexpr (Words::indexPreferenceIsCapability) {
        auto const& capabilities = vpIndexAllocatorDirSm_->vxlanCapabilities();
        indexPreferenceHigh = !capabilities || !capabilities->remoteVportLowIndex();
    }
    U16 const vpIndex = vpIndexAllocatorDirSm_->allocVpIndex(indexPreferenceHigh);
    verifyAndUpdateAllocStats(vpIndex);
    if (vpIndex == invalidVpIndex) {
        Qor::log(resourceFullLog(), Words::fullText(key).text());
    } else {
        VP_TRACE(stepLevel, Words::handler, " allocated vpIndex: ", vpIndex);
    }
    return VirtualPort(vpIndex);
}

template <class Kind>
void VpIndexAllocator::withdraw(typename Kind::Key const& key, VpReference& reference) {
    using Words = KindWords<Kind>;
    VP_TRACE_TWIN(stepLevel, Words::handler, (Words::tag, " vport deletion for: ", name()),
                  (Words::tag, Words::ringDeletion, name()));
    U16 const vpIndex = vpIndexStatus_->get<Kind>(key).vpIndex();
    reference.referenceDel(name());
    if (reference.references()) {
        vpReference_->is<Kind>(key, reference);
    } else {
        release<Kind>(key, vpIndex);
    }
    vpIndexStatus_->del<Kind>(key);
    updateFreeStats(vpIndex);
}

/// The last user is gone: the reference goes, and its index to a waiting key or back to the pool.
template <class Kind> void VpIndexAllocator::release(typename Kind::Key const& key, U16 vpIndex) {
    using Words = KindWords<Kind>;
    VP_TRACE(stepLevel, Words::handler, " freeing vpIndex: ", vpIndex);
    vpReference_->del<Kind>(key);
    if (vpIndexAllocatorDirSm_->vpReallocationEnabled()) {
        vpIndexAllocatorDirSm_->recycleOrFreeVpIndex(vpIndex);
    } else {
        vpIndexAllocatorDirSm_->freeVpIndex(vpIndex);
    }
}

/// A copy of the key's reference, or an empty one; `held` says which. For the remote kinds it
/// leaves a trace.
template <class Kind>
VpReference VpIndexAllocator::readReference(typename Kind::Key const& key,
                                            [[maybe_unused]] bool& held) const {
    VpReference const* const found = vpReference_->find<Kind>(key);
    held = found != nullptr;
    VpReference reference = held ? *found : VpReference();
    if constexpr (isRemote<Kind>) {
        static constexpr bool mlag = std::is_same_v<Kind, MlagRemoteVport>;
        std::string_view const match = held ? KindWords<Kind>::match.view() : " No Match ";
        VP_TRACE(stepLevel,
                 "VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
                 "const VornicCentral::RemoteVtepKey&, bool) const",
                 " : remoteVtep : ", key, ", mlag = ", mlag,
                 ", vpIndex = ", reference.vPort().vpIndex(), " -- ", match);
    }
    return reference;
}

template <class Kind>
void VpIndexAllocator::writeStatus(typename Kind::Key const& key, VirtualPort const& vPort) {
    if constexpr (isRemote<Kind>) {
        VP_RING(stepLevel, "addRemoteVportToStatus", KindWords<Kind>::ringTag, key.address(),
                " vPort: ", vPort.vpIndex());
    }
    vpIndexStatus_->is<Kind>(key, vPort);
}

/// One key of a kind; the remote kinds have a trace of their own.
template <class Kind> void VpIndexAllocator::handleOne(typename Kind::Key const& key) {
    if constexpr (std::is_same_v<Kind, RemoteVport>) {
        handleRemoteVport(key);
    } else if constexpr (std::is_same_v<Kind, MlagRemoteVport>) {
        handleMlagRemoteVport(key);
    } else {
        handleKey<Kind>(key);
    }
}

template <class Kind> void VpIndexAllocator::handleAll() {
    VP_TRACE(entryLevel, KindWords<Kind>::sweep);
    if (!vpIndexConfig_) {
        return;
    }
    Pelo::Ptr<VpIndexAllocatorDirSm> const stateMachine(vpIndexAllocatorDirSm_);
    Pelo::Ptr<VpIndexAllocator> const self(this);
    for (typename VpIndexConfig::Collection<Kind>::Iterator it(vpIndexConfig_->collection<Kind>());
         it; it.advance()) {
        handleOne<Kind>(typename Kind::Key(it.key())); // a copy: the handler may delete the member
    }
}

void VpIndexAllocator::handleAllKinds() {
    forEachKind([&](auto kind) { handleAll<decltype(kind)>(); });
}

void VpIndexAllocator::handleRemoteVport(RemoteVtepKey const& key) {
    VP_TRACE(entryLevel, "handleRemoteVport", " Vtep: ", key);
    handleRemoteVportCommon(key, false);
}

void VpIndexAllocator::handleMlagRemoteVport(RemoteVtepKey const& key) {
    VP_TRACE(entryLevel, "handleMlagRemoteVport", " mlagVtep: ", key);
    handleRemoteVportCommon(key, true);
}

void VpIndexAllocator::handleRemoteVportCommon(RemoteVtepKey const& key, bool mlag) {
    mlag ? handleKey<MlagRemoteVport>(key) : handleKey<RemoteVport>(key);
}

void VpIndexAllocator::handleEdgeVport(PortVlanKey const& pvKey) { handleKey<EdgeVport>(pvKey); }
void VpIndexAllocator::handleVlanVport(Bridging::VlanId vlan) { handleKey<VlanVport>(vlan); }
void VpIndexAllocator::handleEFilterDisableVport(Netzo::IntfId intf) {
    handleKey<EFilterDisableVport>(intf);
}

void VpIndexAllocator::handleRemoteVport() { handleAll<RemoteVport>(); }
void VpIndexAllocator::handleMlagRemoteVport() { handleAll<MlagRemoteVport>(); }
void VpIndexAllocator::handleEdgeVport() { handleAll<EdgeVport>(); }
void VpIndexAllocator::handleVlanVport() { handleAll<VlanVport>(); }
void VpIndexAllocator::handleEFilterDisableVport() { handleAll<EFilterDisableVport>(); }

void VpIndexAllocator::vpIndexConfigDispatch(Pelo::Publisher*, Pelo::Subscriber* subscriber,
                                             Pelo::FieldId field, void const* key,
                                             void const*) noexcept {
    auto& self = subscriber->owner<VpIndexAllocator>();
    if (self.isZombie()) {
        return;
    }
    Pelo::runNoThrow([&] {
        forEachKind([&](auto kind) {
            using Kind = decltype(kind);
            if (field == Kind::field) { // of one kind only: `self` may go, and is not used again
                self.react<Kind>(*static_cast<typename Kind::Key const*>(key));
            }
        });
    });
}

/// Handles a changed key, or leaves it until the running handler is done.
template <class Kind> void VpIndexAllocator::react(typename Kind::Key const& key) {
    if (!vpIndexAllocatorDirSm_->handlerTurns_.running()) {
        handleOne<Kind>(key);
        return;
    }
    Pelo::Ptr<VpIndexAllocator> const self(this);
    vpIndexAllocatorDirSm_->handlerTurns_.leave(this, [self, key] {
        if (!self->isZombie()) {
            self->handleOne<Kind>(key);
        }
    });
}

VpReference VpIndexAllocator::getRemoteVportRef(RemoteVtepKey const& key, bool mlag) const {
    bool held = false;
    return mlag ? readReference<MlagRemoteVport>(key, held) : readReference<RemoteVport>(key, held);
}

void VpIndexAllocator::addRemoteVportToStatus(RemoteVtepKey const& key, VirtualPort const& vPort,
                                              bool mlag) {
    mlag ? writeStatus<MlagRemoteVport>(key, vPort) : writeStatus<RemoteVport>(key, vPort);
}

} // namespace VornicCentral
