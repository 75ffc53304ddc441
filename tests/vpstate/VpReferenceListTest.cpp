// What the records add to their values: a reference is kept and replaced as a whole, and keys that
// have the same hash are kept apart.

#include "vpstate/VpReferenceList.h"

#include <gtest/gtest.h>

namespace {

using namespace VornicCentral;

VpReference referenceOf(U16 vpIndex, std::initializer_list<char const*> names) {
    VpReference reference{VirtualPort(vpIndex)};
    for (char const* name : names) {
        reference.referenceIs(name, true);
    }
    return reference;
}

TEST(VpReferenceList, SettingAKeyReplacesTheWholeReference) {
    auto const list = vpReferenceListFactory("references");
    Bridging::VlanId const vlan(10);
    list->vlanVportIs(vlan, referenceOf(8, {"bgp", "mlag"}));
    list->vlanVportIs(vlan, referenceOf(9, {"bridging"}));
    EXPECT_EQ(list->vlanVport(vlan).stringValue(), "{vPort: 9, references: [bridging]}");
    list->vlanVportIs(vlan, referenceOf(9, {}));
    EXPECT_EQ(list->vlanVport(vlan).stringValue(), "{vPort: 9, references: []}");
}

TEST(VpReferenceList, TheSameNamesInAnotherOrderAreNotTold) {
    auto const list = vpReferenceListFactory("references");
    Bridging::VlanId const vlan(10);
    list->vlanVportIs(vlan, referenceOf(8, {"bgp", "mlag"}));
    int told = 0;
    Pelo::Subscriber subscriber(&told,
                                [](Pelo::Publisher*, Pelo::Subscriber* self, Pelo::FieldId,
                                   void const*, void const*) noexcept { ++self->owner<int>(); });
    list->publisher()->subscriberAdd(&subscriber, false);
    list->vlanVportIs(vlan, referenceOf(8, {"mlag", "bgp"}));
    EXPECT_EQ(told, 0);
    EXPECT_EQ(list->vlanVport(vlan).stringValue(), "{vPort: 8, references: [bgp, mlag]}");
    list->vlanVportIs(vlan, referenceOf(8, {"mlag"}));
    EXPECT_EQ(told, 1);
}

/// Both bytes take no part in the hash.
template <class Kind> void expectKeysApart() {
    auto const list = vpReferenceListFactory("references");
    RemoteVtepKey const keys[] = {*RemoteVtepKey::parse("10.0.0.1@17"),
                                  *RemoteVtepKey::parse("10.0.0.1@17/1/0"),
                                  *RemoteVtepKey::parse("10.0.0.1@17/0/1")};
    U16 vpIndex = 8;
    for (RemoteVtepKey const& key : keys) {
        list->is<Kind>(key, referenceOf(vpIndex++, {"bgp"}));
    }
    EXPECT_EQ(list->collection<Kind>().memberCount(), 3u);
    EXPECT_EQ(list->get<Kind>(keys[0]).vPort(), VirtualPort(8));
    EXPECT_EQ(list->get<Kind>(keys[1]).vPort(), VirtualPort(9));
    EXPECT_EQ(list->get<Kind>(keys[2]).vPort(), VirtualPort(10));
    list->del<Kind>(keys[1]);
    EXPECT_TRUE(list->has<Kind>(keys[0]));
    EXPECT_FALSE(list->has<Kind>(keys[1]));
    EXPECT_TRUE(list->has<Kind>(keys[2]));
}

TEST(VpReferenceList, RemoteKeysThatDifferInOneByteAreDifferentMembers) {
    expectKeysApart<RemoteVport>();
    expectKeysApart<MlagRemoteVport>();
}

} // namespace
