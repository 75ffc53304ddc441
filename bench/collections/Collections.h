#pragma once

#include "Case.h"
#include "collections/Keys.h"

#include <optional>
#include <string>
#include <string_view>
#include <type_traits>

namespace Bench {

/// What is measured with every collection, over an adapter `C` that is built empty and has
///
///     insert(key, value)   of a key that is not there
///     has(key)             whether it is there
///     erase(key)           whether it was there
///     walk()               the sum of all values
///     walkErase()          walks and deletes every second member that it comes to; how many
///
/// Nobody reserves room. What comes before and after an operation (the filling before a deletion,
/// the destruction after an insertion) is not timed.
template <class C, class Key> void fill(C& collection, std::vector<Key> const& keys) {
    U32 value = 0;
    for (Key const& key : keys) {
        collection.insert(key, value++);
    }
}

template <class C, class Key>
void insertEach(benchmark::State& state, std::vector<Key> const& members) {
    std::optional<C> collection;
    for (auto _ : state) {
        state.PauseTiming();
        collection.emplace();
        state.ResumeTiming();
        fill(*collection, members);
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(members.size()));
}

/// Asks for each of the keys; `found` says how many of them are members.
template <class C, class Key>
void findEach(benchmark::State& state, std::vector<Key> const& members,
              std::vector<Key> const& keys, std::size_t found) {
    C collection;
    fill(collection, members);
    for (auto _ : state) {
        std::size_t hits = 0;
        for (Key const& key : keys) {
            hits += collection.has(key) ? 1u : 0u;
        }
        benchmark::DoNotOptimize(hits);
        if (hits != found) {
            state.SkipWithError("some keys are wrongly found or not found");
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}

template <class C, class Key>
void eraseEach(benchmark::State& state, std::vector<Key> const& members,
               std::vector<Key> const& keys) {
    std::optional<C> collection;
    for (auto _ : state) {
        state.PauseTiming();
        fill(collection.emplace(), members);
        state.ResumeTiming();
        std::size_t erased = 0;
        for (Key const& key : keys) {
            erased += collection->erase(key) ? 1u : 0u;
        }
        benchmark::DoNotOptimize(erased);
        if (erased != members.size()) {
            state.SkipWithError("some members are not deleted");
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(keys.size()));
}

template <class C, class Key>
void walkAll(benchmark::State& state, std::vector<Key> const& members) {
    C collection;
    fill(collection, members);
    U64 const sum = U64{members.size()} * (members.size() - 1) / 2;
    for (auto _ : state) {
        U64 const walked = collection.walk();
        benchmark::DoNotOptimize(walked);
        if (walked != sum) {
            state.SkipWithError("some members are not visited");
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(members.size()));
}

template <class C, class Key>
void walkAndErase(benchmark::State& state, std::vector<Key> const& members) {
    std::optional<C> collection;
    for (auto _ : state) {
        state.PauseTiming();
        fill(collection.emplace(), members);
        state.ResumeTiming();
        if (collection->walkErase() != members.size() / 2) {
            state.SkipWithError("some members are not visited");
        }
    }
    state.SetItemsProcessed(state.iterations() * static_cast<int64_t>(members.size()));
}

/// Deletes where a walk of a collection of the standard library's kind stands, and moves on.
template <class Map> void eraseAndAdvance(Map& map, typename Map::iterator& at) {
    if constexpr (std::is_void_v<decltype(map.erase(at))>) {
        map.erase(at++);
    } else {
        at = map.erase(at);
    }
}

/// The adapter of a collection that has the operations of the standard library's.
template <class Map> class StdLike {
public:
    using Key = typename Map::key_type;

    void insert(Key const& key, U32 value) { map_.emplace(key, value); }
    bool has(Key const& key) const { return map_.find(key) != map_.end(); }
    bool erase(Key const& key) { return map_.erase(key) != 0; }
    U64 walk() const {
        U64 sum = 0;
        for (auto const& member : map_) {
            sum += member.second;
        }
        return sum;
    }
    U32 walkErase() {
        U32 erased = 0;
        bool second = false;
        for (auto at = map_.begin(); at != map_.end(); second = !second) {
            if (second) {
                eraseAndAdvance(map_, at);
                ++erased;
            } else {
                ++at;
            }
        }
        return erased;
    }

private:
    Map map_;
};

/// The numbers of members that are measured.
inline constexpr U32 sizes[] = {1000, 4000, 16000, 60000};
inline constexpr U32 largest = 60000;

/// A case for each size whose keys `keysOf(size)` gives.
template <class Run, class KeysOf>
void addSizes(std::string const& subject, std::string const& who, KeysOf keysOf, Run run) {
    for (U32 const size : sizes) {
        addCase(subject, who, std::to_string(size),
                [=](benchmark::State& state) { run(state, keysOf(size)); });
    }
}

/// What is measured with a collection whose keys are the plain ones of 32 bytes.
template <class C> void addWide(std::string const& who) {
    using Keys = KeySet<WideKey>;
    addSizes("insert", who, wideKeys,
             [](benchmark::State& state, Keys const& keys) { insertEach<C>(state, keys.members); });
    addSizes("hit", who, wideKeys, [](benchmark::State& state, Keys const& keys) {
        findEach<C>(state, keys.members, keys.shuffled, keys.members.size());
    });
    addSizes("miss", who, wideKeys, [](benchmark::State& state, Keys const& keys) {
        findEach<C>(state, keys.members, keys.absent, 0);
    });
    addSizes("erase", who, wideKeys, [](benchmark::State& state, Keys const& keys) {
        eraseEach<C>(state, keys.members, keys.shuffled);
    });
    addCase("walk", who, std::to_string(largest),
            [](benchmark::State& state) { walkAll<C>(state, wideKeys(largest).members); });
}

/// A walk that deletes, for those whose walks may.
template <class C> void addWalkErase(std::string const& who) {
    addCase("walkErase", who, std::to_string(largest),
            [](benchmark::State& state) { walkAndErase<C>(state, wideKeys(largest).members); });
}

/// Lookups of the keys of remote VTEPs, and of interfaces with a VLAN.
template <class Remote, class PortVlan> void addRecordKeys(std::string const& who) {
    addSizes("remoteHit", who, remoteKeys, [](benchmark::State& state, auto const& keys) {
        findEach<Remote>(state, keys.members, keys.shuffled, keys.members.size());
    });
    addSizes("portVlanHit", who, portVlanKeys, [](benchmark::State& state, auto const& keys) {
        findEach<PortVlan>(state, keys.members, keys.shuffled, keys.members.size());
    });
}

/// Lookups of VLANs, in a collection of few and in one of all.
template <class C> void addVlan(std::string const& who) {
    for (U32 const size : {14u, 4094u}) {
        addCase("vlanHit", who, std::to_string(size), [size](benchmark::State& state) {
            auto const& keys = vlanKeys(size);
            findEach<C>(state, keys.members, keys.shuffled, size);
        });
    }
}

/// All that is measured with one who has a map for every type of key.
template <template <class Key> class C> void addCollection(std::string const& who) {
    addWide<C<WideKey>>(who);
    addRecordKeys<C<VornicCentral::RemoteVtepKey>, C<VornicCentral::PortVlanKey>>(who);
    addVlan<C<Bridging::VlanId>>(who);
}

} // namespace Bench
