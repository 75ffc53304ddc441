#include "vpstate/VxlanBootStatus.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VxlanBootStatus> VxlanBootStatus::VxlanBootStatusIs(Pelo::String const& name) {
    return Pelo::newNode<VxlanBootStatus>(name);
}

Pelo::Ptr<VxlanBootStatus> vxlanBootStatusFactory(Pelo::String const& name) {
    return VxlanBootStatus::VxlanBootStatusIs(name);
}

Qor::TypeData const& VxlanBootStatus::typeTable() {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VxlanBootStatus",
                    {"which VP indices were held before the agent restarted", "the record's name",
                     "the ", ", each with the VP index that it held before the restart"},
                    &VxlanBootStatus::VxlanBootStatusIs)
            .build();
    return table;
}

Qor::TypeData const* VxlanBootStatus::typeData() const { return &typeTable(); }

} // namespace VornicCentral
