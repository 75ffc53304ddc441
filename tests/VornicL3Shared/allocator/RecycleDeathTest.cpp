// A waiting key that names a client who has no config, no status or no such request stops the
// process.

#include "VornicL3Shared/allocator/KindTest.h"

#include <map>

namespace {

using namespace VornicCentral;

std::string failure(std::string const& text) {
    std::string escaped;
    for (char const c : text) {
        escaped += std::string("()!*[]").find(c) == std::string::npos ? std::string(1, c)
                                                                      : "\\" + std::string(1, c);
    }
    return "/src/VornicL3Shared/VornicL3VpIndexAllocator:[0-9]+: "
           "void VornicCentral::VpIndexAllocatorDirSm::recycleOrFreeVpIndex\\(U32\\): Assertion '" +
           escaped + "' failed\\.";
}

template <class Kind> class RecycleDeathTest : public ::Test::KindTest<Kind> {
protected:
    RecycleDeathTest() {
        this->start({.tableSize = 9, .reallocation = true}, {"bgp"});
        VpReference waiting;
        waiting.referenceIs("ghost", true);
        this->world.references->template is<Kind>(::Test::numbered<Kind>(1).key, waiting);
    }
};
TYPED_TEST_SUITE(RecycleDeathTest, ::Test::AllKinds, ::Test::KindNames);

TYPED_TEST(RecycleDeathTest, AClientWithoutConfig) {
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexConfig"));
}

TYPED_TEST(RecycleDeathTest, AClientWithoutConfigIsFoundBeforeItsMissingStatus) {
    this->world.statusDir->vpIndexStatusIs("ghost", vpIndexStatusFactory("ghost"));
    EXPECT_DEATH(this->world.sm->recycleOrFreeVpIndex(8), failure("!!vpIndexConfig"));
}

TYPED_TEST(RecycleDeathTest, AClientWithoutStatus) {
    this->world.sm->hasNotificationActiveIs(false);
    this->world.configDir->vpIndexConfigIs("ghost", vpIndexConfigFactory("ghost"));
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
