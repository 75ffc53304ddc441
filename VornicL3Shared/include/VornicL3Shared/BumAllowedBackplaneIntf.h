#pragma once

#include "VornicL3Shared/Export.h"
#include "interface/IntfSet.h"
#include "pelo/Slab.h"
#include "qor/Entity.h"

#include <string_view>

namespace VornicL3 {

/// The backplane interfaces on which broadcast, unknown-unicast and multicast (BUM) traffic is
/// allowed. Shared under `path()`.
///
/// A change is published after it was made, under `intfsField` and without a key. The notification
/// carries the *former* set, an `Interface::IntfSet const*` that is never null; what holds now is
/// read from here. (The records of virtual ports carry the new value instead.) A subscriber may
/// change the entity, add and remove subscribers, and drop its last pointer. Not thread-safe.
class VORNICL3SHARED_API BumAllowedBackplaneIntf final
    : public Qor::Entity,
      public Pelo::SlabAllocated<BumAllowedBackplaneIntf> {
public:
    static constexpr Pelo::FieldId intfsField = 258;
    static constexpr Pelo::FieldId pathField = 259;

    /// No interface is allowed yet.
    explicit BumAllowedBackplaneIntf(Pelo::String const& name) : Entity(name) {}

    /// A new set without interfaces, as `bumAllowedBackplaneIntfFactory` builds it.
    static Pelo::Ptr<BumAllowedBackplaneIntf> BumAllowedBackplaneIntfIs(Pelo::String const& name);

    static constexpr std::string_view path() noexcept {
        return "l3/mcast/higig/allowedBackplaneIntf";
    }

    Interface::IntfSet const& intfs() const noexcept { return intfs_; }
    /// Replaces the set; an equal one changes nothing.
    void intfsIs(Interface::IntfSet const& intfs);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    Interface::IntfSet intfs_;
};

VORNICL3SHARED_API Pelo::Ptr<BumAllowedBackplaneIntf>
bumAllowedBackplaneIntfFactory(Pelo::String const& name);

} // namespace VornicL3
