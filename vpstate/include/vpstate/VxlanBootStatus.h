#pragma once

#include "pelo/Slab.h"
#include "vpstate/Export.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpRecord.h"

namespace VornicCentral {

/// The indices that were in use before the agent restarted: one record for the whole system.
/// Written by the previous run; after the restart entries are only deleted.
class VORNIC_VPSTATE_API VxlanBootStatus final : public VpRecord<VirtualPort>,
                                                 public Pelo::SlabAllocated<VxlanBootStatus> {
public:
    explicit VxlanBootStatus(Pelo::String const& name) : VpRecord(name) {}

    /// A new, empty record, as `vxlanBootStatusFactory` builds it.
    static Pelo::Ptr<VxlanBootStatus> VxlanBootStatusIs(Pelo::String const& name);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNIC_VPSTATE_API Pelo::Ptr<VxlanBootStatus> vxlanBootStatusFactory(Pelo::String const& name);

} // namespace VornicCentral
