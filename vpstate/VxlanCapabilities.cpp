#include "vpstate/VxlanCapabilities.h"

#include "qor/TypeBuilder.h"

namespace VornicCentral {

VxlanCapabilities::VxlanCapabilities(Pelo::String const& name, bool remoteVportLowIndex)
    : Entity(name), remoteVportLowIndex_(remoteVportLowIndex) {}

VxlanCapabilities::~VxlanCapabilities() = default;

Pelo::Ptr<VxlanCapabilities> VxlanCapabilities::VxlanCapabilitiesIs(Pelo::String const& name,
                                                                    bool remoteVportLowIndex) {
    return Pelo::newNode<VxlanCapabilities>(name, remoteVportLowIndex);
}

Pelo::Ptr<VxlanCapabilities> vxlanCapabilitiesFactory(Pelo::String const& name,
                                                      bool remoteVportLowIndex) {
    return VxlanCapabilities::VxlanCapabilitiesIs(name, remoteVportLowIndex);
}

Qor::TypeData const& VxlanCapabilities::typeTable() {
    static Qor::TypeData const table =
        Qor::TypeBuilder<VxlanCapabilities>("VornicCentral::VxlanCapabilities")
            .doc("what the switching chip supports of VXLAN")
            .constructor(&VxlanCapabilitiesIs, {"name", "remoteVportLowIndex"})
            .attribute(Qor::nameStringField, "nameString", &VxlanCapabilities::nameString)
            .doc("the record's name")
            .attribute(258, "remoteVportLowIndex", &VxlanCapabilities::remoteVportLowIndex)
            .doc("whether a remote VTEP that is not of an MLAG pair takes the lowest free VP "
                 "index rather than the highest")
            .build();
    return table;
}

Qor::TypeData const* VxlanCapabilities::typeData() const { return &typeTable(); }

} // namespace VornicCentral
