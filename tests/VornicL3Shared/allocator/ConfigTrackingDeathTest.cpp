// What about the config directory stops the process.

#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using namespace VornicCentral;
using Test::assertionFailure;
using Test::vlan;
using Test::World;

class ConfigTrackingDeathTest : public testing::Test {
protected:
    World world;
    std::string const statusMissing = assertionFailure(
        "void VornicCentral::VpIndexAllocatorDirSm::handleVpIndexConfig(const String&)",
        "vpIndexStatusDir()->vpIndexStatusHas( name )");
};

TEST_F(ConfigTrackingDeathTest, ANewNameWithoutAStatus) {
    world.start();
    EXPECT_DEATH(world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp")),
                 statusMissing);
}

TEST_F(ConfigTrackingDeathTest, ANameWithoutAStatusAtTheStart) {
    world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp"));
    EXPECT_DEATH(world.start(), statusMissing);
}

TEST_F(ConfigTrackingDeathTest, ANameWhoseStatusWentAwayBeforeTheNextNotification) {
    world.client("bgp");
    world.start();
    world.statusDir->vpIndexStatusDel("bgp");
    EXPECT_DEATH(world.sm->handleVpIndexConfig("bgp"), statusMissing);
}

TEST_F(ConfigTrackingDeathTest, ANewNameWithoutAStatusDirectory) {
    world.statusDir = nullptr;
    world.start();
    EXPECT_DEATH(world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp")),
                 statusMissing);
}

TEST_F(ConfigTrackingDeathTest, AnotherConfigUnderANameThatHasAnAllocator) {
    world.client("bgp");
    world.start();
    EXPECT_DEATH(world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp")),
                 "MutatorReinstantiatingException.*\n.*vpIndexConfig");
}

TEST_F(ConfigTrackingDeathTest, ARequestThatCannotBeRecordedForWantOfAReferenceList) {
    world.references = nullptr;
    world.client("bgp");
    world.start();
    EXPECT_DEATH(world.request("bgp", vlan(100)),
                 "MutatorArgNullPointerException.*\n.*vpReference");
}

} // namespace
