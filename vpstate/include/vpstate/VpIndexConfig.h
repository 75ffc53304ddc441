#pragma once

#include "pelo/Slab.h"
#include "vpstate/Export.h"
#include "vpstate/VpRecord.h"

namespace VornicCentral {

/// What one client requests: the record's name is the client's, and a key that is present is
/// requested, whatever its boolean value. Written by the client's agent, watched by the client's
/// allocator. See `VpRecord` for its mutators.
class VORNIC_VPSTATE_API VpIndexConfig final : public VpRecord<bool>,
                                               public Pelo::SlabAllocated<VpIndexConfig> {
public:
    explicit VpIndexConfig(Pelo::String const& name) : VpRecord(name) {}

    /// A new, empty record, as `vpIndexConfigFactory` builds it.
    static Pelo::Ptr<VpIndexConfig> VpIndexConfigIs(Pelo::String const& name);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNIC_VPSTATE_API Pelo::Ptr<VpIndexConfig> vpIndexConfigFactory(Pelo::String const& name);

} // namespace VornicCentral
