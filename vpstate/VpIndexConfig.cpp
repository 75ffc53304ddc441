#include "vpstate/VpIndexConfig.h"

#include "RecordTable.h"

namespace VornicCentral {

Pelo::Ptr<VpIndexConfig> VpIndexConfig::VpIndexConfigIs(Pelo::String const& name) {
    return Pelo::newNode<VpIndexConfig>(name);
}

Pelo::Ptr<VpIndexConfig> vpIndexConfigFactory(Pelo::String const& name) {
    return VpIndexConfig::VpIndexConfigIs(name);
}

Qor::TypeData const* VpIndexConfig::typeData() const {
    static Qor::TypeData const table =
        recordTable("VornicCentral::VpIndexConfig", &VpIndexConfig::VpIndexConfigIs).build();
    return &table;
}

} // namespace VornicCentral
