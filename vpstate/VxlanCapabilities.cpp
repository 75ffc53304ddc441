#include "vpstate/VxlanCapabilities.h"

namespace VornicCentral {

VxlanCapabilities::VxlanCapabilities(Pelo::String const& name, bool remoteVportLowIndex)
    : Entity(name), remoteVportLowIndex_(remoteVportLowIndex) {}

VxlanCapabilities::~VxlanCapabilities() = default;

Pelo::Ptr<VxlanCapabilities> VxlanCapabilities::VxlanCapabilitiesIs(Pelo::String const& name,
                                                                    bool remoteVportLowIndex) {
    return Pelo::Ptr<VxlanCapabilities>::adopt(new VxlanCapabilities(name, remoteVportLowIndex));
}

Pelo::Ptr<VxlanCapabilities> vxlanCapabilitiesFactory(Pelo::String const& name,
                                                      bool remoteVportLowIndex) {
    return VxlanCapabilities::VxlanCapabilitiesIs(name, remoteVportLowIndex);
}

} // namespace VornicCentral
