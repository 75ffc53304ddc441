// The operations on remote virtual ports that pick the collection by whether the VTEP is an MLAG
// one; each is tried on both kinds and must leave the other one alone.

#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

namespace {

using Test::Lines;
using Test::World;
using VornicCentral::RemoteVtepKey;
using VornicCentral::VirtualPort;
using VornicCentral::VpIndexAllocator;
using VornicCentral::VpReference;

/// The client bgp, who requests nothing, and a key; the parameter is the flag `mlag`.
class RemoteHelpers : public testing::TestWithParam<bool> {
protected:
    RemoteHelpers() {
        world.client("bgp");
        world.start();
        world.allocator("bgp").hasNotificationActiveIs(false); // requests are only written down
        world.capture.forget();
    }
    VpIndexAllocator& allocator() const { return world.allocator("bgp"); }

    template <class Record, class Value> void put(Record& record, bool mlag, Value const& value) {
        mlag ? record.mlagRemoteVportIs(key, value) : record.remoteVportIs(key, value);
    }
    /// The key's status and reference in both kinds: "remote 12 -, mlag - 14[bgp]".
    std::string held() const {
        auto const& status = world.status("bgp");
        auto const& references = *world.references;
        return "remote " + text(status.remoteVportHas(key), status.remoteVport(key)) + " " +
               text(references.remoteVportHas(key), references.remoteVport(key)) + ", mlag " +
               text(status.mlagRemoteVportHas(key), status.mlagRemoteVport(key)) + " " +
               text(references.mlagRemoteVportHas(key), references.mlagRemoteVport(key));
    }
    static std::string text(bool has, VirtualPort vPort) { return has ? vPort.stringValue() : "-"; }
    static std::string text(bool has, VpReference const& reference) {
        return has ? reference.vPort().stringValue() + reference.references().stringValue() : "-";
    }
    static VpReference reference(U16 vpIndex, char const* name) {
        VpReference made{VirtualPort(vpIndex)};
        made.referenceIs(name, true);
        return made;
    }
    /// What `getRemoteVportRef` is to trace for the key.
    static std::string lookup(std::string const& vpIndex, std::string const& match) {
        return "5 VornicCentral::VpReference VornicCentral::VpIndexAllocator::getRemoteVportRef("
               "const VornicCentral::RemoteVtepKey&, bool) const : remoteVtep : 10.0.0.2@17, "
               "mlag = " +
               std::string(GetParam() ? "true" : "false") + ", vpIndex = " + vpIndex + " -- " +
               match;
    }

    bool const isMlag = GetParam();
    World world;
    RemoteVtepKey const key = ::Test::keyOf<RemoteVtepKey>("10.0.0.2@17");
};

INSTANTIATE_TEST_SUITE_P(, RemoteHelpers, testing::Bool(),
                         [](auto const& suite) { return suite.param ? "mlag" : "remote"; });

TEST_P(RemoteHelpers, ReferenceIsCopiedAndTheMatchTraced) {
    put(*world.references, isMlag, reference(12, "evpn"));
    world.capture.forget();
    EXPECT_EQ(allocator().getRemoteVportRef(key, isMlag), reference(12, "evpn"));
    auto const line = lookup("12", isMlag ? " Mlag SameVpType Match " : " NonMlag Vport Match ");
    EXPECT_EQ(world.capture.traces(), Lines{line});
    EXPECT_EQ(world.capture.ring(), Lines{line});
}

TEST_P(RemoteHelpers, ReferenceThatWaitsMatches) {
    put(*world.references, isMlag, reference(65535, "evpn"));
    world.capture.forget();
    EXPECT_EQ(allocator().getRemoteVportRef(key, isMlag), reference(65535, "evpn"));
    EXPECT_EQ(world.capture.traces(),
              Lines{lookup("65535", isMlag ? " Mlag SameVpType Match " : " NonMlag Vport Match ")});
}

TEST_P(RemoteHelpers, ReferenceIsEmptyWhenOnlyTheOtherKindHasOne) {
    put(*world.references, !isMlag, reference(12, "evpn"));
    world.capture.forget();
    EXPECT_EQ(allocator().getRemoteVportRef(key, isMlag), VpReference());
    EXPECT_EQ(world.capture.traces(), Lines{lookup("65535", " No Match ")});
    EXPECT_EQ(world.capture.ring(), Lines{lookup("65535", " No Match ")});
}

TEST_P(RemoteHelpers, ReferenceIsFoundInItsOwnKind) {
    put(*world.references, isMlag, reference(12, "evpn"));
    EXPECT_TRUE(allocator().remoteVportInVpReference(key, isMlag));
    EXPECT_FALSE(allocator().remoteVportInVpReference(key, !isMlag));
}

TEST_P(RemoteHelpers, RequestIsFoundInItsOwnKindWhateverItsValue) {
    put(world.config("bgp"), isMlag, false);
    EXPECT_TRUE(allocator().remoteVportInVpIndexConfig(key, isMlag));
    EXPECT_FALSE(allocator().remoteVportInVpIndexConfig(key, !isMlag));
}

TEST_P(RemoteHelpers, OfAClientWithoutConfigFindNothing) {
    auto const nameless = VornicCentral::vpIndexAllocatorFactory(
        world.sm.get(), nullptr, world.statusDir->vpIndexStatus("bgp"), world.references, false);
    EXPECT_FALSE(nameless->remoteVportInVpIndexConfig(key, isMlag));
    put(world.status("bgp"), isMlag, VirtualPort(12));
    put(*world.references, isMlag, reference(12, "evpn"));
    nameless->handleRemoteVportCommon(key, isMlag); // a withdrawal
    EXPECT_EQ(held(), isMlag ? "remote - -, mlag - 12[evpn]" : "remote - 12[evpn], mlag - -");
}

TEST_P(RemoteHelpers, IndexIsReadFromItsOwnKind) {
    put(world.status("bgp"), isMlag, VirtualPort(12));
    EXPECT_EQ(allocator().getRemoteVportVpIndex(key, isMlag), 12);
    EXPECT_EQ(allocator().getRemoteVportVpIndex(key, !isMlag), 65535);
}

TEST_P(RemoteHelpers, StatusIsWrittenAndToldToTheRingBufferOnly) {
    allocator().addRemoteVportToStatus(key, VirtualPort(12), isMlag);
    EXPECT_EQ(held(), isMlag ? "remote - -, mlag 12 -" : "remote 12 -, mlag - -");
    EXPECT_EQ(world.capture.traces(), Lines{});
    EXPECT_EQ(world.capture.ring(), Lines{isMlag ? "5 addRemoteVportToStatusmlag 10.0.0.2 vPort: 12"
                                                 : "5 addRemoteVportToStatus10.0.0.2 vPort: 12"});
}

TEST_P(RemoteHelpers, ReferenceIsWrittenOverAnEarlierOne) {
    put(*world.references, isMlag, reference(12, "evpn"));
    put(*world.references, !isMlag, reference(13, "ospf"));
    allocator().addRemoteVportToVpRef(key, reference(14, "bgp"), isMlag);
    EXPECT_EQ(held(),
              isMlag ? "remote - 13[ospf], mlag - 14[bgp]" : "remote - 14[bgp], mlag - 13[ospf]");
}

TEST_P(RemoteHelpers, ReferenceIsDeleted) {
    put(*world.references, isMlag, reference(12, "evpn"));
    put(*world.references, !isMlag, reference(13, "ospf"));
    allocator().delRemoteVportFromVpRef(key, isMlag);
    EXPECT_EQ(held(), isMlag ? "remote - 13[ospf], mlag - -" : "remote - -, mlag - 13[ospf]");
}

TEST_P(RemoteHelpers, StatusIsDeleted) {
    put(world.status("bgp"), isMlag, VirtualPort(12));
    put(world.status("bgp"), !isMlag, VirtualPort(13));
    allocator().delRemoteVportFromVpIndexStatus(key, isMlag);
    EXPECT_EQ(held(), isMlag ? "remote 13 -, mlag - -" : "remote - -, mlag 13 -");
}

TEST_P(RemoteHelpers, CommonHandlerServesItsOwnKind) {
    put(world.config("bgp"), isMlag, true);
    put(world.config("bgp"), !isMlag, true);
    allocator().handleRemoteVportCommon(key, isMlag);
    EXPECT_EQ(held(), isMlag ? "remote - -, mlag 15 15[bgp]" : "remote 15 15[bgp], mlag - -");
}

} // namespace
