#pragma once

#include "pelo/Slab.h"
#include "vpstate/Export.h"
#include "vpstate/VpRecord.h"

namespace VornicCentral {

/// The keys whose reference holds the invalid virtual port and which wait for an index: one record
/// for the whole system, in the order in which the keys began to wait. Written by the directory
/// state machine: it adds keys only while reallocation is enabled; one that does not wait any more
/// is taken off in any case when an index is recycled.
class VORNIC_VPSTATE_API VpInvalidReferenceList final
    : public VpRecord<bool>,
      public Pelo::SlabAllocated<VpInvalidReferenceList> {
public:
    explicit VpInvalidReferenceList(Pelo::String const& name) : VpRecord(name) {}

    /// A new, empty record, as `vpInvalidReferenceListFactory` builds it.
    static Pelo::Ptr<VpInvalidReferenceList> VpInvalidReferenceListIs(Pelo::String const& name);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNIC_VPSTATE_API Pelo::Ptr<VpInvalidReferenceList>
vpInvalidReferenceListFactory(Pelo::String const& name);

} // namespace VornicCentral
