#pragma once

#include "vpstate/Kinds.h"

namespace Test {

/// What is said about key 1 of each kind when the client "bgp" requests or withdraws it: whole
/// lines with their levels, `#` in the place of an index. A line that a kind does not have is
/// empty. `ring...` is the ring-buffer record where it is worded differently.
template <class Kind> struct KeyedTraceWords;

template <> struct KeyedTraceWords<VornicCentral::RemoteVport> {
    static constexpr char const* sweep = "1 handleRemoteVport";
    static constexpr char const* vtep = "1 handleRemoteVport Vtep: 10.0.0.1@1001";
    static constexpr char const* entry = "1 handleRemoteVportCommon vtep: 10.0.0.1";
    static constexpr char const* ringEntry = entry;
    static constexpr char const* lookup =
        "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
        "const VornicCentral::RemoteVtepKey&, bool) const"
        " : remoteVtep : 10.0.0.1@1001, mlag = false, vpIndex = # --  NonMlag Vport Match ";
    static constexpr char const* failedLookup =
        "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
        "const VornicCentral::RemoteVtepKey&, bool) const"
        " : remoteVtep : 10.0.0.1@1001, mlag = false, vpIndex = 65535 --  No Match ";
    static constexpr char const* addition = "5 handleRemoteVportCommon vport addition for: bgp";
    static constexpr char const* existing = "5 handleRemoteVportCommon: existing vport found";
    static constexpr char const* allocating =
        "5 handleRemoteVportCommon: allocating vp index for vtep: 10.0.0.1";
    static constexpr char const* allocated = "5 handleRemoteVportCommon allocated vpIndex: #";
    static constexpr char const* settled =
        "5 handleRemoteVportCommon remoteVtepKey: 10.0.0.1@1001 vPort: #";
    static constexpr char const* ringSettled = settled;
    static constexpr char const* ringStatus = "5 addRemoteVportToStatus10.0.0.1 vPort: #";
    static constexpr char const* deletion = "5 handleRemoteVportCommon vport deletion for: bgp";
    static constexpr char const* ringDeletion = deletion;
    static constexpr char const* freeing = "5 handleRemoteVportCommon freeing vpIndex: #";

    static constexpr char const* reference = "1 handleInvalidRemoteVport vtep: 10.0.0.1";
    static constexpr char const* ringReference = reference;
    static constexpr char const* changed =
        "5 handleInvalidRemoteVport vport addition/modification for: #";
    static constexpr char const* waits = "5 handleInvalidRemoteVport vport added : #";
    static constexpr char const* settles = "5 handleInvalidRemoteVport vport deleted : #";
    static constexpr char const* gone = "5 handleInvalidRemoteVport vport deleted ";
};

template <> struct KeyedTraceWords<VornicCentral::MlagRemoteVport> {
    static constexpr char const* sweep = "1 handleMlagRemoteVport";
    static constexpr char const* vtep = "1 handleMlagRemoteVport mlagVtep: 10.0.0.1@1001";
    static constexpr char const* entry = "1 handleRemoteVportCommon mlag  vtep: 10.0.0.1";
    static constexpr char const* ringEntry = entry;
    static constexpr char const* lookup =
        "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
        "const VornicCentral::RemoteVtepKey&, bool) const"
        " : remoteVtep : 10.0.0.1@1001, mlag = true, vpIndex = # --  Mlag SameVpType Match ";
    static constexpr char const* failedLookup =
        "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
        "const VornicCentral::RemoteVtepKey&, bool) const"
        " : remoteVtep : 10.0.0.1@1001, mlag = true, vpIndex = 65535 --  No Match ";
    static constexpr char const* addition =
        "5 handleRemoteVportCommon mlag  vport addition for: bgp";
    static constexpr char const* existing = "5 handleRemoteVportCommon mlag : existing vport found";
    static constexpr char const* allocating =
        "5 handleRemoteVportCommon mlag : allocating vp index for vtep: 10.0.0.1";
    static constexpr char const* allocated = "5 handleRemoteVportCommon allocated vpIndex: #";
    static constexpr char const* settled =
        "5 handleRemoteVportCommon remoteVtepKey: 10.0.0.1@1001 vPort: #";
    static constexpr char const* ringSettled = settled;
    static constexpr char const* ringStatus = "5 addRemoteVportToStatusmlag 10.0.0.1 vPort: #";
    static constexpr char const* deletion =
        "5 handleRemoteVportCommon mlag  vport deletion for: bgp";
    static constexpr char const* ringDeletion = deletion;
    static constexpr char const* freeing = "5 handleRemoteVportCommon freeing vpIndex: #";

    static constexpr char const* reference = "1 handleInvalidMlagRemoteVport vtep: 10.0.0.1";
    static constexpr char const* ringReference = reference;
    static constexpr char const* changed =
        "5 handleInvalidMlagRemoteVport mlag vport addition/modification for: #";
    static constexpr char const* waits = "5 handleInvalidMlagRemoteVport mlag vport added : #";
    static constexpr char const* settles = "5 handleInvalidMlagRemoteVport mlag vport deleted : #";
    static constexpr char const* gone = "5 handleInvalidMlagRemoteVport mlag vport deleted ";
};

/// The lines that only the remote kinds have.
struct NoRemoteWords {
    static constexpr char const* vtep = "";
    static constexpr char const* lookup = "";
    static constexpr char const* failedLookup = "";
    static constexpr char const* ringStatus = "";
};

template <> struct KeyedTraceWords<VornicCentral::EdgeVport> : NoRemoteWords {
    static constexpr char const* sweep = "1 handleEdgeVport";
    static constexpr char const* entry = "1 handleEdgeVport pvKey: Ethernet1/1:100";
    static constexpr char const* ringEntry = "1 handleEdgeVport port: Et1/1 vlan: 100";
    static constexpr char const* addition = "5 handleEdgeVport vport addition for: bgp";
    static constexpr char const* existing = "5 handleEdgeVport existing vport found";
    static constexpr char const* allocating =
        "5 handleEdgeVport allocating vp index for pvKey: Ethernet1/1:100";
    static constexpr char const* allocated = "5 handleEdgeVport allocated vpIndex: #";
    static constexpr char const* settled = "5 handleEdgeVport pvKey: Ethernet1/1:100 vPort: #";
    static constexpr char const* ringSettled = "5 handleEdgeVport port: Et1/1 vlan: 100 vpIndex: #";
    static constexpr char const* deletion = "5 handleEdgeVport vport deletion for: bgp";
    static constexpr char const* ringDeletion = deletion;
    static constexpr char const* freeing = "5 handleEdgeVport freeing vpIndex: #";

    static constexpr char const* reference = "1 handleInvalidEdgeVport pvKey: Ethernet1/1:100";
    static constexpr char const* ringReference = "1 handleInvalidEdgeVport port: Et1/1 vlan: 100";
    static constexpr char const* changed =
        "5 handleInvalidEdgeVport vport addition/modification for: #";
    static constexpr char const* waits = "5 handleInvalidEdgeVport vport added : #";
    static constexpr char const* settles = "5 handleInvalidEdgeVport vport deleted : #";
    static constexpr char const* gone = "5 handleInvalidEdgeVport vport deleted ";
};

template <> struct KeyedTraceWords<VornicCentral::VlanVport> : NoRemoteWords {
    static constexpr char const* sweep = "1 handleVlanVport";
    static constexpr char const* entry = "1 handleVlanVport vlan: 101";
    static constexpr char const* ringEntry = entry;
    static constexpr char const* addition = "5 handleVlanVport vport addition for: bgp";
    static constexpr char const* existing = "5 handleVlanVport existing vport found";
    static constexpr char const* allocating = "5 handleVlanVport allocating vp index for vlan: 101";
    static constexpr char const* allocated = "5 handleVlanVport allocated vpIndex: #";
    static constexpr char const* settled = "5 handleVlanVport vlan: 101 vPort: #";
    static constexpr char const* ringSettled = "5 handleVlanVport vlan: 101 vpIndex: #";
    static constexpr char const* deletion = "5 handleVlanVport vport deletion for: bgp";
    static constexpr char const* ringDeletion = deletion;
    static constexpr char const* freeing = "5 handleVlanVport freeing vpIndex: #";

    static constexpr char const* reference = "1 handleInvalidVlanVport vlan: 101";
    static constexpr char const* ringReference = reference;
    static constexpr char const* changed =
        "5 handleInvalidVlanVport vport addition/modification for: #";
    static constexpr char const* waits = "5 handleInvalidVlanVport vport added : #";
    static constexpr char const* settles = "5 handleInvalidVlanVport vport deleted : #";
    static constexpr char const* gone = "5 handleInvalidVlanVport vport deleted ";
};

template <> struct KeyedTraceWords<VornicCentral::EFilterDisableVport> : NoRemoteWords {
    static constexpr char const* sweep = "1 handleEFilterDisableVport";
    static constexpr char const* entry = "1 handleEFilterDisableVport intf: Ethernet2/1";
    static constexpr char const* ringEntry = "1 handleEFilterDisableVport intf: Et2/1";
    static constexpr char const* addition = "5 handleEFilterDisableVport vport addition for: bgp";
    static constexpr char const* existing = "5 handleEFilterDisableVport existing vport found";
    static constexpr char const* allocating =
        "5 handleEFilterDisableVport allocating vp index for intf: Ethernet2/1";
    static constexpr char const* allocated = "5 handleEFilterDisableVport allocated vpIndex: #";
    static constexpr char const* settled = "5 handleEFilterDisableVport intf: Ethernet2/1 vPort: #";
    static constexpr char const* ringSettled = "5 handleEFilterDisableVport intf: Et2/1 vpIndex: #";
    static constexpr char const* deletion = "5 handleEFilterDisableVport vport deletion for: bgp";
    static constexpr char const* ringDeletion =
        "5 handleEFilterDisableVport vport deleteion for: bgp";
    static constexpr char const* freeing = "5 handleEFilterDisableVport freeing vpIndex: #";

    static constexpr char const* reference = "1 handleInvalidEFilterDisableVport intf: Ethernet2/1";
    static constexpr char const* ringReference = "1 handleInvalidEFilterDisableVport intf: Et2/1";
    static constexpr char const* changed =
        "5 handleInvalidEFilterDisableVport vport addition/modification for: #";
    static constexpr char const* waits = "5 handleInvalidEFilterDisableVport vport added : #";
    static constexpr char const* settles = "5 handleInvalidEFilterDisableVport vport deleted : #";
    static constexpr char const* gone = "5 handleInvalidEFilterDisableVport vport deleted ";
};

} // namespace Test
