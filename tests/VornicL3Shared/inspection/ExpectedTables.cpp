#include "VornicL3Shared/inspection/ExpectedTables.h"

#include <utility>

namespace Test {

namespace {

using Fields = std::vector<ExpectedField>;

ExpectedField readOnly(Pelo::FieldId number, std::string const& name, std::string const& type) {
    return {number, name + ": " + type + " (read-only)", "get(): " + type + " const\n"};
}

ExpectedField writable(Pelo::FieldId number, std::string const& name, std::string const& type) {
    return {number, name + ": " + type, "get(): " + type + " const\nset(value: " + type + ")\n"};
}

std::string collectionReads(std::string const& key, std::string const& type) {
    return "get(" + key + "): " + type + " const\nlookup(" + key + "): " + type + " const\nhas(" +
           key + "): bool const\ncount(): U32 const\niterate(): Qor::CollectionIterator const\n";
}

/// `key` is the name and the type of the key.
ExpectedField collection(Pelo::FieldId number, std::string const& name, std::string const& key,
                         std::string const& type) {
    return {number, name + "[" + key + "]: " + type,
            collectionReads(key, type) + "set(" + key + ", value: " + type + ")\ndel(" + key +
                "): " + type + "\ndelAll()\n"};
}

/// `result` begins with ": " unless it is empty.
ExpectedField operation(Pelo::FieldId number, std::string const& name,
                        std::string const& arguments = "", std::string const& result = "") {
    std::string const shape = "(" + arguments + ")" + result;
    return {number, name + shape, "call" + shape + "\n"};
}

ExpectedField constOperation(Pelo::FieldId number, std::string const& name,
                             std::string const& arguments = "", std::string const& result = "") {
    std::string const shape = "(" + arguments + ")" + result + " const";
    return {number, name + shape, "call" + shape + "\n"};
}

/// A record whose collections have values of type `value`.
ExpectedType record(std::string const& name, std::string const& value, Fields const& further = {}) {
    Fields fields{
        readOnly(154, "nameString", "Pelo::String"),
        collection(258, "remoteVport", "remoteVtepKey: VornicCentral::RemoteVtepKey", value),
        collection(259, "mlagRemoteVport", "remoteVtepKey: VornicCentral::RemoteVtepKey", value),
        collection(260, "edgeVport", "pvKey: VornicCentral::PortVlanKey", value),
        collection(261, "vlanVport", "vlan: Bridging::VlanId", value),
        collection(262, "eFilterDisableVport", "intf: Netzo::IntfId", value)};
    fields.insert(fields.end(), further.begin(), further.end());
    return {"VornicCentral::" + name, "name: Pelo::String", fields};
}

ExpectedType directory(std::string const& name, std::string const& entries,
                       std::string const& recordType) {
    return {"VornicCentral::" + name,
            "name: Pelo::String",
            {readOnly(130, "name", "Pelo::String"),
             collection(131, entries, "name: Pelo::String",
                        "Pelo::Ptr<VornicCentral::" + recordType + ">")}};
}

ExpectedType bitmap() {
    return {"Bask::Bitmap",
            "id: U64, size: U32, initialBitState: Bask::HBitmap::BitState",
            {readOnly(130, "id", "U64"), readOnly(131, "size", "U32"),
             readOnly(132, "initialBitState", "Bask::HBitmap::BitState"),
             readOnly(133, "numBitsInSetState", "U32"), operation(134, "setBit", "index: U32"),
             operation(135, "clearBit", "index: U32"),
             constOperation(136, "isBitSet", "index: U32", ": bool"),
             constOperation(137, "findClearBitInRange",
                            "lo: U32, hi: U32, preference: Bask::Preference", ": U32")}};
}

ExpectedModule multicast() {
    ExpectedField const name = readOnly(154, "nameString", "Pelo::String");
    ExpectedField const path = readOnly(259, "path", "Pelo::String");
    return {"L3McastGroupApi",
            {{"VornicL3::NonUcastHigigIntfs",
              "name: Pelo::String",
              {name, collection(258, "higigIntfs", "fapId: Devbus::FapId", "Interface::IntfSet"),
               path}},
             {"VornicL3::BumAllowedBackplaneIntf",
              "name: Pelo::String",
              {name, writable(258, "intfs", "Interface::IntfSet"), path}},
             {"VornicL3::L3IpmcLocalDb",
              "allowedBackplaneIntf: Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf const>, "
              "hwHigigIntfs: Pelo::Ptr<VornicL3::NonUcastHigigIntfs>",
              {readOnly(130, "allowedBackplaneIntf",
                        "Pelo::Ptr<VornicL3::BumAllowedBackplaneIntf const>"),
               readOnly(131, "hwHigigIntfs", "Pelo::Ptr<VornicL3::NonUcastHigigIntfs>")}},
             {"VornicL3::L3McastGroupApi",
              "none",
              {operation(130, "updateL2Bitmaps", "fapId: Devbus::FapId, post: bool"),
               operation(131, "updateAllL2Bitmaps")}},
             {"VornicL3::L3McastGroupApiHolder",
              "name: Pelo::String",
              {name, writable(258, "l3McastGroupApi", "Pelo::Ptr<VornicL3::L3McastGroupApi>"),
               readOnly(259, "sharedEntityName", "Pelo::String")}}}};
}

ExpectedType capabilities() {
    return {"VornicCentral::VxlanCapabilities",
            "name: Pelo::String, remoteVportLowIndex: bool",
            {readOnly(154, "nameString", "Pelo::String"),
             readOnly(258, "remoteVportLowIndex", "bool")}};
}

constexpr char const* allocatorArguments =
    "vpIndexAllocatorDirSm: Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm>, "
    "vpIndexConfig: Pelo::Ptr<VornicCentral::VpIndexConfig const>, "
    "vpIndexStatus: Pelo::Ptr<VornicCentral::VpIndexStatus>, "
    "vpReference: Pelo::Ptr<VornicCentral::VpReferenceList>, vfiForwarding: bool";

ExpectedType allocator() {
    return {
        "VornicCentral::VpIndexAllocator",
        allocatorArguments,
        {readOnly(130, "vpIndexAllocatorDirSm", "Pelo::Ptr<VornicCentral::VpIndexAllocatorDirSm>"),
         readOnly(131, "vpIndexConfig", "Pelo::Ptr<VornicCentral::VpIndexConfig const>"),
         readOnly(132, "vpIndexStatus", "Pelo::Ptr<VornicCentral::VpIndexStatus>"),
         readOnly(133, "vpReference", "Pelo::Ptr<VornicCentral::VpReferenceList>"),
         readOnly(134, "vfiForwarding", "bool"), readOnly(135, "initialized", "bool"),
         operation(136, "handleRemoteVport", "remoteVtepKey: VornicCentral::RemoteVtepKey"),
         operation(137, "handleMlagRemoteVport", "remoteVtepKey: VornicCentral::RemoteVtepKey"),
         operation(138, "handleEdgeVport", "pvKey: VornicCentral::PortVlanKey"),
         operation(139, "handleVlanVport", "vlan: Bridging::VlanId"),
         operation(140, "handleEFilterDisableVport", "intf: Netzo::IntfId"),
         constOperation(141, "verify"), constOperation(142, "verifyRemoteVpIndex"),
         constOperation(143, "verifyMlagRemoteVpIndex"), constOperation(144, "verifyEdgeVpIndex"),
         constOperation(145, "verifyVlanVpIndex"),
         constOperation(146, "verifyEFilterDisableVpIndex")}};
}

Fields stateMachineAttributes() {
    std::string const bitmapType = "Pelo::Ptr<Bask::Bitmap>";
    std::string const allocatorType = "Pelo::Ptr<VornicCentral::VpIndexAllocator>";
    return {
        readOnly(130, "vpReference", "Pelo::Ptr<VornicCentral::VpReferenceList>"),
        readOnly(131, "vpInvalidReference", "Pelo::Ptr<VornicCentral::VpInvalidReferenceList>"),
        readOnly(132, "vpIndexConfigDir", "Pelo::Ptr<VornicCentral::VpIndexConfigDir const>"),
        readOnly(133, "vpIndexStatusDir", "Pelo::Ptr<VornicCentral::VpIndexStatusDir>"),
        readOnly(134, "vpTableSize", "U32"),
        readOnly(135, "vxlanBootStatus", "Pelo::Ptr<VornicCentral::VxlanBootStatus>"),
        readOnly(136, "vpReallocationEnabled", "bool"),
        readOnly(137, "vfiForwarding", "bool"),
        readOnly(138, "vxlanCapabilities", "Pelo::Ptr<VornicCentral::VxlanCapabilities const>"),
        {139, "vpBitmap: " + bitmapType,
         "get(): " + bitmapType +
             " const\nset(id: U64, size: U32, initialBitState: Bask::HBitmap::BitState): " +
             bitmapType + "\ndel(): " + bitmapType + "\n"},
        {140, "vpIndexAllocator[name: Pelo::String]: " + allocatorType,
         collectionReads("name: Pelo::String", allocatorType) + "set(" + allocatorArguments +
             "): " + allocatorType + "\ndel(name: Pelo::String): " + allocatorType +
             "\ndelAll()\n"},
    };
}

Fields stateMachineOperations() {
    return {
        operation(141, "handleVpIndexConfig", "name: Pelo::String"),
        operation(142, "handleInvalidRemoteVport", "remoteVtepKey: VornicCentral::RemoteVtepKey"),
        operation(143, "handleInvalidMlagRemoteVport",
                  "remoteVtepKey: VornicCentral::RemoteVtepKey"),
        operation(144, "handleInvalidEdgeVport", "pvKey: VornicCentral::PortVlanKey"),
        operation(145, "handleInvalidVlanVport", "vlan: Bridging::VlanId"),
        operation(146, "handleInvalidEFilterDisableVport", "intf: Netzo::IntfId"),
        operation(147, "allocVpIndex", "indexPreferenceHigh: bool", ": U16"),
        operation(148, "freeVpIndex", "vpIndex: U32"),
        operation(149, "setVpBitmap", "vpIndex: U32"),
        constOperation(150, "isDefaultVp", "vpIndex: U32", ": bool"),
        operation(151, "recycleOrFreeVpIndex", "vpIndex: U32"),
        constOperation(152, "verify"),
        operation(153, "reconcile"),
        operation(154, "clearStaleEntries"),
        readOnly(155, "initialized", "bool"),
        operation(156, "handleInitialized"),
    };
}

ExpectedType stateMachine() {
    Fields fields = stateMachineAttributes();
    Fields const operations = stateMachineOperations();
    fields.insert(fields.end(), operations.begin(), operations.end());
    return {"VornicCentral::VpIndexAllocatorDirSm",
            "vpReference: Pelo::Ptr<VornicCentral::VpReferenceList>, "
            "vpInvalidReference: Pelo::Ptr<VornicCentral::VpInvalidReferenceList>, "
            "vpIndexConfigDir: Pelo::Ptr<VornicCentral::VpIndexConfigDir const>, "
            "vpIndexStatusDir: Pelo::Ptr<VornicCentral::VpIndexStatusDir>, vpTableSize: U32, "
            "vxlanBootStatus: Pelo::Ptr<VornicCentral::VxlanBootStatus>, "
            "vpReallocationEnabled: bool, vfiForwarding: bool, "
            "vxlanCapabilities: Pelo::Ptr<VornicCentral::VxlanCapabilities const>",
            fields};
}

} // namespace

std::vector<ExpectedModule> expectedModules() {
    return {
        {"Bask", {bitmap()}},
        multicast(),
        {"VornicL3VpIndexAllocator",
         {directory("VpIndexConfigDir", "vpIndexConfig", "VpIndexConfig"),
          directory("VpIndexStatusDir", "vpIndexStatus", "VpIndexStatus"), allocator(),
          stateMachine()}},
        {"vpstate",
         {record("VpIndexConfig", "bool"),
          record("VpIndexStatus", "VornicCentral::VirtualPort",
                 {writable(263, "vpAllocRequests", "U32"), writable(264, "vpAllocFailures", "U32"),
                  writable(265, "vpFreeRequests", "U32"), writable(266, "vpTableSize", "U32")}),
          record("VpReferenceList", "VornicCentral::VpReference"),
          record("VpInvalidReferenceList", "bool"),
          record("VxlanBootStatus", "VornicCentral::VirtualPort"), capabilities()}},
    };
}

} // namespace Test
