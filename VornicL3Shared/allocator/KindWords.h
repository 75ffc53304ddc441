#pragma once

#include "allocator/Messages.h"
#include "allocator/RingKey.h"
#include "qor/Words.h"
#include "vpstate/Kinds.h"

namespace VornicCentral {

/// The words of one kind in traces, messages and assertions, as they appear on the screen. All that
/// tells the kinds apart in the allocation algorithms stands here.
///
/// Names: `handler...` belongs to the keyed handler, `invalid...` to the handler of waiting keys,
/// `recover...`, `skip...` and `deleteStatus` to reconciliation, `recycle...` to the hand-over of
/// an index, `verify...` to the checks.
template <class Kind> struct KindWords;

/// The words that most kinds share.
struct CommonWords {
    static constexpr Qor::Words tag{""};
    static constexpr Qor::Words existing{" existing vport found"};
    static constexpr Qor::Words ringDeletion{" vport deletion for: "};
    static constexpr Qor::Words invalidChanged{" vport addition/modification for: "};
    static constexpr Qor::Words invalidAdded{" vport added : "};
    static constexpr Qor::Words invalidDeleted{" vport deleted : "};
    static constexpr Qor::Words invalidGone{" vport deleted "};
    static constexpr Qor::Words recovered{" recovered vpIndex: "};
    static constexpr Qor::Words bootForRing{" for"};
    static constexpr Qor::Words recycling{" Recycling vpIndex : "};
};

/// The words that the two remote kinds share, and the pieces by which they name a key.
struct RemoteWords : CommonWords {
    static constexpr Qor::Words handler{"handleRemoteVportCommon"};
    static constexpr Qor::Words keyLabel{" vtep: "};
    static constexpr Qor::Words existing{": existing vport found"};
    static constexpr Qor::Words allocating{": allocating vp index for vtep: "};
    static constexpr Qor::Words finalLabel{" remoteVtepKey: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for vtep: "};

    static Netzo::IpGenAddr const& shown(RemoteVtepKey const& key) { return key.address(); }
    static RingFinalKey ringFinal(RemoteVtepKey const& key) { return {key}; }
    static constexpr Qor::Words ringIndex{" vPort: "};
    static RemoteVtepKey const& ringStatusKey(RemoteVtepKey const& key) { return key; }
    static VportText recycleText(RemoteVtepKey const& key) {
        return VportText("vxlan remote vtep: %s", key.tunnelGroup().stringValue().c_str());
    }
};

template <> struct KindWords<RemoteVport> : RemoteWords {
    static constexpr bool indexPreferenceIsCapability = true;
    static constexpr Qor::Words match{" NonMlag Vport Match "};
    static constexpr Qor::Words ringTag{""};
    static VportText fullText(RemoteVtepKey const& key) {
        return VportText("vxlan remote %s vtep: %s", "", key.tunnelGroup().stringValue().c_str());
    }

    static constexpr Qor::Words invalidHandler{"handleInvalidRemoteVport"};
    static constexpr Qor::Words recoveredFor{" for vtep: "};
    static constexpr Qor::Words deleteStatus{" delete status for vtep: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static constexpr char const* recycleAssert =
        "vpIndexConfig-> remoteVportHas( remoteIter.key() )";
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->remoteVport("};

    static constexpr Qor::Words verify{"verifyRemoteVpIndex"};
    static constexpr char const* verifySignature =
        "void VornicCentral::VpIndexAllocator::verifyRemoteVpIndex() const";
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->remoteVport"};
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->remoteVport"};
    static constexpr char const* statusHas = "vpIndexStatus()->remoteVportHas( remoteVtepKey )";
    static constexpr char const* configHas = "vpIndexConfig()->remoteVportHas( remoteVtepKey )";
    static constexpr char const* referenceHas = "vpReference()->remoteVportHas( remoteVtepKey )";
    static constexpr char const* statusesMatch =
        "vPort == vpIndexStatus->remoteVport( remoteVtepKey )";
};

template <> struct KindWords<MlagRemoteVport> : RemoteWords {
    static constexpr bool indexPreferenceIsCapability = false;
    static constexpr Qor::Words tag{" mlag "};
    static constexpr Qor::Words match{" Mlag SameVpType Match "};
    static constexpr Qor::Words ringTag{"mlag "};
    static VportText fullText(RemoteVtepKey const& key) {
        return VportText("vxlan remote %s vtep: %s", " mlag ",
                         key.tunnelGroup().stringValue().c_str());
    }

    static constexpr Qor::Words invalidHandler{"handleInvalidMlagRemoteVport"};
    static constexpr Qor::Words invalidChanged{" mlag vport addition/modification for: "};
    static constexpr Qor::Words invalidAdded{" mlag vport added : "};
    static constexpr Qor::Words invalidDeleted{" mlag vport deleted : "};
    static constexpr Qor::Words invalidGone{" mlag vport deleted "};
    static constexpr Qor::Words recovered{" recovered mlag vpIndex: "};
    static constexpr Qor::Words recoveredFor{" for remote vtep: "};
    static constexpr Qor::Words bootForRing{" for remote"};
    static constexpr Qor::Words deleteStatus{" delete status (mlag) for vtep: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static constexpr char const* recycleAssert =
        "vpIndexConfig-> mlagRemoteVportHas( remoteIter.key() )";
    static constexpr Qor::Words recycling{" Recycling mlag vpIndex : "};
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->mlagRemoteVport("};

    static constexpr Qor::Words verify{"verifyMlagRemoteVpIndex"};
    static constexpr char const* verifySignature =
        "void VornicCentral::VpIndexAllocator::verifyMlagRemoteVpIndex() const";
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->mlagRemoteVport"};
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->mlagRemoteVport"};
    static constexpr char const* statusHas = "vpIndexStatus()->mlagRemoteVportHas( remoteVtepKey )";
    static constexpr char const* configHas = "vpIndexConfig()->mlagRemoteVportHas( remoteVtepKey )";
    static constexpr char const* referenceHas =
        "vpReference()->mlagRemoteVportHas( remoteVtepKey )";
    static constexpr char const* statusesMatch =
        "vPort == vpIndexStatus->mlagRemoteVport( remoteVtepKey )";
};

/// What the three local kinds share: they take the highest index, and show a key as it is.
template <class Key> struct LocalWords : CommonWords {
    static constexpr bool indexPreferenceIsCapability = false;
    static constexpr Qor::Words ringIndex{" vpIndex: "};

    static Key const& shown(Key const& key) { return key; }
    static RingKey<Key> ringFinal(Key const& key) { return {key}; }
    static Key const& ringStatusKey(Key const& key) { return key; }
};

template <> struct KindWords<EdgeVport> : LocalWords<PortVlanKey> {
    static constexpr Qor::Words handler{"handleEdgeVport"};
    static constexpr Qor::Words keyLabel{" pvKey: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for pvKey: "};
    static VportText fullText(PortVlanKey const& key) {
        return VportText("vxlan edge port: %s, vlan: %d", key.intf().stringValue().c_str(),
                         int{key.vlan().value()});
    }

    static constexpr Qor::Words invalidHandler{"handleInvalidEdgeVport"};
    static constexpr Qor::Words recoveredFor{" for edge port: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for edgePort: "};
    static constexpr Qor::Words deleteStatus{" delete status for pvKey: "};
    static constexpr Qor::Words deleteStatusRing{" delete status for"};
    static RingFullKey ringStatusKey(PortVlanKey const& key) { return {key}; }

    static constexpr char const* recycleAssert = "vpIndexConfig-> edgeVportHas( edgeIter.key() )";
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->edgeVport("};
    static VportText recycleText(PortVlanKey const& key) { return fullText(key); }

    static constexpr Qor::Words verify{"verifyEdgeVpIndex"};
    static constexpr char const* verifySignature =
        "void VornicCentral::VpIndexAllocator::verifyEdgeVpIndex() const";
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->edgeVport"};
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->edgeVport"};
    static constexpr char const* statusHas = "vpIndexStatus()->edgeVportHas( pvKey )";
    static constexpr char const* configHas = "vpIndexConfig()->edgeVportHas( pvKey )";
    static constexpr char const* referenceHas = "vpReference()->edgeVportHas( pvKey )";
    static constexpr char const* statusesMatch = "vPort == vpIndexStatus->edgeVport( pvKey )";
};

template <> struct KindWords<VlanVport> : LocalWords<Bridging::VlanId> {
    static constexpr Qor::Words handler{"handleVlanVport"};
    static constexpr Qor::Words keyLabel{" vlan: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for vlan: "};
    static VportText fullText(Bridging::VlanId vlan) {
        return VportText("vxlan vlan %d svp", int{vlan.value()});
    }

    static constexpr Qor::Words invalidHandler{"handleInvalidVlanVport"};
    static constexpr Qor::Words recoveredFor{" for vlan: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for vlan: "};
    static constexpr Qor::Words deleteStatus{" delete status for vlan: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static constexpr char const* recycleAssert = "vpIndexConfig-> vlanVportHas( vlanIter.key() )";
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->vlanVport("};
    static VportText recycleText(Bridging::VlanId vlan) { return fullText(vlan); }

    static constexpr Qor::Words verify{"verifyVlanVpIndex"};
    static constexpr char const* verifySignature =
        "void VornicCentral::VpIndexAllocator::verifyVlanVpIndex() const";
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->vlanVport"};
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->vlanVport"};
    static constexpr char const* statusHas = "vpIndexStatus()->vlanVportHas( vlan )";
    static constexpr char const* configHas = "vpIndexConfig()->vlanVportHas( vlan )";
    static constexpr char const* referenceHas = "vpReference()->vlanVportHas( vlan )";
    static constexpr char const* statusesMatch = "vPort == vpIndexStatus->vlanVport( vlan )";
};

template <> struct KindWords<EFilterDisableVport> : LocalWords<Netzo::IntfId> {
    static constexpr Qor::Words handler{"handleEFilterDisableVport"};
    static constexpr Qor::Words keyLabel{" intf: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for intf: "};
    static constexpr Qor::Words ringDeletion{
        " vport deleteion for: "}; // readers of the ring look for this spelling
    static VportText fullText(Netzo::IntfId const& intf) {
        return VportText("eFilterDisable intf %s svp", intf.stringValue().c_str());
    }

    static constexpr Qor::Words invalidHandler{"handleInvalidEFilterDisableVport"};
    static constexpr Qor::Words recoveredFor{" for intf: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for intf: "};
    static constexpr Qor::Words deleteStatus{" delete status for intf: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static constexpr char const* recycleAssert =
        "vpIndexConfig-> eFilterDisableVportHas( eFDisIter.key() )";
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->eFilterDisableVport("};
    static VportText recycleText(Netzo::IntfId const& intf) {
        return VportText("eFilterDisable intf: %s", intf.stringValue().c_str());
    }

    static constexpr Qor::Words verify{"verifyEFilterDisableVpIndex"};
    static constexpr char const* verifySignature =
        "void VornicCentral::VpIndexAllocator::verifyEFilterDisableVpIndex() const";
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->eFilterDisableVport"};
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->eFilterDisableVport"};
    static constexpr char const* statusHas = "vpIndexStatus()->eFilterDisableVportHas( intf )";
    static constexpr char const* configHas = "vpIndexConfig()->eFilterDisableVportHas( intf )";
    static constexpr char const* referenceHas = "vpReference()->eFilterDisableVportHas( intf )";
    static constexpr char const* statusesMatch =
        "vPort == vpIndexStatus->eFilterDisableVport( intf )";
};

} // namespace VornicCentral
