#include "vpstate/VpIndexConfig.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpIndexConfig> VpIndexConfig::VpIndexConfigIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexConfig>(name);
}

Pelo::Ptr<VpIndexConfig> vpIndexConfigFactory(Pelo::String const& name) {
    return VpIndexConfig::VpIndexConfigIs(name);
}

Qor::TypeData const& VpIndexConfig::typeTable() {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpIndexConfig",
                    {"what one client requests", "the client's name", "the requested ",
                     "; a key that is there is requested, whatever its value"},
                    &VpIndexConfig::VpIndexConfigIs)
            .build();
    return table;
}

Qor::TypeData const* VpIndexConfig::typeData() const { return &typeTable(); }

} // namespace VornicCentral
