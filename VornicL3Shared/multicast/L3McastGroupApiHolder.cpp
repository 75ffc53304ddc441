#include "VornicL3Shared/L3McastGroupApiHolder.h"

#include "VornicL3Shared/L3McastGroupApi.h"
#include "qor/TypeBuilder.h"

#include <utility>

namespace VornicL3 {

L3McastGroupApiHolder::L3McastGroupApiHolder(Pelo::String const& name) : Entity(name) {}

L3McastGroupApiHolder::~L3McastGroupApiHolder() = default;

Pelo::Ptr<L3McastGroupApiHolder>
L3McastGroupApiHolder::L3McastGroupApiHolderIs(Pelo::String const& name) {
    return Pelo::newNode<L3McastGroupApiHolder>(name);
}

Pelo::Ptr<L3McastGroupApiHolder> l3McastGroupApiHolderFactory(Pelo::String const& name) {
    return L3McastGroupApiHolder::L3McastGroupApiHolderIs(name);
}

void L3McastGroupApiHolder::l3McastGroupApiIs(Pelo::Ptr<L3McastGroupApi> const& l3McastGroupApi) {
    if (l3McastGroupApi == l3McastGroupApi_) {
        return;
    }
    // It is given back at the end of the function, when everybody has been told.
    Pelo::Ptr<L3McastGroupApi> const former = std::exchange(l3McastGroupApi_, l3McastGroupApi);
    publishAttribute(l3McastGroupApiField, &former);
}

Qor::TypeData const& L3McastGroupApiHolder::typeTable() {
    using Holder = L3McastGroupApiHolder;
    static Qor::TypeData const table =
        Qor::TypeBuilder<Holder>("VornicL3::L3McastGroupApiHolder")
            .doc("where the installed multicast group service is found")
            .constructor(&Holder::L3McastGroupApiHolderIs, {"name"})
            .attribute(Qor::nameStringField, "nameString", &Holder::nameString)
            .doc("the entity's name")
            .attribute(l3McastGroupApiField, "l3McastGroupApi", &Holder::l3McastGroupApi)
            .set(&Holder::l3McastGroupApiIs)
            .doc("the installed service; null while there is none")
            .constant(sharedEntityNameField, "sharedEntityName", sharedEntityName())
            .doc("the name under which the entity is shared")
            .build();
    return table;
}

Qor::TypeData const* L3McastGroupApiHolder::typeData() const { return &typeTable(); }

} // namespace VornicL3
