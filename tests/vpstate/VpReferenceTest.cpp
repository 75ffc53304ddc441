#include "vpstate/VpReference.h"

#include "support/ParseOutcome.h"

#include <gtest/gtest.h>

namespace {

using VornicCentral::VirtualPort;
using VornicCentral::VpReference;

TEST(VpReference, DefaultHoldsNoReferenceAndTheInvalidVirtualPort) {
    VpReference const reference;
    EXPECT_FALSE(reference.vPort().valid());
    EXPECT_FALSE(reference.references());
    EXPECT_EQ(reference.references().size(), 0u);
    EXPECT_FALSE(reference.referenceHas("bgp"));
    EXPECT_LE(sizeof(VpReference), 48u);
}

TEST(VpReference, NamesAreAddedAndRemoved) {
    VpReference reference(VirtualPort(12));
    reference.referenceIs("bgp", true);
    reference.referenceIs("mlag", true);
    reference.referenceIs("bgp", true);
    EXPECT_EQ(reference.references().size(), 2u);
    EXPECT_TRUE(reference.referenceHas("bgp"));
    EXPECT_TRUE(reference.referenceHas("mlag"));
    EXPECT_TRUE(reference.referenceDel("bgp"));
    EXPECT_FALSE(reference.referenceDel("bgp"));
    EXPECT_FALSE(reference.referenceHas("bgp"));
    reference.referenceIs("mlag", false);
    EXPECT_FALSE(reference.referenceHas("mlag"));
    EXPECT_EQ(reference.vPort(), VirtualPort(12));
}

TEST(VpReference, RemovingTheLastNameLeavesNoReferences) {
    VpReference reference(VirtualPort(12));
    reference.referenceIs("bgp", true);
    EXPECT_TRUE(reference.references());
    reference.referenceDel("bgp");
    EXPECT_FALSE(reference.references());
    EXPECT_EQ(reference, VpReference(VirtualPort(12)));
}

TEST(VpReference, ReferenceDelAllEmptiesTheSetAndKeepsTheVirtualPort) {
    VpReference reference(VirtualPort(12));
    for (char const* const name : {"a", "b", "c", "d", "e", "f"}) {
        reference.referenceIs(name, true);
    }
    reference.referenceDelAll();
    EXPECT_EQ(reference, VpReference(VirtualPort(12)));
}

TEST(VpReference, IsEqualWithTheSameVirtualPortAndTheSameNamesInAnyOrder) {
    VpReference one(VirtualPort(12));
    one.referenceIs("bgp", true);
    one.referenceIs("mlag", true);
    VpReference other;
    other.referenceIs("mlag", true);
    other.referenceIs("bgp", true);
    EXPECT_NE(one, other);
    other.vPortIs(VirtualPort(12));
    EXPECT_EQ(one, other);
    other.referenceDel("bgp");
    EXPECT_NE(one, other);
}

TEST(VpReference, EqualReferencesHaveEqualHashesInAnyOrderOfNames) {
    VpReference one(VirtualPort(12));
    VpReference other(VirtualPort(12));
    EXPECT_EQ(one.hash(), other.hash());
    one.referenceIs("bgp", true);
    EXPECT_NE(one.hash(), other.hash());
    one.referenceIs("mlag", true);
    other.referenceIs("mlag", true);
    other.referenceIs("bgp", true);
    EXPECT_EQ(one.hash(), other.hash());
    other.vPortIs(VirtualPort(13));
    EXPECT_NE(one.hash(), other.hash());
}

TEST(VpReference, ACopyIsChangedForItself) {
    VpReference one(VirtualPort(12));
    one.referenceIs("bgp", true);
    VpReference copy(one);
    copy.referenceIs("mlag", true);
    copy.vPortIs(VirtualPort());
    EXPECT_EQ(Support::printed(one), "{vPort: 12, references: [bgp]}");
    EXPECT_EQ(Support::printed(copy), "{vPort: 65535, references: [bgp, mlag]}");
    EXPECT_EQ(Support::printed(VpReference()), "{vPort: 65535, references: []}");
}

} // namespace
