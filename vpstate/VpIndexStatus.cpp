#include "vpstate/VpIndexStatus.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpIndexStatus> VpIndexStatus::VpIndexStatusIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexStatus>(name);
}

Pelo::Ptr<VpIndexStatus> vpIndexStatusFactory(Pelo::String const& name) {
    return VpIndexStatus::VpIndexStatusIs(name);
}

Qor::TypeData const& VpIndexStatus::typeTable() {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpIndexStatus",
                    {"what one client was given, and its counters", "the client's name",
                     "the client's ", ", each with its VP index, 65535 while it has none"},
                    &VpIndexStatus::VpIndexStatusIs)
            .attribute(VpIndexStatus::vpAllocRequestsField, "vpAllocRequests",
                       &VpIndexStatus::vpAllocRequests)
            .set(&VpIndexStatus::vpAllocRequestsIs)
            .doc("allocations that gave this client an index; wraps at 2^32")
            .attribute(VpIndexStatus::vpAllocFailuresField, "vpAllocFailures",
                       &VpIndexStatus::vpAllocFailures)
            .set(&VpIndexStatus::vpAllocFailuresIs)
            .doc("allocations of this client that found the table full; wraps at 2^32")
            .attribute(VpIndexStatus::vpFreeRequestsField, "vpFreeRequests",
                       &VpIndexStatus::vpFreeRequests)
            .set(&VpIndexStatus::vpFreeRequestsIs)
            .doc("indices that this client gave back, whether or not another client keeps them in "
                 "use; wraps at 2^32")
            .attribute(VpIndexStatus::vpTableSizeField, "vpTableSize", &VpIndexStatus::vpTableSize)
            .set(&VpIndexStatus::vpTableSizeIs)
            .doc("the size of the chip's VP table, in entries")
            .build();
    return table;
}

Qor::TypeData const* VpIndexStatus::typeData() const { return &typeTable(); }

} // namespace VornicCentral
