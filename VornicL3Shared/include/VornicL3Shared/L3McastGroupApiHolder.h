#pragma once

#include "VornicL3Shared/Export.h"
#include "pelo/Slab.h"
#include "qor/Entity.h"

#include <string_view>

namespace VornicL3 {

class L3McastGroupApi;

/// Where the components of the agent find the installed implementation of `L3McastGroupApi`. Shared
/// under `sharedEntityName()`.
///
/// Whoever uses the implementation includes `VornicL3Shared/L3McastGroupApi.h`; this header only
/// names the type.
///
/// A replacement is published after it was made, under `l3McastGroupApiField` and without a key.
/// The notification carries the *former* implementation, a `Pelo::Ptr<L3McastGroupApi> const*` that
/// is never null itself and points to a null pointer when none was installed; the one that is
/// installed now is read from here. (The records of virtual ports carry the new value instead.) The
/// holder gives back its use of the former implementation only when all subscribers have been told.
/// A subscriber may install another one, add and remove subscribers, and drop the last pointer to
/// the holder. By generic access an implementation is given as a `Pelo::Ptr<L3McastGroupApi>`, not
/// as one to its own type. Not thread-safe.
class VORNICL3SHARED_API L3McastGroupApiHolder final
    : public Qor::Entity,
      public Pelo::SlabAllocated<L3McastGroupApiHolder> {
public:
    static constexpr Pelo::FieldId l3McastGroupApiField = 258;
    static constexpr Pelo::FieldId sharedEntityNameField = 259;

    /// None is installed yet.
    explicit L3McastGroupApiHolder(Pelo::String const& name);
    /// Gives back its use of the installed implementation.
    ~L3McastGroupApiHolder() override;

    /// A new, empty holder, as `l3McastGroupApiHolderFactory` builds it.
    static Pelo::Ptr<L3McastGroupApiHolder> L3McastGroupApiHolderIs(Pelo::String const& name);

    static constexpr std::string_view sharedEntityName() noexcept { return "l3McastGroupApi"; }

    /// The installed implementation; null when there is none.
    Pelo::Ptr<L3McastGroupApi> const& l3McastGroupApi() const noexcept { return l3McastGroupApi_; }
    /// Installs an implementation, or with null removes it. The very one that is installed already
    /// changes nothing.
    void l3McastGroupApiIs(Pelo::Ptr<L3McastGroupApi> const& l3McastGroupApi);

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;

private:
    Pelo::Ptr<L3McastGroupApi> l3McastGroupApi_;
};

VORNICL3SHARED_API Pelo::Ptr<L3McastGroupApiHolder>
l3McastGroupApiHolderFactory(Pelo::String const& name);

} // namespace VornicL3
