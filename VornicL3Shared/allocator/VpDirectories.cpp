// Creators, factories and inspection tables of the two directories.

#include "VornicL3Shared/VpIndexConfigDir.h"
#include "VornicL3Shared/VpIndexStatusDir.h"
#include "qor/TypeBuilder.h"

namespace VornicCentral {

Pelo::Ptr<VpIndexConfigDir> VpIndexConfigDir::VpIndexConfigDirIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexConfigDir>(name);
}
Pelo::Ptr<VpIndexConfigDir> vpIndexConfigDirFactory(Pelo::String const& name) {
    return VpIndexConfigDir::VpIndexConfigDirIs(name);
}

Qor::TypeData const* VpIndexConfigDir::typeData() const {
    static Qor::TypeData const table =
        Qor::TypeBuilder<VpIndexConfigDir>("VornicCentral::VpIndexConfigDir")
            .constructor(&VpIndexConfigDir::VpIndexConfigDirIs, {"name"})
            .attribute(nameField, "name", &VpIndexConfigDir::name)
            .collection(entriesField, "vpIndexConfig", "name", &VpIndexConfigDir::vpIndexConfig)
            .set(&VpIndexConfigDir::vpIndexConfigIs)
            .del(&VpIndexConfigDir::vpIndexConfigDel)
            .delAll(&VpIndexConfigDir::vpIndexConfigDelAll)
            .build();
    return &table;
}

Pelo::Ptr<VpIndexStatusDir> VpIndexStatusDir::VpIndexStatusDirIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexStatusDir>(name);
}
Pelo::Ptr<VpIndexStatusDir> vpIndexStatusDirFactory(Pelo::String const& name) {
    return VpIndexStatusDir::VpIndexStatusDirIs(name);
}

Qor::TypeData const* VpIndexStatusDir::typeData() const {
    static Qor::TypeData const table =
        Qor::TypeBuilder<VpIndexStatusDir>("VornicCentral::VpIndexStatusDir")
            .constructor(&VpIndexStatusDir::VpIndexStatusDirIs, {"name"})
            .attribute(nameField, "name", &VpIndexStatusDir::name)
            .collection(entriesField, "vpIndexStatus", "name", &VpIndexStatusDir::vpIndexStatus)
            .set(&VpIndexStatusDir::vpIndexStatusIs)
            .del(&VpIndexStatusDir::vpIndexStatusDel)
            .delAll(&VpIndexStatusDir::vpIndexStatusDelAll)
            .build();
    return &table;
}

} // namespace VornicCentral
