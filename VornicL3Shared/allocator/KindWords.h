#pragma once

#include "allocator/Messages.h"
#include "allocator/RingKey.h"
#include "qor/Words.h"
#include "vpstate/Kinds.h"

namespace VornicCentral {

/// The words of one kind in traces, messages and assertions, as they appear on the screen. All that
/// tells the kinds apart in the allocation algorithms stands here.
///
/// Names: `sweep` and `handler...` belong to the keyed handler, `invalid...` to the handler of
/// waiting keys, `recover...`, `skip...` and `deleteStatus` to reconciliation, `recycle...` to the
/// hand-over of an index, `verify...` to the checks.
template <class Kind> struct KindWords;

/// The words that are made of a kind's names, for edge ports these, in this order:
///
///     handleEdgeVport
///     handleInvalidEdgeVport
///     vpIndexConfig-> edgeVportHas( edgeIter.key() )
///     )->vpIndexStatus()->edgeVport(
///     verifyEdgeVpIndex
///     void VornicCentral::VpIndexAllocator::verifyEdgeVpIndex() const
///      verifying vpIndexConfig()->edgeVport
///      verifying vpIndexStatus()->edgeVport
///     vpIndexStatus()->edgeVportHas( pvKey )
///     vpIndexConfig()->edgeVportHas( pvKey )
///     vpReference()->edgeVportHas( pvKey )
///     vPort == vpIndexStatus->edgeVport( pvKey )
#define VP_WORDS_OF_NAMES(title, collection, key, iterator)                                        \
    static constexpr Qor::Words sweep{"handle" #title "Vport"};                                    \
    static constexpr Qor::Words invalidHandler{"handleInvalid" #title "Vport"};                    \
    static constexpr char const* recycleAssert =                                                   \
        "vpIndexConfig-> " #collection "Has( " #iterator ".key() )";                               \
    static constexpr Qor::Words recycleStatus{")->vpIndexStatus()->" #collection "("};             \
    static constexpr Qor::Words verify{"verify" #title "VpIndex"};                                 \
    static constexpr char const* verifySignature =                                                 \
        "void VornicCentral::VpIndexAllocator::verify" #title "VpIndex() const";                   \
    static constexpr Qor::Words verifyConfig{" verifying vpIndexConfig()->" #collection};          \
    static constexpr Qor::Words verifyStatus{" verifying vpIndexStatus()->" #collection};          \
    static constexpr char const* statusHas = "vpIndexStatus()->" #collection "Has( " #key " )";    \
    static constexpr char const* configHas = "vpIndexConfig()->" #collection "Has( " #key " )";    \
    static constexpr char const* referenceHas = "vpReference()->" #collection "Has( " #key " )";   \
    static constexpr char const* statusesMatch =                                                   \
        "vPort == vpIndexStatus->" #collection "( " #key " )";

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
        return VportText("vxlan remote vtep: ", key.tunnelGroup().stringValue());
    }
};

template <> struct KindWords<RemoteVport> : RemoteWords {
    VP_WORDS_OF_NAMES(Remote, remoteVport, remoteVtepKey, remoteIter)
    static constexpr bool indexPreferenceIsCapability = true;
    static constexpr Qor::Words match{" NonMlag Vport Match "};
    static constexpr Qor::Words ringTag{""};
    static VportText fullText(RemoteVtepKey const& key) {
        return VportText("vxlan remote  vtep: ", key.tunnelGroup().stringValue());
    }

    static constexpr Qor::Words recoveredFor{" for vtep: "};
    static constexpr Qor::Words deleteStatus{" delete status for vtep: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;
};

template <> struct KindWords<MlagRemoteVport> : RemoteWords {
    VP_WORDS_OF_NAMES(MlagRemote, mlagRemoteVport, remoteVtepKey, remoteIter)
    static constexpr bool indexPreferenceIsCapability = false;
    static constexpr Qor::Words tag{" mlag "};
    static constexpr Qor::Words match{" Mlag SameVpType Match "};
    static constexpr Qor::Words ringTag{"mlag "};
    static VportText fullText(RemoteVtepKey const& key) {
        return VportText("vxlan remote  mlag  vtep: ", key.tunnelGroup().stringValue());
    }

    static constexpr Qor::Words invalidChanged{" mlag vport addition/modification for: "};
    static constexpr Qor::Words invalidAdded{" mlag vport added : "};
    static constexpr Qor::Words invalidDeleted{" mlag vport deleted : "};
    static constexpr Qor::Words invalidGone{" mlag vport deleted "};
    static constexpr Qor::Words recovered{" recovered mlag vpIndex: "};
    static constexpr Qor::Words recoveredFor{" for remote vtep: "};
    static constexpr Qor::Words bootForRing{" for remote"};
    static constexpr Qor::Words deleteStatus{" delete status (mlag) for vtep: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static constexpr Qor::Words recycling{" Recycling mlag vpIndex : "};
};

/// What the local kinds share: they take the highest index, and show a key as it is.
template <class Key> struct LocalWords : CommonWords {
    static constexpr bool indexPreferenceIsCapability = false;
    static constexpr Qor::Words ringIndex{" vpIndex: "};

    static Key const& shown(Key const& key) { return key; }
    static RingKey<Key> ringFinal(Key const& key) { return {key}; }
    static Key const& ringStatusKey(Key const& key) { return key; }
};

template <> struct KindWords<EdgeVport> : LocalWords<PortVlanKey> {
    VP_WORDS_OF_NAMES(Edge, edgeVport, pvKey, edgeIter)
    static constexpr Qor::Words handler{"handleEdgeVport"};
    static constexpr Qor::Words keyLabel{" pvKey: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for pvKey: "};
    static VportText fullText(PortVlanKey const& key) {
        return VportText("vxlan edge port: ", key.intf().name(), ", vlan: ", key.vlan().value());
    }

    static constexpr Qor::Words recoveredFor{" for edge port: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for edgePort: "};
    static constexpr Qor::Words deleteStatus{" delete status for pvKey: "};
    static constexpr Qor::Words deleteStatusRing{" delete status for"};
    static RingFullKey ringStatusKey(PortVlanKey const& key) { return {key}; }

    static VportText recycleText(PortVlanKey const& key) { return fullText(key); }
};

template <> struct KindWords<VlanVport> : LocalWords<Bridging::VlanId> {
    VP_WORDS_OF_NAMES(Vlan, vlanVport, vlan, vlanIter)
    static constexpr Qor::Words handler{"handleVlanVport"};
    static constexpr Qor::Words keyLabel{" vlan: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for vlan: "};
    static VportText fullText(Bridging::VlanId vlan) {
        return VportText("vxlan vlan ", vlan.value(), " svp");
    }

    static constexpr Qor::Words recoveredFor{" for vlan: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for vlan: "};
    static constexpr Qor::Words deleteStatus{" delete status for vlan: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;

    static VportText recycleText(Bridging::VlanId vlan) { return fullText(vlan); }
};

/// What the kinds share whose key is an interface.
struct InterfaceWords : LocalWords<Netzo::IntfId> {
    static constexpr Qor::Words keyLabel{" intf: "};
    static constexpr Qor::Words finalLabel = keyLabel;
    static constexpr Qor::Words allocating{" allocating vp index for intf: "};
    static constexpr Qor::Words recoveredFor{" for intf: "};
    static constexpr Qor::Words skipFor{" skipping reconcile for intf: "};
    static constexpr Qor::Words deleteStatus{" delete status for intf: "};
    static constexpr Qor::Words deleteStatusRing = deleteStatus;
};

template <> struct KindWords<EFilterDisableVport> : InterfaceWords {
    VP_WORDS_OF_NAMES(EFilterDisable, eFilterDisableVport, intf, eFDisIter)
    static constexpr Qor::Words handler{"handleEFilterDisableVport"};
    static constexpr Qor::Words ringDeletion{
        " vport deleteion for: "}; // readers of the ring look for this spelling
    static VportText fullText(Netzo::IntfId const& intf) {
        return VportText("eFilterDisable intf ", intf.name(), " svp");
    }

    static VportText recycleText(Netzo::IntfId const& intf) {
        return VportText("eFilterDisable intf: ", intf.name());
    }
};

#undef VP_WORDS_OF_NAMES

} // namespace VornicCentral
