#include "vpstate/VpReferenceList.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpReferenceList> VpReferenceList::VpReferenceListIs(Pelo::String const& name) {
    return Pelo::newNode<VpReferenceList>(name);
}

Pelo::Ptr<VpReferenceList> vpReferenceListFactory(Pelo::String const& name) {
    return VpReferenceList::VpReferenceListIs(name);
}

Qor::TypeData const* VpReferenceList::typeData() const {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpReferenceList", &VpReferenceList::VpReferenceListIs).build();
    return &table;
}

} // namespace VornicCentral
