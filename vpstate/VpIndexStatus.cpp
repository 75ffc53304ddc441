#include "vpstate/VpIndexStatus.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpIndexStatus> VpIndexStatus::VpIndexStatusIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexStatus>(name);
}

Pelo::Ptr<VpIndexStatus> vpIndexStatusFactory(Pelo::String const& name) {
    return VpIndexStatus::VpIndexStatusIs(name);
}

Qor::TypeData const* VpIndexStatus::typeData() const {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpIndexStatus", &VpIndexStatus::VpIndexStatusIs)
            .attribute(VpIndexStatus::vpAllocRequestsField, "vpAllocRequests",
                       &VpIndexStatus::vpAllocRequests)
            .set(&VpIndexStatus::vpAllocRequestsIs)
            .attribute(VpIndexStatus::vpAllocFailuresField, "vpAllocFailures",
                       &VpIndexStatus::vpAllocFailures)
            .set(&VpIndexStatus::vpAllocFailuresIs)
            .attribute(VpIndexStatus::vpFreeRequestsField, "vpFreeRequests",
                       &VpIndexStatus::vpFreeRequests)
            .set(&VpIndexStatus::vpFreeRequestsIs)
            .attribute(VpIndexStatus::vpTableSizeField, "vpTableSize", &VpIndexStatus::vpTableSize)
            .set(&VpIndexStatus::vpTableSizeIs)
            .build();
    return &table;
}

} // namespace VornicCentral
