#pragma once

#include "pelo/Slab.h"
#include "vpstate/Export.h"
#include "vpstate/VirtualPort.h"
#include "vpstate/VpRecord.h"

namespace VornicCentral {

/// What one client was given: a virtual port per requested key, and the client's counters.
///
/// The invalid virtual port under a key says that the key holds no index.
/// Written by the client's allocator and by the directory state machine, read by the chip
/// programmers. Counters wrap at 2^32. A change of a counter, or of the table size, is published
/// under its field number without a key, with the new value (a `U32 const*`).
class VORNIC_VPSTATE_API VpIndexStatus final : public VpRecord<VirtualPort>,
                                               public Pelo::SlabAllocated<VpIndexStatus> {
public:
    static constexpr Pelo::FieldId vpAllocRequestsField = 263;
    static constexpr Pelo::FieldId vpAllocFailuresField = 264;
    static constexpr Pelo::FieldId vpFreeRequestsField = 265;
    static constexpr Pelo::FieldId vpTableSizeField = 266;

    explicit VpIndexStatus(Pelo::String const& name) : VpRecord(name) {}

    /// A new, empty record, as `vpIndexStatusFactory` builds it.
    static Pelo::Ptr<VpIndexStatus> VpIndexStatusIs(Pelo::String const& name);

    /// Allocations that yielded an index for this client.
    U32 vpAllocRequests() const noexcept { return vpAllocRequests_; }
    /// Allocations that found the table full.
    U32 vpAllocFailures() const noexcept { return vpAllocFailures_; }
    /// Indices that this client gave back, whether or not another client keeps them in use.
    U32 vpFreeRequests() const noexcept { return vpFreeRequests_; }
    /// The size of the VP table, in entries, which the client's allocator sets when it is built. No
    /// index that the pool gave reaches it; one that was recovered after a restart with a smaller
    /// table may.
    U32 vpTableSize() const noexcept { return vpTableSize_; }

    void vpAllocRequestsInc(U32 amount) {
        counterIs(vpAllocRequests_, vpAllocRequests_ + amount, vpAllocRequestsField);
    }
    void vpAllocFailuresInc(U32 amount) {
        counterIs(vpAllocFailures_, vpAllocFailures_ + amount, vpAllocFailuresField);
    }
    void vpFreeRequestsInc(U32 amount) {
        counterIs(vpFreeRequests_, vpFreeRequests_ + amount, vpFreeRequestsField);
    }
    void vpTableSizeIs(U32 entries) { counterIs(vpTableSize_, entries, vpTableSizeField); }

    /// Sets a counter to a value from outside, as when a saved record is read back.
    void vpAllocRequestsIs(U32 value) { counterIs(vpAllocRequests_, value, vpAllocRequestsField); }
    void vpAllocFailuresIs(U32 value) { counterIs(vpAllocFailures_, value, vpAllocFailuresField); }
    void vpFreeRequestsIs(U32 value) { counterIs(vpFreeRequests_, value, vpFreeRequestsField); }

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    void counterIs(U32& counter, U32 value, Pelo::FieldId field) {
        if (counter != value) {
            counter = value;
            publishAttribute(field, &counter);
        }
    }

    U32 vpAllocRequests_ = 0;
    U32 vpAllocFailures_ = 0;
    U32 vpFreeRequests_ = 0;
    U32 vpTableSize_ = 0;
};

VORNIC_VPSTATE_API Pelo::Ptr<VpIndexStatus> vpIndexStatusFactory(Pelo::String const& name);

} // namespace VornicCentral
