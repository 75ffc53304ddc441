#pragma once

#include "pelo/Ptr.h"
#include "pelo/Slab.h"
#include "pelo/String.h"
#include "qor/Entity.h"
#include "vpstate/Export.h"

namespace VornicCentral {

/// What the switching chip supports of VXLAN: a record that another agent makes and that nobody
/// changes.
class VORNIC_VPSTATE_API VxlanCapabilities final : public Qor::Entity,
                                                   public Pelo::SlabAllocated<VxlanCapabilities> {
public:
    VxlanCapabilities(Pelo::String const& name, bool remoteVportLowIndex);

    /// A new record, as `vxlanCapabilitiesFactory` builds it.
    static Pelo::Ptr<VxlanCapabilities> VxlanCapabilitiesIs(Pelo::String const& name,
                                                            bool remoteVportLowIndex);

    /// Whether a remote VTEP that is not one of an MLAG takes the lowest clear VP index rather than
    /// the highest.
    bool remoteVportLowIndex() const noexcept { return remoteVportLowIndex_; }

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    ~VxlanCapabilities() override;

    bool const remoteVportLowIndex_;
};

VORNIC_VPSTATE_API Pelo::Ptr<VxlanCapabilities> vxlanCapabilitiesFactory(Pelo::String const& name,
                                                                         bool remoteVportLowIndex);

} // namespace VornicCentral
