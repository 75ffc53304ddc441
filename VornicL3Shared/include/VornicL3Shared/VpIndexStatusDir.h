#pragma once

#include "VornicL3Shared/Export.h"
#include "VornicL3Shared/VpDirectory.h"
#include "pelo/Slab.h"
#include "vpstate/VpIndexStatus.h"

namespace VornicCentral {

/// What each client was given, by client name; a name that is in the config directory must be here
/// first, and keep its record as long as it has an allocator, which goes on writing to that one.
/// See `VpDirectory` for what its mutators do.
class VORNICL3SHARED_API VpIndexStatusDir final : public VpDirectory<VpIndexStatus>,
                                                  public Pelo::SlabAllocated<VpIndexStatusDir> {
public:
    /// An empty directory without subscribers.
    explicit VpIndexStatusDir(Pelo::String const& name) : VpDirectory(name) {}

    /// A new, empty directory, as `vpIndexStatusDirFactory` builds it.
    static Pelo::Ptr<VpIndexStatusDir> VpIndexStatusDirIs(Pelo::String const& name);

    Entries const& vpIndexStatus() const noexcept { return entries(); }
    /// The record of a name; null when there is none.
    Pelo::Ptr<VpIndexStatus> vpIndexStatus(Pelo::String const& name) const { return entry(name); }
    bool vpIndexStatusHas(Pelo::String const& name) const noexcept { return entryHas(name); }
    void vpIndexStatusIs(Pelo::String const& name, Pelo::Ptr<VpIndexStatus> const& record) {
        entryIs(name, record);
    }
    Pelo::Ptr<VpIndexStatus> vpIndexStatusDel(Pelo::String const& name) { return entryDel(name); }
    void vpIndexStatusDelAll() { entryDelAll(); }

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNICL3SHARED_API Pelo::Ptr<VpIndexStatusDir> vpIndexStatusDirFactory(Pelo::String const& name);

} // namespace VornicCentral
