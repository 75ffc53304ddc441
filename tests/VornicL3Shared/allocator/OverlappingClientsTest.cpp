// Three clients that overlap request and withdraw 1,000 keys of all kinds at random; in the end the
// whole state is that of a plain model, order included.

#include "VornicL3Shared/allocator/PlainModel.h"
#include "qor/TraceHandle.h"
#include "support/Random.h"

#include <string>

namespace {

using Test::PlainModel;
using Test::Settings;
using Test::World;
using VornicCentral::kindCount;

constexpr U32 keysOfAKind = 200;
constexpr char const* names[] = {"bgp", "evpn", "static"};

struct Scenario {
    char const* name;
    Settings settings;
};

class OverlappingClients : public testing::TestWithParam<Scenario> {
protected:
    OverlappingClients() : world(GetParam().settings), model(GetParam().settings) {
        for (char const* const name : names) {
            world.client(name);
            model.client(name);
        }
        Qor::TraceHandle::find("VornicVpIndexAllocator")->levelsMaskIs(0); // only the state counts
        world.start();
    }

    void request(std::size_t client, std::size_t kind, U32 number) {
        model.request(client, kind, number);
        VornicCentral::forEachKind([&](auto each) {
            if (VornicCentral::kindOrder<decltype(each)> == kind) {
                world.request(names[client], ::Test::numbered<decltype(each)>(number));
            }
        });
    }
    void withdraw(std::size_t client, std::size_t kind, U32 number) {
        model.withdraw(client, kind, number);
        VornicCentral::forEachKind([&](auto each) {
            if (VornicCentral::kindOrder<decltype(each)> == kind) {
                world.withdraw(names[client], ::Test::numbered<decltype(each)>(number));
            }
        });
    }
    /// Requests with odds of `odds` in ten, and withdrawals.
    void run(U32 steps, U32 odds) {
        for (U32 step = 0; step < steps; ++step) {
            auto const client = random.below(std::size(names));
            auto const kind = random.below(kindCount);
            U32 const number = 1 + random.below(keysOfAKind);
            random.below(10) < odds ? request(client, kind, number)
                                    : withdraw(client, kind, number);
        }
    }
    void withdrawAll() {
        for (std::size_t client = 0; client < std::size(names); ++client) {
            for (std::size_t kind = 0; kind < kindCount; ++kind) {
                for (U32 number = 1; number <= keysOfAKind; ++number) {
                    withdraw(client, kind, number);
                }
            }
        }
    }

    Support::Random random;
    World world;
    PlainModel model;
};

INSTANTIATE_TEST_SUITE_P(
    , OverlappingClients,
    testing::Values(Scenario{"fits", {.tableSize = 1008}},
                    Scenario{"fits_with_remotes_low", {.tableSize = 4096, .remoteLow = true}},
                    Scenario{"overflows", {.tableSize = 300}},
                    Scenario{"overflows_and_reallocates", {.tableSize = 300, .reallocation = true}},
                    Scenario{"overflows_with_remotes_low",
                             {.tableSize = 64, .reallocation = true, .remoteLow = true}}),
    [](auto const& suite) { return suite.param.name; });

TEST_P(OverlappingClients, EndAsAPlainModelDoes) {
    SCOPED_TRACE(random.note());
    run(6000, 7);
    EXPECT_EQ(world.state(), model.state());
    run(6000, 3);
    EXPECT_EQ(world.state(), model.state());
}

TEST_P(OverlappingClients, LeaveNothingBehindWhenAllIsWithdrawn) {
    SCOPED_TRACE(random.note());
    run(6000, 7);
    withdrawAll();
    EXPECT_EQ(world.state(), model.state());
    EXPECT_EQ(world.pool(), std::to_string(world.settings.tableSize) + ": 0-7");
    world.sm->verify();
}

} // namespace
