#include "VornicL3Shared/BumAllowedBackplaneIntf.h"

#include "qor/TypeBuilder.h"

#include <utility>

namespace VornicL3 {

using Interface::IntfSet;

Pelo::Ptr<BumAllowedBackplaneIntf>
BumAllowedBackplaneIntf::BumAllowedBackplaneIntfIs(Pelo::String const& name) {
    return Pelo::newNode<BumAllowedBackplaneIntf>(name);
}

Pelo::Ptr<BumAllowedBackplaneIntf> bumAllowedBackplaneIntfFactory(Pelo::String const& name) {
    return BumAllowedBackplaneIntf::BumAllowedBackplaneIntfIs(name);
}

void BumAllowedBackplaneIntf::intfsIs(IntfSet const& intfs) {
    if (intfs == intfs_) {
        return;
    }
    IntfSet const former = std::exchange(intfs_, IntfSet(intfs));
    publishAttribute(intfsField, &former);
}

Qor::TypeData const& BumAllowedBackplaneIntf::typeTable() {
    using Set = BumAllowedBackplaneIntf;
    static Qor::TypeData const table =
        Qor::TypeBuilder<Set>("VornicL3::BumAllowedBackplaneIntf")
            .doc("the backplane interfaces that broadcast, unknown-unicast and multicast may use")
            .constructor(&Set::BumAllowedBackplaneIntfIs, {"name"})
            .attribute(Qor::nameStringField, "nameString", &Set::nameString)
            .doc("the entity's name")
            .attribute(intfsField, "intfs", &Set::intfs)
            .set(&Set::intfsIs)
            .doc("the interfaces that are allowed")
            .constant(pathField, "path", path())
            .doc("where the entity is published")
            .build();
    return table;
}

Qor::TypeData const* BumAllowedBackplaneIntf::typeData() const { return &typeTable(); }

} // namespace VornicL3
