#include "VornicL3Shared/model/Model.h"

/// What `verify` finds.
namespace ModelTest {
namespace {

struct VerifyWords {
    char const* operation;
    char const* collection;
    char const* function;
    char const* inStatus;
    char const* inConfig;
    char const* inReferences;
    char const* statusesMatch;
};
VerifyWords const& verifyWords(Kind kind) {
    static std::array<VerifyWords, kindCount> const words = {{
        {"verifyRemoteVpIndex", "remoteVport",
         "void VornicCentral::VpIndexAllocator::verifyRemoteVpIndex() const",
         "vpIndexStatus()->remoteVportHas( remoteVtepKey )",
         "vpIndexConfig()->remoteVportHas( remoteVtepKey )",
         "vpReference()->remoteVportHas( remoteVtepKey )",
         "vPort == vpIndexStatus->remoteVport( remoteVtepKey )"},
        {"verifyMlagRemoteVpIndex", "mlagRemoteVport",
         "void VornicCentral::VpIndexAllocator::verifyMlagRemoteVpIndex() const",
         "vpIndexStatus()->mlagRemoteVportHas( remoteVtepKey )",
         "vpIndexConfig()->mlagRemoteVportHas( remoteVtepKey )",
         "vpReference()->mlagRemoteVportHas( remoteVtepKey )",
         "vPort == vpIndexStatus->mlagRemoteVport( remoteVtepKey )"},
        {"verifyEdgeVpIndex", "edgeVport",
         "void VornicCentral::VpIndexAllocator::verifyEdgeVpIndex() const",
         "vpIndexStatus()->edgeVportHas( pvKey )", "vpIndexConfig()->edgeVportHas( pvKey )",
         "vpReference()->edgeVportHas( pvKey )", "vPort == vpIndexStatus->edgeVport( pvKey )"},
        {"verifyVlanVpIndex", "vlanVport",
         "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const",
         "vpIndexStatus()->vlanVportHas( vlan )", "vpIndexConfig()->vlanVportHas( vlan )",
         "vpReference()->vlanVportHas( vlan )", "vPort == vpIndexStatus->vlanVport( vlan )"},
        {"verifyEFilterDisableVpIndex", "eFilterDisableVport",
         "void VornicCentral::VpIndexAllocator::verifyEFilterDisableVpIndex() const",
         "vpIndexStatus()->eFilterDisableVportHas( intf )",
         "vpIndexConfig()->eFilterDisableVportHas( intf )",
         "vpReference()->eFilterDisableVportHas( intf )",
         "vPort == vpIndexStatus->eFilterDisableVport( intf )"},
    }};
    return words.at(static_cast<std::size_t>(kind));
}

char const* const verifyFunction = "void VornicCentral::VpIndexAllocatorDirSm::verify() const";

} // namespace

void Model::verify() {
    trace(1, "verify");
    if (!machine().initialized) {
        return;
    }
    for (auto const& [name, allocator] : machine().allocators) {
        verifyClient(allocator.client);
    }
    check(state_.references.count() + 8 == setBits(),
          "( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()", verifyFunction);
    trace(5, "verify", " verify vp indices match across statuses");
    for (Kind const kind : fixedOrder) {
        state_.references[kind].walk([&](Key key) { verifyReference(kind, key); });
    }
}

void Model::verifyClient(Client client) {
    trace(1, "verify", " ", nameOf(client));
    for (Kind const kind : fixedOrder) {
        verifyClientKind(client, kind);
    }
}

void Model::verifyClientKind(Client client, Kind kind) {
    VerifyWords const& words = verifyWords(kind);
    Status const& status = state_.statuses[client.status];
    trace(1, words.operation, " ", nameOf(client));
    trace(5, words.operation, " verifying vpIndexConfig()->", words.collection);
    for (auto const& [key, present] : state_.configs[client.config].keys[kind]) {
        check(status.vports[kind].has(key), words.inStatus, words.function);
        U32 const index = status.vports[kind].get(key).index;
        check(index >= invalidIndex || isBitSet(index),
              "vpIndexAllocatorDirSm()->vpBitmap()->isBitSet( vpIndex )", words.function);
    }
    trace(5, words.operation, " verifying vpIndexStatus()->", words.collection);
    for (auto const& [key, vPort] : status.vports[kind]) {
        verifyStatusEntry(client, kind, key, vPort);
    }
}

void Model::verifyStatusEntry(Client client, Kind kind, Key key, VPort vPort) {
    VerifyWords const& words = verifyWords(kind);
    check(requested(client, kind, key), words.inConfig, words.function);
    check(state_.references[kind].has(key), words.inReferences, words.function);
    Reference const reference = state_.references[kind].get(key);
    check(reference.has(nameOf(client)), "reference.referenceHas( name() )", words.function);
    check(reference.vPort == vPort, "reference.vPort() == vPort", words.function);
}

void Model::verifyReference(Kind kind, Key key) {
    Reference const reference = state_.references[kind].get(key);
    check(!reference.names.empty(), "reference.references()", verifyFunction);
    VPort vPort = reference.vPort;
    for (std::string const& name : reference.names) {
        RecordId const* const status = state_.statusDir.find(name);
        VPort const held =
            status == nullptr ? VPort() : state_.statuses[*status].vports[kind].get(key);
        if (vPort.index == invalidIndex) {
            vPort = held;
        }
        check(vPort == held, verifyWords(kind).statusesMatch, verifyFunction);
    }
}

} // namespace ModelTest
