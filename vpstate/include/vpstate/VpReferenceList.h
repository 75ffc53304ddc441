#pragma once

#include "pelo/Slab.h"
#include "vpstate/Export.h"
#include "vpstate/VpRecord.h"
#include "vpstate/VpReference.h"

namespace VornicCentral {

/// Which clients use each virtual port, and its index: one record for the whole system.
///
/// A key stands here once, however many clients request it. To add or remove a client the whole
/// `VpReference` is read, changed and written back; a reference that names nobody is deleted
/// instead, but for a while after a restart. Written by all allocators and the directory state
/// machine, which watches it.
class VORNIC_VPSTATE_API VpReferenceList final : public VpRecord<VpReference>,
                                                 public Pelo::SlabAllocated<VpReferenceList> {
public:
    explicit VpReferenceList(Pelo::String const& name) : VpRecord(name) {}

    /// A new, empty record, as `vpReferenceListFactory` builds it.
    static Pelo::Ptr<VpReferenceList> VpReferenceListIs(Pelo::String const& name);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNIC_VPSTATE_API Pelo::Ptr<VpReferenceList> vpReferenceListFactory(Pelo::String const& name);

} // namespace VornicCentral
