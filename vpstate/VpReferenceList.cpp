#include "vpstate/VpReferenceList.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpReferenceList> VpReferenceList::VpReferenceListIs(Pelo::String const& name) {
    return Pelo::newNode<VpReferenceList>(name);
}

Pelo::Ptr<VpReferenceList> vpReferenceListFactory(Pelo::String const& name) {
    return VpReferenceList::VpReferenceListIs(name);
}

Qor::TypeData const& VpReferenceList::typeTable() {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpReferenceList",
                    {"which virtual ports are in use: the one list of the whole switch",
                     "the list's name", "the ",
                     " in use, each with its VP index, 65535 while it has none, and the names of "
                     "its clients"},
                    &VpReferenceList::VpReferenceListIs)
            .build();
    return table;
}

Qor::TypeData const* VpReferenceList::typeData() const { return &typeTable(); }

} // namespace VornicCentral
