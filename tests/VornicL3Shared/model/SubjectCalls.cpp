#include "VornicL3Shared/model/Subject.h"

/// The calls of the library's operations by their own names.
namespace ModelTest {
namespace {

using VornicCentral::VpIndexAllocator;
using VornicCentral::VpIndexAllocatorDirSm;

void handleInvalid(VpIndexAllocatorDirSm& sm, Kind kind, Key key, LibraryKeys const& keys) {
    switch (kind) {
    case Kind::remote:
        return sm.handleInvalidRemoteVport(keys.get<VornicCentral::RemoteVport>(key));
    case Kind::mlag:
        return sm.handleInvalidMlagRemoteVport(keys.get<VornicCentral::MlagRemoteVport>(key));
    case Kind::edge:
        return sm.handleInvalidEdgeVport(keys.get<VornicCentral::EdgeVport>(key));
    case Kind::vlan:
        return sm.handleInvalidVlanVport(keys.get<VornicCentral::VlanVport>(key));
    case Kind::efilter:
        return sm.handleInvalidEFilterDisableVport(
            keys.get<VornicCentral::EFilterDisableVport>(key));
    }
}

void handleInvalidAll(VpIndexAllocatorDirSm& sm, Kind kind) {
    switch (kind) {
    case Kind::remote:
        return sm.handleInvalidRemoteVport();
    case Kind::mlag:
        return sm.handleInvalidMlagRemoteVport();
    case Kind::edge:
        return sm.handleInvalidEdgeVport();
    case Kind::vlan:
        return sm.handleInvalidVlanVport();
    case Kind::efilter:
        return sm.handleInvalidEFilterDisableVport();
    }
}

void handleKey(VpIndexAllocator& allocator, Kind kind, Key key, LibraryKeys const& keys) {
    switch (kind) {
    case Kind::remote:
        return allocator.handleRemoteVport(keys.get<VornicCentral::RemoteVport>(key));
    case Kind::mlag:
        return allocator.handleMlagRemoteVport(keys.get<VornicCentral::MlagRemoteVport>(key));
    case Kind::edge:
        return allocator.handleEdgeVport(keys.get<VornicCentral::EdgeVport>(key));
    case Kind::vlan:
        return allocator.handleVlanVport(keys.get<VornicCentral::VlanVport>(key));
    case Kind::efilter:
        return allocator.handleEFilterDisableVport(
            keys.get<VornicCentral::EFilterDisableVport>(key));
    }
}

void sweep(VpIndexAllocator& allocator, Kind kind) {
    switch (kind) {
    case Kind::remote:
        return allocator.handleRemoteVport();
    case Kind::mlag:
        return allocator.handleMlagRemoteVport();
    case Kind::edge:
        return allocator.handleEdgeVport();
    case Kind::vlan:
        return allocator.handleVlanVport();
    case Kind::efilter:
        return allocator.handleEFilterDisableVport();
    }
}

void verifyKind(VpIndexAllocator const& allocator, Kind kind) {
    switch (kind) {
    case Kind::remote:
        return allocator.verifyRemoteVpIndex();
    case Kind::mlag:
        return allocator.verifyMlagRemoteVpIndex();
    case Kind::edge:
        return allocator.verifyEdgeVpIndex();
    case Kind::vlan:
        return allocator.verifyVlanVpIndex();
    case Kind::efilter:
        return allocator.verifyEFilterDisableVpIndex();
    }
}

} // namespace

std::string Subject::poolCall(Operation const& operation) {
    VpIndexAllocatorDirSm& sm = *world_.sm;
    switch (operation.verb) {
    case Verb::allocIndex:
        return std::to_string(sm.allocVpIndex(operation.flag));
    case Verb::freeIndex:
        sm.freeVpIndex(operation.number);
        return "";
    case Verb::setIndex:
        sm.setVpBitmap(operation.number);
        return "";
    case Verb::defaultVp:
        return sm.isDefaultVp(operation.number) ? "true" : "false";
    case Verb::recycle:
        sm.recycleOrFreeVpIndex(operation.number);
        return "";
    default: {
        using Bask::HBitmap;
        auto const state = operation.flag ? HBitmap::BitState::set : HBitmap::BitState::clear;
        return std::to_string(
            sm.vpBitmapIs(operation.number, operation.size, state)->numBitsInSetState());
    }
    }
}

std::string Subject::call(Operation const& operation) {
    VpIndexAllocatorDirSm& sm = *world_.sm;
    switch (operation.verb) {
    case Verb::handleConfig:
        sm.handleVpIndexConfig(nameOf(operation));
        return "";
    case Verb::handleConfigs:
        sm.handleVpIndexConfig();
        return "";
    case Verb::handleInvalid:
        handleInvalid(sm, operation.kind, operation.key, keys_);
        return "";
    case Verb::handleInvalidAll:
        handleInvalidAll(sm, operation.kind);
        return "";
    case Verb::rebuild:
        sm.vpBitmapDel();
        sm.handleInitialized();
        return "";
    case Verb::initializeAgain:
        sm.handleInitialized();
        return "";
    case Verb::reconcile:
        sm.reconcile();
        return "";
    case Verb::clearStale:
        sm.clearStaleEntries();
        return "";
    case Verb::allocatorIs:
        return callAllocatorIs(operation);
    default:
        return poolCall(operation);
    }
}

std::string Subject::callAllocatorIs(Operation const& operation) {
    Variant const variant = operation.variant;
    auto const none = [&](Variant without) { return variant == without; };
    bool const others = variant == Variant::statusOfOther;
    auto const status =
        world_.statusDir->vpIndexStatus(Pelo::String(others ? operation.other : operation.client));
    auto const allocator = world_.sm->vpIndexAllocatorIs(
        none(Variant::withoutStateMachine) ? nullptr : world_.sm.get(),
        none(Variant::withoutConfig) ? nullptr : ownConfigs_.at(operation.client),
        none(Variant::withoutStatus) ? nullptr : status,
        none(Variant::withoutReferences) ? nullptr : world_.references,
        world_.sm->vfiForwarding() != (variant == Variant::otherSwitch));
    return std::string(allocator->name().view());
}

std::string Subject::callClient(Operation const& operation) {
    VpIndexAllocator& client = allocator(operation);
    switch (operation.verb) {
    case Verb::clientKeyed:
        handleKey(client, operation.kind, operation.key, keys_);
        return "";
    case Verb::clientSweep:
        sweep(client, operation.kind);
        return "";
    case Verb::clientInitialize:
        client.handleInitialized();
        return "";
    case Verb::clientVerify:
        client.verify();
        return "";
    case Verb::clientVerifyKind:
        verifyKind(client, operation.kind);
        return "";
    case Verb::clientAllocStats:
        client.verifyAndUpdateAllocStats(static_cast<U16>(operation.number));
        return "";
    case Verb::clientFreeStats:
        client.updateFreeStats(static_cast<U16>(operation.number));
        return "";
    default:
        return callRemoteHelper(operation);
    }
}

std::string Subject::callRemoteHelper(Operation const& operation) {
    VpIndexAllocator& client = allocator(operation);
    auto const& key = keys_.get<VornicCentral::RemoteVport>(operation.key);
    bool const mlag = operation.flag;
    switch (operation.verb) {
    case Verb::clientRemoteRef:
        return referenceText(client.getRemoteVportRef(key, mlag));
    case Verb::clientRemoteCommon:
        client.handleRemoteVportCommon(key, mlag);
        return "";
    case Verb::clientRemoteReferenced:
        return client.remoteVportInVpReference(key, mlag) ? "true" : "false";
    case Verb::clientRemoteRequested:
        return client.remoteVportInVpIndexConfig(key, mlag) ? "true" : "false";
    case Verb::clientRemoteIndex:
        return std::to_string(client.getRemoteVportVpIndex(key, mlag));
    case Verb::clientRemoteToStatus:
        client.addRemoteVportToStatus(
            key, VornicCentral::VirtualPort(static_cast<U16>(operation.number)), mlag);
        return "";
    case Verb::clientRemoteToReference:
        client.addRemoteVportToVpRef(key, libraryReference(operation), mlag);
        return "";
    case Verb::clientRemoteFromReference:
        client.delRemoteVportFromVpRef(key, mlag);
        return "";
    default:
        client.delRemoteVportFromVpIndexStatus(key, mlag);
        return "";
    }
}

} // namespace ModelTest
