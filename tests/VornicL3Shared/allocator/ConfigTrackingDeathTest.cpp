// What about the config directory stops the process.

#include "VornicL3Shared/support/Death.h"
#include "VornicL3Shared/support/Listener.h"
#include "VornicL3Shared/support/World.h"
#include "qor/Sinks.h"

#include <gtest/gtest.h>

#include <optional>
#include <string>

namespace {

using namespace VornicCentral;
using Test::assertionFailure;
using Test::Listener;
using Test::Notification;
using Test::vlan;
using Test::World;

class ConfigTrackingDeathTest : public testing::Test {
protected:
    /// The directory gets another config for bgp as soon as bgp's status is written.
    void replaceTheConfigWithinTheFirstWrite() {
        listener.emplace(world.status("bgp"), [this](Notification const&) {
            world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp"));
        });
    }

    World world;
    std::optional<Listener> listener;
    std::string const otherConfig = "MutatorReinstantiatingException.*\n.*vpIndexConfig";
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
    EXPECT_DEATH(world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp")), otherConfig);
}

TEST_F(ConfigTrackingDeathTest, AnotherConfigThatIsLeftUntilStartUpIsDone) {
    world.client("bgp");
    replaceTheConfigWithinTheFirstWrite();
    EXPECT_DEATH(world.start(), otherConfig);
}

TEST_F(ConfigTrackingDeathTest, AnotherConfigThatIsLeftUntilANewClientIsServed) {
    world.start();
    world.statusDir->vpIndexStatusIs("bgp", vpIndexStatusFactory("bgp"));
    replaceTheConfigWithinTheFirstWrite();
    EXPECT_DEATH(world.configDir->vpIndexConfigIs("bgp", vpIndexConfigFactory("bgp")), otherConfig);
}

TEST_F(ConfigTrackingDeathTest, AnotherConfigThatIsLeftUntilTheOwnerHasHandledTheName) {
    world.start();
    world.sm->qorDoZombieReactors(true); // the name is left to the owner
    world.client("bgp");
    world.sm->qorDoZombieReactors(false);
    replaceTheConfigWithinTheFirstWrite();
    EXPECT_DEATH(world.sm->handleVpIndexConfig("bgp"), otherConfig);
}

TEST_F(ConfigTrackingDeathTest, ARequestThatCannotBeRecordedForWantOfAReferenceList) {
    world.references = nullptr;
    world.client("bgp");
    world.start();
    EXPECT_DEATH(world.request("bgp", vlan(100)),
                 "MutatorArgNullPointerException.*\n.*vpReference");
}

TEST_F(ConfigTrackingDeathTest, ARequestThatIsLeftToAnAllocatorThatCannotRecordIt) {
    world.client("bgp");
    world.start();
    auto const config = vpIndexConfigFactory("mlag");
    auto const allocator = world.sm->vpIndexAllocatorIs(
        world.sm.get(), config, vpIndexStatusFactory("mlag"), nullptr, false);
    listener.emplace(world.status("bgp"),
                     [&](Notification const&) { config->vlanVportIs(vlan(200).key, true); });
    auto const request = [this] {
        Qor::traceSinkIs({}); // to standard error
        world.request("bgp", vlan(100));
    };
    EXPECT_DEATH(request(), " handleInvalidVlanVport vlan: 100\n" // bgp's handler is done
                            "[^\n]* handleVlanVport vlan: 200\n"
                            "[^\n]*MutatorArgNullPointerException.*\n.*vpReference");
}

} // namespace
