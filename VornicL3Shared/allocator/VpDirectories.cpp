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

Qor::TypeData const& VpIndexConfigDir::typeTable() {
    static Qor::TypeData const table =
        Qor::TypeBuilder<VpIndexConfigDir>("VornicCentral::VpIndexConfigDir")
            .doc("what the clients request, one record a client")
            .constructor(&VpIndexConfigDir::VpIndexConfigDirIs, {"name"})
            .attribute(nameField, "name", &VpIndexConfigDir::name)
            .doc("the directory's own name")
            .collection(entriesField, "vpIndexConfig", "name", &VpIndexConfigDir::vpIndexConfig)
            .set(&VpIndexConfigDir::vpIndexConfigIs)
            .del(&VpIndexConfigDir::vpIndexConfigDel)
            .delAll(&VpIndexConfigDir::vpIndexConfigDelAll)
            .doc("the clients' requests, by client name")
            .build();
    return table;
}

Qor::TypeData const* VpIndexConfigDir::typeData() const { return &typeTable(); }

Pelo::Ptr<VpIndexStatusDir> VpIndexStatusDir::VpIndexStatusDirIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexStatusDir>(name);
}
Pelo::Ptr<VpIndexStatusDir> vpIndexStatusDirFactory(Pelo::String const& name) {
    return VpIndexStatusDir::VpIndexStatusDirIs(name);
}

Qor::TypeData const& VpIndexStatusDir::typeTable() {
    static Qor::TypeData const table =
        Qor::TypeBuilder<VpIndexStatusDir>("VornicCentral::VpIndexStatusDir")
            .doc("what the clients were given, one record a client")
            .constructor(&VpIndexStatusDir::VpIndexStatusDirIs, {"name"})
            .attribute(nameField, "name", &VpIndexStatusDir::name)
            .doc("the directory's own name")
            .collection(entriesField, "vpIndexStatus", "name", &VpIndexStatusDir::vpIndexStatus)
            .set(&VpIndexStatusDir::vpIndexStatusIs)
            .del(&VpIndexStatusDir::vpIndexStatusDel)
            .delAll(&VpIndexStatusDir::vpIndexStatusDelAll)
            .doc("the clients' virtual ports and counters, by client name")
            .build();
    return table;
}

Qor::TypeData const* VpIndexStatusDir::typeData() const { return &typeTable(); }

} // namespace VornicCentral
