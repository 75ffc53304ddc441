#pragma once

#include "VornicL3Shared/Export.h"
#include "devbus/FapId.h"
#include "interface/IntfSet.h"
#include "pelo/Slab.h"
#include "qor/Entity.h"
#include "qor/HashMap2018.h"

#include <string_view>

namespace VornicL3 {

/// For each forwarding chip, the Higig (chip-interconnect) interfaces that carry non-unicast
/// traffic. Shared under `path()`.
///
/// A chip that is there with an empty set is not the same as a chip that is not there. Chips
/// iterate in insertion order and may be changed while they are walked (see `Qor::HashMap2018`).
///
/// Every change is published after it was made, under `higigIntfsField` with the chip as key. The
/// notification carries the *former* set of the chip, an `Interface::IntfSet const*` that is null
/// for a chip that was not there; what holds now is read from here. (The records of virtual ports
/// carry the new value instead.) A subscriber may change the entity, add and remove subscribers,
/// and drop its last pointer.
///
/// Cost: a table place a chip, one call a subscriber. Not thread-safe.
class VORNICL3SHARED_API NonUcastHigigIntfs final : public Qor::Entity,
                                                    public Pelo::SlabAllocated<NonUcastHigigIntfs> {
public:
    using HigigIntfs = Qor::HashMap2018<Devbus::FapId, Interface::IntfSet>;

    static constexpr Pelo::FieldId higigIntfsField = 258;
    static constexpr Pelo::FieldId pathField = 259;

    /// No chip has an entry yet.
    explicit NonUcastHigigIntfs(Pelo::String const& name) : Entity(name) {}

    /// A new entity without chips, as `nonUcastHigigIntfsFactory` builds it.
    static Pelo::Ptr<NonUcastHigigIntfs> NonUcastHigigIntfsIs(Pelo::String const& name);

    static constexpr std::string_view path() noexcept { return "l3/mcast/higig/hwStatus"; }

    HigigIntfs const& higigIntfs() const noexcept { return higigIntfs_; }
    /// The set of a chip; an empty one when the chip is not there.
    Interface::IntfSet higigIntfs(Devbus::FapId fapId) const;
    bool higigIntfsHas(Devbus::FapId fapId) const noexcept { return higigIntfs_.has(fapId); }

    /// Gives a chip its set. The set that it has already changes nothing.
    void higigIntfsIs(Devbus::FapId fapId, Interface::IntfSet const& intfs);

    /// Removes a chip and returns its set; an empty one, and nothing published, when the chip was
    /// not there.
    Interface::IntfSet higigIntfsDel(Devbus::FapId fapId);

    /// Removes all chips: in one step when nobody subscribes, else one by one, each published. A
    /// chip that a subscriber adds meanwhile is removed as well; one that it puts back after its
    /// removal stays.
    void higigIntfsDelAll();

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    HigigIntfs higigIntfs_;
};

VORNICL3SHARED_API Pelo::Ptr<NonUcastHigigIntfs>
nonUcastHigigIntfsFactory(Pelo::String const& name);

} // namespace VornicL3
