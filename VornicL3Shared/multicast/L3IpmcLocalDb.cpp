#include "VornicL3Shared/L3IpmcLocalDb.h"

#include "qor/TypeBuilder.h"

namespace VornicL3 {

Pelo::Ptr<L3IpmcLocalDb>
L3IpmcLocalDb::L3IpmcLocalDbIs(Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf,
                               Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs) {
    return Pelo::newNode<L3IpmcLocalDb>(allowedBackplaneIntf, hwHigigIntfs);
}

Pelo::Ptr<L3IpmcLocalDb>
l3IpmcLocalDbFactory(Pelo::Ptr<BumAllowedBackplaneIntf const> const& allowedBackplaneIntf,
                     Pelo::Ptr<NonUcastHigigIntfs> const& hwHigigIntfs) {
    return L3IpmcLocalDb::L3IpmcLocalDbIs(allowedBackplaneIntf, hwHigigIntfs);
}

Qor::TypeData const& L3IpmcLocalDb::typeTable() {
    using Db = L3IpmcLocalDb;
    static Qor::TypeData const table =
        Qor::TypeBuilder<Db>("VornicL3::L3IpmcLocalDb")
            .doc("the local IP multicast database, which binds the two interface sets")
            .constructor(&Db::L3IpmcLocalDbIs, {"allowedBackplaneIntf", "hwHigigIntfs"})
            .attribute(allowedBackplaneIntfField, "allowedBackplaneIntf", &Db::allowedBackplaneIntf)
            .doc("the backplane interfaces that are allowed, not to be changed from here")
            .attribute(hwHigigIntfsField, "hwHigigIntfs", &Db::hwHigigIntfs)
            .doc("the Higig interfaces, chip by chip")
            .build();
    return table;
}

Qor::TypeData const* L3IpmcLocalDb::typeData() const { return &typeTable(); }

} // namespace VornicL3
