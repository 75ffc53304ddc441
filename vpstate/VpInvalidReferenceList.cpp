#include "vpstate/VpInvalidReferenceList.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpInvalidReferenceList>
VpInvalidReferenceList::VpInvalidReferenceListIs(Pelo::String const& name) {
    return Pelo::newNode<VpInvalidReferenceList>(name);
}

Pelo::Ptr<VpInvalidReferenceList> vpInvalidReferenceListFactory(Pelo::String const& name) {
    return VpInvalidReferenceList::VpInvalidReferenceListIs(name);
}

Qor::TypeData const* VpInvalidReferenceList::typeData() const {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpInvalidReferenceList",
                    &VpInvalidReferenceList::VpInvalidReferenceListIs)
            .build();
    return &table;
}

} // namespace VornicCentral
