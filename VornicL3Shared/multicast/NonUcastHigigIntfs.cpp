#include "VornicL3Shared/NonUcastHigigIntfs.h"

#include "qor/TypeBuilder.h"

#include <bitset>
#include <utility>

namespace VornicL3 {

using Devbus::FapId;
using Interface::IntfSet;

Pelo::Ptr<NonUcastHigigIntfs> NonUcastHigigIntfs::NonUcastHigigIntfsIs(Pelo::String const& name) {
    return Pelo::newNode<NonUcastHigigIntfs>(name);
}

Pelo::Ptr<NonUcastHigigIntfs> nonUcastHigigIntfsFactory(Pelo::String const& name) {
    return NonUcastHigigIntfs::NonUcastHigigIntfsIs(name);
}

IntfSet NonUcastHigigIntfs::higigIntfs(FapId fapId) const {
    auto const* const member = higigIntfs_.lookupNode(fapId);
    return member == nullptr ? IntfSet() : member->value();
}

void NonUcastHigigIntfs::higigIntfsIs(FapId fapId, IntfSet const& intfs) {
    auto const* const member = higigIntfs_.lookupNode(fapId);
    if (member == nullptr) {
        higigIntfs_.newMember(fapId, intfs);
        publishMember(higigIntfsField, fapId, nullptr);
    } else if (member->value() != intfs) {
        IntfSet const former = higigIntfs_.valueExchange(*member, intfs);
        publishMember(higigIntfsField, fapId, &former);
    }
}

IntfSet NonUcastHigigIntfs::higigIntfsDel(FapId fapId) {
    auto former = higigIntfs_.deleteMember(fapId);
    if (!former) {
        return {};
    }
    publishMember(higigIntfsField, fapId, &*former);
    return *std::move(former);
}

void NonUcastHigigIntfs::higigIntfsDelAll() {
    if (!hasSubscribers()) {
        higigIntfs_.memberDelAll();
        return;
    }
    // A chip is removed once, or a subscriber that puts it back would keep the walk going for ever.
    std::bitset<FapId::directBound> removed;
    for (HigigIntfs::Iterator it(higigIntfs_); it; it.advance()) {
        FapId const fapId = it.key();
        if (!removed[fapId.directIndex()]) {
            removed.set(fapId.directIndex());
            higigIntfsDel(fapId);
        }
    }
}

Qor::TypeData const& NonUcastHigigIntfs::typeTable() {
    using Set = NonUcastHigigIntfs;
    static Qor::TypeData const table =
        Qor::TypeBuilder<Set>("VornicL3::NonUcastHigigIntfs")
            .doc("the Higig interfaces that carry non-unicast traffic, chip by chip")
            .constructor(&Set::NonUcastHigigIntfsIs, {"name"})
            .attribute(Qor::nameStringField, "nameString", &Set::nameString)
            .doc("the entity's name")
            .collection(higigIntfsField, "higigIntfs", "fapId", &Set::higigIntfs)
            .set(&Set::higigIntfsIs)
            .del(&Set::higigIntfsDel)
            .delAll(&Set::higigIntfsDelAll)
            .doc("the interfaces, by forwarding chip")
            .constant(pathField, "path", path())
            .doc("where the entity is published")
            .build();
    return table;
}

Qor::TypeData const* NonUcastHigigIntfs::typeData() const { return &typeTable(); }

} // namespace VornicL3
