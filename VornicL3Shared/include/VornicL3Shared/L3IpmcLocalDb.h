#pragma once

#include "VornicL3Shared/BumAllowedBackplaneIntf.h"
#include "VornicL3Shared/Export.h"
#include "VornicL3Shared/NonUcastHigigIntfs.h"
#include "pelo/Node.h"
#include "pelo/Ptr.h"
#include "pelo/Slab.h"

namespace VornicL3 {

/// The local IP multicast database: whoever holds it reaches both interface sets.
///
/// It holds one use of each as long as it lives, and nothing else: neither name nor publisher. What
/// it refers to never changes. The backplane set is a constant to those who come through here, by
/// generic access too.
class VORNICL3SHARED_API L3IpmcLocalDb final : public Pelo::Node,
                                               public Pelo::SlabAllocated<L3IpmcLocalDb> {
public:
    static constexpr Pelo::FieldId allowedBackplaneIntfField = 130;
    static constexpr Pelo::FieldId hwHigigIntfsField = 131;

    /// Either pointer may be null.
    L3IpmcLocalDb(Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf,
                  Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs)
        : allowedBackplaneIntf_(allowedBackplaneIntf), hwHigigIntfs_(hwHigigIntfs) {}

    /// A new database, as `l3IpmcLocalDbFactory` builds it.
    static Pelo::Ptr<L3IpmcLocalDb>
    L3IpmcLocalDbIs(Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf,
                    Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs);

    Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf() const noexcept {
        return allowedBackplaneIntf_;
    }
    Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs() const noexcept { return hwHigigIntfs_; }

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    Pelo::Ptr<BumAllowedBackplaneIntf const> allowedBackplaneIntf_;
    Pelo::Ptr<NonUcastHigigIntfs> hwHigigIntfs_;
};

VORNICL3SHARED_API Pelo::Ptr<L3IpmcLocalDb>
l3IpmcLocalDbFactory(Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf,
                     Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs);

} // namespace VornicL3
