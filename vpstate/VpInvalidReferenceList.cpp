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

Qor::TypeData const& VpInvalidReferenceList::typeTable() {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpInvalidReferenceList",
                    {"which virtual ports wait for a VP index", "the list's name", "the ",
                     " that wait, the next to be served first; the value is always true"},
                    &VpInvalidReferenceList::VpInvalidReferenceListIs)
            .build();
    return table;
}

Qor::TypeData const* VpInvalidReferenceList::typeData() const { return &typeTable(); }

} // namespace VornicCentral
