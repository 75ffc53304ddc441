#pragma once

#include "VornicL3Shared/VpDirectory.h"
#include "pelo/Slab.h"
#include "vpstate/VpIndexConfig.h"

namespace VornicCentral {

/// What each client requests, by client name. Written by the clients, watched by the directory
/// state machine. See `VpDirectory` for what its mutators do.
class VpIndexConfigDir final : public VpDirectory<VpIndexConfig>,
                               public Pelo::SlabAllocated<VpIndexConfigDir> {
public:
    /// An empty directory without subscribers.
    explicit VpIndexConfigDir(Pelo::String const& name) : VpDirectory(name) {}

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

Pelo::Ptr<VpIndexConfigDir> vpIndexConfigDirFactory(Pelo::String const& name);

} // namespace VornicCentral
