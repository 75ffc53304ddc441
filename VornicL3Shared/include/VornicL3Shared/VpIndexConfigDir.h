#pragma once

#include "VornicL3Shared/Export.h"
#include "VornicL3Shared/VpDirectory.h"
#include "pelo/Slab.h"
#include "vpstate/VpIndexConfig.h"

namespace VornicCentral {

/// What each client requests, by client name. Written by the clients, watched by the directory
/// state machine. See `VpDirectory` for what its mutators do.
///
/// While a state machine watches, two writes of an entry end the process: one of a name that the
/// status directory does not have yet, and one that gives a name another record than its allocator
/// was made for, also after the first record was removed.
class VORNICL3SHARED_API VpIndexConfigDir final : public VpDirectory<VpIndexConfig>,
                                                  public Pelo::SlabAllocated<VpIndexConfigDir> {
public:
    /// An empty directory without subscribers.
    explicit VpIndexConfigDir(Pelo::String const& name) : VpDirectory(name) {}

    /// A new, empty directory, as `vpIndexConfigDirFactory` builds it.
    static Pelo::Ptr<VpIndexConfigDir> VpIndexConfigDirIs(Pelo::String const& name);

    Entries const& vpIndexConfig() const noexcept { return entries(); }
    /// The record of a name; null when there is none.
    Pelo::Ptr<VpIndexConfig> vpIndexConfig(Pelo::String const& name) const { return entry(name); }
    bool vpIndexConfigHas(Pelo::String const& name) const noexcept { return entryHas(name); }
    void vpIndexConfigIs(Pelo::String const& name, Pelo::Ptr<VpIndexConfig> const& record) {
        entryIs(name, record);
    }
    Pelo::Ptr<VpIndexConfig> vpIndexConfigDel(Pelo::String const& name) { return entryDel(name); }
    void vpIndexConfigDelAll() { entryDelAll(); }

    static Qor::TypeData const& typeTable();
    Qor::TypeData const* typeData() const override;
};

VORNICL3SHARED_API Pelo::Ptr<VpIndexConfigDir> vpIndexConfigDirFactory(Pelo::String const& name);

} // namespace VornicCentral
