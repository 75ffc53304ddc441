// The checks of all records against each other and against the pool.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/References.h"

#include <map>

namespace {

using namespace VornicCentral;
using Test::edge;
using Test::Lines;
using Test::referenceOf;
using Test::vlan;

/// The texts of one kind.
struct Words {
    std::string operation;
    std::string statusHas;
    std::string configHas;
    std::string referenceHas;
    std::string statusesMatch;
};

template <class Kind> Words words() {
    static std::map<std::string, std::string> const keys{{"remote", "remoteVtepKey"},
                                                         {"mlag", "remoteVtepKey"},
                                                         {"edge", "pvKey"},
                                                         {"vlan", "vlan"},
                                                         {"efilter", "intf"}};
    static std::map<std::string, std::string> const operations{
        {"remote", "verifyRemoteVpIndex"},
        {"mlag", "verifyMlagRemoteVpIndex"},
        {"edge", "verifyEdgeVpIndex"},
        {"vlan", "verifyVlanVpIndex"},
        {"efilter", "verifyEFilterDisableVpIndex"}};
    static std::map<std::string, std::string> const collections{{"remote", "remoteVport"},
                                                                {"mlag", "mlagRemoteVport"},
                                                                {"edge", "edgeVport"},
                                                                {"vlan", "vlanVport"},
                                                                {"efilter", "eFilterDisableVport"}};
    std::string const call = collections.at(Kind::word) + "Has( " + keys.at(Kind::word) + " )";
    return {operations.at(Kind::word), "vpIndexStatus()->" + call, "vpIndexConfig()->" + call,
            "vpReference()->" + call,
            "vPort == vpIndexStatus->" + collections.at(Kind::word) + "( " + keys.at(Kind::word) +
                " )"};
}

std::string failure(std::string const& type, std::string const& operation,
                    std::string const& text) {
    return Test::assertionFailure("void VornicCentral::" + type + "::" + operation + "() const",
                                  text);
}
std::string ofTable(std::string const& text) {
    return failure("VpIndexAllocatorDirSm", "verify", text);
}

Lines allocatorTraces(std::string const& name) {
    Lines lines{"1 verify " + name};
    static std::pair<char const*, char const*> const kinds[] = {
        {"verifyRemoteVpIndex", "remoteVport"},
        {"verifyMlagRemoteVpIndex", "mlagRemoteVport"},
        {"verifyEdgeVpIndex", "edgeVport"},
        {"verifyVlanVpIndex", "vlanVport"},
        {"verifyEFilterDisableVpIndex", "eFilterDisableVport"}};
    for (auto const& [operation, collection] : kinds) {
        lines.push_back(std::string("1 ") + operation + " " + name);
        lines.push_back(std::string("5 ") + operation + " verifying vpIndexConfig()->" +
                        collection);
        lines.push_back(std::string("5 ") + operation + " verifying vpIndexStatus()->" +
                        collection);
    }
    return lines;
}

TEST(Verify, APassingRunLeavesOnlyItsTraces) {
    ::Test::World world({.tableSize = 16, .reallocation = true});
    world.client("bgp");
    world.client("mlag");
    world.start();
    world.request("bgp", edge("Ethernet1:10"));
    world.request("mlag", edge("Ethernet1:10"));
    std::string const before = world.state();
    world.capture.forget();
    world.sm->verify();
    Lines expected{"1 verify"};
    for (std::string const name : {"bgp", "mlag"}) {
        Lines const lines = allocatorTraces(name);
        expected.insert(expected.end(), lines.begin(), lines.end());
    }
    expected.push_back("5 verify verify vp indices match across statuses");
    EXPECT_EQ(world.capture.traces(), expected);
    EXPECT_EQ(world.capture.ring(), expected);
    EXPECT_EQ(world.capture.logs(), Lines{});
    EXPECT_EQ(world.state(), before);
}

TEST(Verify, AnAllocatorWithoutAConfigTracesBothSteps) {
    ::Test::World world;
    world.start();
    auto const allocator = VpIndexAllocator::VpIndexAllocatorIs(
        world.sm.get(), nullptr, vpIndexStatusFactory("bgp"), world.references, false);
    world.capture.forget();
    allocator->verify();
    EXPECT_EQ(world.capture.traces(), allocatorTraces(""));
}

TEST(Verify, WithoutAStatusDirectoryEveryClientHoldsTheInvalidVirtualPort) {
    ::Test::World world;
    world.statusDir = nullptr;
    world.start();
    world.references->vlanVportIs(vlan(5).key, referenceOf(65535, {"bgp", "mlag"}));
    world.sm->setVpBitmap(9); // for the reference, which counts as a set bit
    world.capture.forget();
    world.sm->verify();
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 verify", "5 verify verify vp indices match across statuses"}));
}

TEST(Verify, WithoutAReferenceListOnlyThePoolIsChecked) {
    ::Test::World world;
    world.references = nullptr;
    world.client("bgp");
    world.start();
    world.capture.forget();
    world.sm->verify();
    Lines expected = allocatorTraces("bgp");
    expected.insert(expected.begin(), "1 verify");
    expected.push_back("5 verify verify vp indices match across statuses");
    EXPECT_EQ(world.capture.traces(), expected);
}

TEST(Verify, ARequestOfAClientThatHasNoAllocatorIsNotChecked) {
    ::Test::World world;
    world.start();
    world.sm->hasNotificationActiveIs(false);
    world.client("bgp");
    world.request("bgp", vlan(5));
    world.capture.forget();
    world.sm->verify();
    EXPECT_EQ(world.capture.traces(),
              (Lines{"1 verify", "5 verify verify vp indices match across statuses"}));
}

template <class Kind> class VerifyDeathTest : public ::Test::KindTest<Kind> {
protected:
    VerifyDeathTest() {
        this->start({.tableSize = 16}, {"bgp", "mlag"});
        this->request("bgp", 1);
        this->request("mlag", 1);
        this->world.sm->hasNotificationActiveIs(
            false); // from here on the records are changed by hand
    }
    auto& status(char const* name) { return this->world.status(name); }
    auto& references() { return *this->world.references; }
    void verify() { this->world.sm->verify(); }
    void loseIndexOf(char const* name) {
        this->world.sm->freeVpIndex(15);
        this->status(name).template is<Kind>(key, VirtualPort());
    }
    /// An allocator beside those of the state machine; each of the two records may be null.
    Pelo::Ptr<VpIndexAllocator> allocatorOf(Pelo::Ptr<VpIndexConfig const> const& config,
                                            Pelo::Ptr<VpIndexStatus> const& status) {
        return VpIndexAllocator::VpIndexAllocatorIs(this->world.sm.get(), config, status,
                                                    this->world.references, false);
    }
    std::string ofKind(std::string const& text) {
        return failure("VpIndexAllocator", words<Kind>().operation, text);
    }
    typename Kind::Key const key = ::Test::numbered<Kind>(1).key;
};
TYPED_TEST_SUITE(VerifyDeathTest, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(VerifyDeathTest, NothingIsWrongToBeginWith) {
    this->verify();
    EXPECT_EQ(this->world.pool(), "16: 0-7 15");
}

TYPED_TEST(VerifyDeathTest, ARequestedKeyIsMissingInTheStatus) {
    this->status("bgp").template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().statusHas));
}

TYPED_TEST(VerifyDeathTest, AnIndexIsNotMarkedInThePool) {
    this->world.sm->freeVpIndex(15);
    EXPECT_DEATH(this->verify(),
                 this->ofKind("vpIndexAllocatorDirSm()->vpBitmap()->isBitSet( vpIndex )"));
}

TYPED_TEST(VerifyDeathTest, AStatusKeyIsNotRequested) {
    this->world.config("bgp").template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().configHas));
}

TYPED_TEST(VerifyDeathTest, AStatusKeyHasNoReference) {
    this->references().template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().referenceHas));
}

TYPED_TEST(VerifyDeathTest, TheReferenceDoesNotNameTheClient) {
    this->references().template is<TypeParam>(this->key, referenceOf(15, {"mlag"}));
    EXPECT_DEATH(this->verify(), this->ofKind("reference.referenceHas( name() )"));
}

TYPED_TEST(VerifyDeathTest, TheReferenceHoldsAnotherVirtualPort) {
    VpReference reference = this->references().template get<TypeParam>(this->key);
    reference.vPortIs(VirtualPort(14));
    this->references().template is<TypeParam>(this->key, reference);
    EXPECT_DEATH(this->verify(), this->ofKind("reference.vPort() == vPort"));
}

TYPED_TEST(VerifyDeathTest, ARequestWithTheValueFalseIsCheckedToo) {
    auto const another = ::Test::numbered<TypeParam>(2).key;
    this->world.config("bgp").template is<TypeParam>(another, false);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().statusHas));
}

TYPED_TEST(VerifyDeathTest, AStatusWithoutAnIndexPassesThePoolButMustAgreeWithTheReference) {
    this->loseIndexOf("bgp");
    EXPECT_DEATH(this->verify(), this->ofKind("reference.vPort() == vPort"));
}

TYPED_TEST(VerifyDeathTest, AStatusWithoutAnIndexNeedsAConfigEntry) {
    this->loseIndexOf("bgp");
    this->world.config("bgp").template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().configHas));
}

TYPED_TEST(VerifyDeathTest, AStatusWithoutAnIndexNeedsAReference) {
    this->loseIndexOf("bgp");
    this->references().template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), this->ofKind(words<TypeParam>().referenceHas));
}

TYPED_TEST(VerifyDeathTest, AReferenceNamesNobody) {
    this->world.sm->vpIndexAllocatorDelAll();
    this->references().template is<TypeParam>(this->key, VpReference(VirtualPort(15)));
    EXPECT_DEATH(this->verify(), ofTable("reference.references()"));
}

TYPED_TEST(VerifyDeathTest, TwoClientsOfAKeyHoldDifferentVirtualPorts) {
    this->world.sm->vpIndexAllocatorDelAll(); // the clients' own checks would find it first
    this->status("mlag").template is<TypeParam>(this->key, VirtualPort(14));
    EXPECT_DEATH(this->verify(), ofTable(words<TypeParam>().statusesMatch));
}

TYPED_TEST(VerifyDeathTest, AClientOfAKeyHasNoEntryForIt) {
    this->world.sm->vpIndexAllocatorDelAll();
    this->status("mlag").template del<TypeParam>(this->key);
    EXPECT_DEATH(this->verify(), ofTable(words<TypeParam>().statusesMatch));
}

TYPED_TEST(VerifyDeathTest, AReferenceWithoutAnIndexTakesItsFirstClientsAsTheOneThatAllShare) {
    this->world.sm->vpIndexAllocatorDelAll();
    VpReference reference = this->references().template get<TypeParam>(this->key);
    reference.vPortIs(VirtualPort());
    this->references().template is<TypeParam>(this->key, reference);
    this->verify(); // both clients hold 15
    this->status("mlag").template is<TypeParam>(this->key, VirtualPort(14));
    EXPECT_DEATH(this->verify(), ofTable(words<TypeParam>().statusesMatch));
}

TYPED_TEST(VerifyDeathTest, AReferenceWithoutAnIndexTakesTheFirstPortThatAClientHolds) {
    this->world.sm->vpIndexAllocatorDelAll();
    this->world.client("evpn");
    this->status("bgp").template del<TypeParam>(this->key);
    this->status("evpn").template is<TypeParam>(this->key, VirtualPort(14));
    this->references().template is<TypeParam>(this->key, referenceOf(65535, {"bgp", "mlag"}));
    this->verify(); // bgp has no entry, mlag holds 15
    this->references().template is<TypeParam>(this->key,
                                              referenceOf(65535, {"bgp", "mlag", "evpn"}));
    EXPECT_DEATH(this->verify(), ofTable(words<TypeParam>().statusesMatch));
}

TYPED_TEST(VerifyDeathTest, AnAllocatorWithoutAConfigMayHoldNothing) {
    auto const status = vpIndexStatusFactory("evpn");
    auto const allocator = this->allocatorOf(nullptr, status);
    allocator->verify();
    status->is<TypeParam>(this->key, VirtualPort(15));
    EXPECT_DEATH(allocator->verify(), this->ofKind(words<TypeParam>().configHas));
}

TYPED_TEST(VerifyDeathTest, AnAllocatorWithoutAStatusMayRequestNothing) {
    auto const config = vpIndexConfigFactory("evpn");
    auto const allocator = this->allocatorOf(config, nullptr);
    allocator->hasNotificationActiveIs(false);
    this->world.capture.forget();
    allocator->verify();
    EXPECT_EQ(this->world.capture.traces(), allocatorTraces("evpn"));
    config->is<TypeParam>(this->key, true);
    EXPECT_DEATH(allocator->verify(), this->ofKind(words<TypeParam>().statusHas));
}

TYPED_TEST(VerifyDeathTest, AnAllocatorWithoutAReferenceListMayHoldNothing) {
    auto const config = vpIndexConfigFactory("evpn");
    auto const status = vpIndexStatusFactory("evpn");
    auto const allocator =
        VpIndexAllocator::VpIndexAllocatorIs(this->world.sm.get(), config, status, nullptr, false);
    allocator->hasNotificationActiveIs(false);
    allocator->verify();
    config->is<TypeParam>(this->key, true);
    status->is<TypeParam>(this->key, VirtualPort(15));
    EXPECT_DEATH(allocator->verify(), this->ofKind(words<TypeParam>().referenceHas));
}

TYPED_TEST(VerifyDeathTest, WithoutAStatusDirectoryNoReferenceMayHoldAnIndex) {
    this->world.stop();
    this->world.configDir = nullptr;
    this->world.statusDir = nullptr;
    this->world.start();
    this->references().template is<TypeParam>(this->key, referenceOf(15, {"bgp"}));
    EXPECT_DEATH(this->verify(), ofTable(words<TypeParam>().statusesMatch));
}

TYPED_TEST(VerifyDeathTest, ABitMoreThanReferences) {
    this->world.sm->setVpBitmap(9);
    EXPECT_DEATH(this->verify(),
                 ofTable("( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()"));
}

template <class Kind> class VerifyWaitingDeathTest : public ::Test::KindTest<Kind> {};
TYPED_TEST_SUITE(VerifyWaitingDeathTest, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(VerifyWaitingDeathTest, AKeyThatWaitsWithoutAnIndexCountsAsASetBit) {
    this->start({.tableSize = 8, .reallocation = true}, {"bgp"});
    this->request("bgp", 1);
    EXPECT_DEATH(this->world.sm->verify(),
                 ofTable("( numVps + maxSystemSourceVp_ ) == vpBitmap()->numBitsInSetState()"));
}

} // namespace
