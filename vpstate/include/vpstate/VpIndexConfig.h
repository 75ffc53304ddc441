#pragma once

#include "pelo/Slab.h"
#include "vpstate/VpRecord.h"

namespace VornicCentral {

/// What one client requests: the record's name is the client's, and a key that is present is
/// requested, whatever its boolean value. Written by the client's agent, watched by the client's
/// allocator. See `VpRecord` for its mutators.
class VpIndexConfig final : public VpRecord<bool>, public Pelo::SlabAllocated<VpIndexConfig> {
public:
    explicit VpIndexConfig(Pelo::String const& name) : VpRecord(name) {}

    static Pelo::Ptr<VpIndexConfig> VpIndexConfigIs(Pelo::String const& name);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

Pelo::Ptr<VpIndexConfig> vpIndexConfigFactory(Pelo::String const& name);

} // namespace VornicCentral
