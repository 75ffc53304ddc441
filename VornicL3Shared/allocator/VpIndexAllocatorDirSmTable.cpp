// The inspection table of the directory state machine.

#include "VornicL3Shared/VpIndexAllocatorDirSm.h"
#include "qor/TypeBuilder.h"

template <> struct Qor::ValueTraits<Bask::HBitmap::BitState> {
    using BitState = Bask::HBitmap::BitState;
    static constexpr ValueKind kind = ValueKind::text;
    static std::string name() { return "Bask::HBitmap::BitState"; }
    static std::string text(BitState state) { return state == BitState::set ? "set" : "clear"; }
    static Pelo::Parsed<BitState> parse(std::string_view text) {
        if (text == "set" || text == "clear") {
            return text == "set" ? BitState::set : BitState::clear;
        }
        return Pelo::ParseError{0, "set or clear"};
    }
};

namespace VornicCentral {
namespace {

using Sm = VpIndexAllocatorDirSm;

void addRecords(Qor::TypeBuilder<Sm>& table) {
    table
        .constructor(&Sm::VpIndexAllocatorDirSmIs,
                     {"vpReference", "vpInvalidReference", "vpIndexConfigDir", "vpIndexStatusDir",
                      "vpTableSize", "vxlanBootStatus", "vpReallocationEnabled", "vfiForwarding",
                      "vxlanCapabilities"})
        .attribute(130, "vpReference", &Sm::vpReference)
        .attribute(131, "vpInvalidReference", &Sm::vpInvalidReference)
        .attribute(132, "vpIndexConfigDir", &Sm::vpIndexConfigDir)
        .attribute(133, "vpIndexStatusDir", &Sm::vpIndexStatusDir)
        .attribute(134, "vpTableSize", &Sm::vpTableSize)
        .attribute(135, "vxlanBootStatus", &Sm::vxlanBootStatus)
        .attribute(136, "vpReallocationEnabled", &Sm::vpReallocationEnabled)
        .attribute(137, "vfiForwarding", &Sm::vfiForwarding)
        .attribute(138, "vxlanCapabilities", &Sm::vxlanCapabilities);
}

void addOwned(Qor::TypeBuilder<Sm>& table) {
    table.attribute(139, "vpBitmap", &Sm::vpBitmap)
        .create(&Sm::vpBitmapIs, {"id", "size", "initialBitState"})
        .detach(&Sm::vpBitmapDel)
        .collection(140, "vpIndexAllocator", "name", &Sm::vpIndexAllocator)
        .create(&Sm::vpIndexAllocatorIs, {"vpIndexAllocatorDirSm", "vpIndexConfig", "vpIndexStatus",
                                          "vpReference", "vfiForwarding"})
        .del(&Sm::vpIndexAllocatorDel)
        .delAll(&Sm::vpIndexAllocatorDelAll);
}

void addHandlers(Qor::TypeBuilder<Sm>& table) {
    table
        .operation(141, "handleVpIndexConfig",
                   Qor::overload<void(Pelo::String const&)>(&Sm::handleVpIndexConfig), {"name"})
        .operation(142, "handleInvalidRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&Sm::handleInvalidRemoteVport),
                   {"remoteVtepKey"})
        .operation(143, "handleInvalidMlagRemoteVport",
                   Qor::overload<void(RemoteVtepKey const&)>(&Sm::handleInvalidMlagRemoteVport),
                   {"remoteVtepKey"})
        .operation(144, "handleInvalidEdgeVport",
                   Qor::overload<void(PortVlanKey const&)>(&Sm::handleInvalidEdgeVport), {"pvKey"})
        .operation(145, "handleInvalidVlanVport",
                   Qor::overload<void(Bridging::VlanId)>(&Sm::handleInvalidVlanVport), {"vlan"})
        .operation(146, "handleInvalidEFilterDisableVport",
                   Qor::overload<void(Netzo::IntfId)>(&Sm::handleInvalidEFilterDisableVport),
                   {"intf"});
}

void addOperations(Qor::TypeBuilder<Sm>& table) {
    table.operation(147, "allocVpIndex", &Sm::allocVpIndex, {"indexPreferenceHigh"})
        .operation(148, "freeVpIndex", &Sm::freeVpIndex, {"vpIndex"})
        .operation(149, "setVpBitmap", &Sm::setVpBitmap, {"vpIndex"})
        .operation(150, "isDefaultVp", &Sm::isDefaultVp, {"vpIndex"})
        .operation(151, "recycleOrFreeVpIndex", &Sm::recycleOrFreeVpIndex, {"vpIndex"})
        .operation(152, "verify", &Sm::verify)
        .operation(153, "reconcile", &Sm::reconcile)
        .operation(154, "clearStaleEntries", &Sm::clearStaleEntries)
        .attribute(155, "initialized", &Sm::initialized)
        .operation(156, "handleInitialized", &Sm::handleInitialized);
}

} // namespace

Qor::TypeData const* VpIndexAllocatorDirSm::typeData() const {
    static Qor::TypeData const table = [] {
        Qor::TypeBuilder<Sm> builder("VornicCentral::VpIndexAllocatorDirSm");
        addRecords(builder);
        addOwned(builder);
        addHandlers(builder);
        addOperations(builder);
        return builder.build();
    }();
    return &table;
}

} // namespace VornicCentral
