#pragma once

#include "Case.h"
#include "requests/Names.h"

#include <memory>
#include <string>
#include <vector>

namespace Bench {

/// The cases of one world, `OurWorld` or a `ProgramWorld`. All worlds do the same work on the same
/// virtual ports, in the same order.
template <class World> struct RequestCases {
    using Key = typename World::Key;
    static constexpr U32 batch = 1000;
    static constexpr U32 sharedKeys = 200;

    static std::vector<Key> keys(U32 first, U32 count) {
        std::vector<Key> result;
        for (U32 at = 0; at < count; ++at) {
            result.push_back(World::key(first + at));
        }
        return result;
    }

    static void fill(World& world, U32 held, U32 clients = 1) {
        world.unrecorded([&] {
            for (U32 at = 0; at < held; ++at) {
                world.request(World::key(at), at % clients);
            }
        });
    }

    /// New requests beside `held` virtual ports.
    static void request(benchmark::State& state, U32 held) {
        World world(1);
        fill(world, held);
        auto const added = keys(held, batch);
        for (auto _ : state) {
            for (Key const& key : added) {
                world.request(key);
            }
            state.PauseTiming();
            for (Key const& key : added) {
                world.withdraw(key);
            }
            state.ResumeTiming();
        }
        state.SetItemsProcessed(state.iterations() * batch);
    }

    /// Releases beside `held` virtual ports.
    static void release(benchmark::State& state, U32 held) {
        World world(1);
        fill(world, held);
        auto const added = keys(held, batch);
        for (auto _ : state) {
            state.PauseTiming();
            for (Key const& key : added) {
                world.request(key);
            }
            state.ResumeTiming();
            for (Key const& key : added) {
                world.withdraw(key);
            }
        }
        state.SetItemsProcessed(state.iterations() * batch);
    }

    /// A start that finds so many references of five clients, who then ask for each again.
    static void start(benchmark::State& state, U32 references) {
        constexpr U32 clients = 5;
        World world(clients);
        fill(world, references, clients);
        for (auto _ : state) {
            state.PauseTiming();
            world.stop();
            state.ResumeTiming();
            world.start();
        }
        state.SetItemsProcessed(state.iterations() * references);
    }

    /// One more client requests keys that so many clients hold.
    static void oneMoreClient(benchmark::State& state, U32 holders) {
        World world(1);
        std::vector<std::string> names;
        for (U32 at = 1; at <= holders; ++at) {
            names.push_back(clientName(at));
        }
        auto const added = keys(0, sharedKeys);
        for (Key const& key : added) {
            world.shareBetween(key, names);
        }
        for (auto _ : state) {
            for (Key const& key : added) {
                world.request(key);
            }
            state.PauseTiming();
            for (Key const& key : added) {
                world.withdraw(key);
            }
            state.ResumeTiming();
        }
        state.SetItemsProcessed(state.iterations() * sharedKeys);
    }

    /// All requests of so many clients, from empty records on, client after client.
    static void allRequests(benchmark::State& state, U32 clients, U32 requestsEach) {
        auto const requested = keys(0, clients * requestsEach);
        auto world = std::make_unique<World>(clients);
        for (auto _ : state) {
            auto key = requested.begin();
            for (U32 client = 0; client < clients; ++client) {
                for (U32 at = 0; at < requestsEach; ++at) {
                    world->request(*key++, client);
                }
            }
            state.PauseTiming();
            world.reset();
            world = std::make_unique<World>(clients);
            state.ResumeTiming();
        }
        state.SetItemsProcessed(state.iterations() * clients * requestsEach);
    }

    static void add(std::string const& who) {
        for (U32 const held : {1000u, 4000u, 16000u, 60000u}) {
            std::string const size = std::to_string(held);
            addCase("request", who, size, [held](auto& state) { request(state, held); });
            addCase("release", who, size, [held](auto& state) { release(state, held); });
            addCase("start", who, size, [held](auto& state) { start(state, held); });
        }
        for (U32 const holders : {1u, 10u, 100u, 1000u}) {
            addCase("oneMoreClient", who, std::to_string(holders),
                    [holders](auto& state) { oneMoreClient(state, holders); });
        }
        addCase("allRequests", who, "1x60000", [](auto& state) { allRequests(state, 1, 60000); });
        addCase("allRequests", who, "1000x60", [](auto& state) { allRequests(state, 1000, 60); });
    }
};

} // namespace Bench
