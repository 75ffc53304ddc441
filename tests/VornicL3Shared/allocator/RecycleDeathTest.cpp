// A waiting key that names a client who has no config, no status or no such request stops the
// process.

#include "VornicL3Shared/allocator/KindTest.h"
#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/References.h"

#include <map>
#include <string>

namespace {

using namespace VornicCentral;

std::string failure(std::string_view text) {
    return ::Test::assertionFailure(
        "void VornicCentral::VpIndexAllocatorDirSm::recycleOrFreeVpIndex(U32)", text);
}

template <class Kind> class RecycleDeathTest : public ::Test::KindTest<Kind> {
protected:
    RecycleDeathTest() {
        this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
        nameTheGhost();
    }
    /// Makes key 1 wait for a client that nobody knows.
    void nameTheGhost() {
        this->world.references->template is<Kind>(::Test::numbered<Kind>(1).key,
                                                  ::Test::referenceOf(65535, {"ghost"}));
    }
    /// A config that requests the key, which the state machine does not hear of.
    void giveTheGhostAConfig() {
        this->world.sm->hasNotificationActiveIs(false);
        this->world.configDir->vpIndexConfigIs("ghost", vpIndexConfigFactory("ghost"));
        this->request("ghost", 1);
    }
};
TYPED_TEST_SUITE(RecycleDeathTest, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(RecycleDeathTest, AClientWithoutConfigIsFoundBeforeItsMissingStatus) {
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexConfig"));
}

TYPED_TEST(RecycleDeathTest, AClientWithAStatusAndNoConfig) {
    this->world.statusDir->vpIndexStatusIs("ghost", vpIndexStatusFactory("ghost"));
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexConfig"));
}

TYPED_TEST(RecycleDeathTest, AClientWithoutStatus) {
    this->giveTheGhostAConfig();
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexStatus"));
}

TYPED_TEST(RecycleDeathTest, AClientWithoutStatusIsFoundBeforeItsMissingRequest) {
    this->giveTheGhostAConfig();
    this->withdraw("ghost", 1);
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexStatus"));
}

TYPED_TEST(RecycleDeathTest, NoConfigDirectory) {
    this->world.configDir = nullptr;
    this->world.start();
    this->nameTheGhost();
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexConfig"));
}

TYPED_TEST(RecycleDeathTest, NoStatusDirectory) {
    this->world.statusDir = nullptr;
    this->world.configDir = vpIndexConfigDirFactory("config");
    this->world.start();
    this->nameTheGhost();
    this->giveTheGhostAConfig();
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexStatus"));
}

TYPED_TEST(RecycleDeathTest, AClientThatDoesNotRequestTheKey) {
    this->world.client("ghost");
    static std::map<std::string, std::string> const texts{
        {"vlan", "vpIndexConfig-> vlanVportHas( vlanIter.key() )"},
        {"remote", "vpIndexConfig-> remoteVportHas( remoteIter.key() )"},
        {"mlag", "vpIndexConfig-> mlagRemoteVportHas( remoteIter.key() )"},
        {"edge", "vpIndexConfig-> edgeVportHas( edgeIter.key() )"},
        {"efilter", "vpIndexConfig-> eFilterDisableVportHas( eFDisIter.key() )"}};
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure(texts.at(TypeParam::word)));
}

} // namespace
