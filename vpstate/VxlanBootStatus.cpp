#include "vpstate/VxlanBootStatus.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VxlanBootStatus> VxlanBootStatus::VxlanBootStatusIs(Pelo::String const& name) {
    return Pelo::newNode<VxlanBootStatus>(name);
}

Pelo::Ptr<VxlanBootStatus> vxlanBootStatusFactory(Pelo::String const& name) {
    return VxlanBootStatus::VxlanBootStatusIs(name);
}

Qor::TypeData const* VxlanBootStatus::typeData() const {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VxlanBootStatus", &VxlanBootStatus::VxlanBootStatusIs).build();
    return &table;
}

} // namespace VornicCentral
