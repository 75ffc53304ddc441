#pragma once

#include "VornicL3Shared/support/World.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <string>
#include <type_traits>

namespace Test {

using AllKinds = testing::Types<VornicCentral::RemoteVport, VornicCentral::MlagRemoteVport,
                                VornicCentral::EdgeVport, VornicCentral::VlanVport,
                                VornicCentral::EFilterDisableVport>;

/// Names the instances of a typed suite after the kind's word.
struct KindNames {
    template <class Kind> static std::string GetName(int) { return Kind::word; }
};

/// The key of a kind that has a number: `10.0.0.1@1001`, `Ethernet1/1:100`, `101`, `Ethernet2/1`.
template <class Kind> Vport<Kind> numbered(U32 number) {
    using Key = typename Kind::Key;
    std::string const text = std::to_string(number);
    if constexpr (std::is_same_v<Key, VornicCentral::RemoteVtepKey>) {
        std::string const host = std::to_string(number / 256) + "." + std::to_string(number % 256);
        return {keyOf<Key>("10.0." + host + "@" + std::to_string(1000 + number))};
    } else if constexpr (std::is_same_v<Key, VornicCentral::PortVlanKey>) {
        return {keyOf<Key>("Ethernet1/" + text + ":100")};
    } else if constexpr (std::is_same_v<Key, Bridging::VlanId>) {
        return {Key(static_cast<U16>(100 + number))};
    } else {
        return {Key("Ethernet2/" + text)};
    }
}

/// A behaviour that is the same for all kinds, tried on one of them: the keys of the tests are
/// numbers, and the texts that they expect say `<kind>` for its word and `<1>` for key 1.
template <class K> class KindTest : public testing::Test {
protected:
    using Kind = K;

    /// Starts anew, with clients who request nothing, and forgets what was reported on the way.
    void start(Settings const& settings, std::initializer_list<char const*> clients) {
        world.stop();
        world.settings = settings;
        for (char const* const name : clients) {
            world.client(name);
        }
        world.start();
        world.capture.forget();
    }
    void request(char const* name, U32 number) { world.request(name, numbered<K>(number)); }
    void withdraw(char const* name, U32 number) { world.withdraw(name, numbered<K>(number)); }

    /// Calls the client's handler for one key by hand.
    void handle(char const* name, U32 number) {
        auto& allocator = world.allocator(name);
        auto const key = numbered<K>(number).key;
        if constexpr (std::is_same_v<K, VornicCentral::RemoteVport>) {
            allocator.handleRemoteVport(key);
        } else if constexpr (std::is_same_v<K, VornicCentral::MlagRemoteVport>) {
            allocator.handleMlagRemoteVport(key);
        } else if constexpr (std::is_same_v<K, VornicCentral::EdgeVport>) {
            allocator.handleEdgeVport(key);
        } else if constexpr (std::is_same_v<K, VornicCentral::VlanVport>) {
            allocator.handleVlanVport(key);
        } else {
            allocator.handleEFilterDisableVport(key);
        }
    }
    /// Calls the client's handler for all keys by hand.
    void sweep(char const* name) {
        auto& allocator = world.allocator(name);
        if constexpr (std::is_same_v<K, VornicCentral::RemoteVport>) {
            allocator.handleRemoteVport();
        } else if constexpr (std::is_same_v<K, VornicCentral::MlagRemoteVport>) {
            allocator.handleMlagRemoteVport();
        } else if constexpr (std::is_same_v<K, VornicCentral::EdgeVport>) {
            allocator.handleEdgeVport();
        } else if constexpr (std::is_same_v<K, VornicCentral::VlanVport>) {
            allocator.handleVlanVport();
        } else {
            allocator.handleEFilterDisableVport();
        }
    }

    std::string state() const { return world.state(); }

    /// A text with the kind's word and keys in the places of `<kind>` and `<1>` to `<3>`.
    static std::string filled(std::string text) {
        replace(text, "<kind>", K::word);
        for (U32 number = 1; number <= 3; ++number) {
            replace(text, "<" + std::to_string(number) + ">", textOf(numbered<K>(number).key));
        }
        return text;
    }
    static void replace(std::string& text, std::string const& hole, std::string const& with) {
        for (auto at = text.find(hole); at != std::string::npos; at = text.find(hole, at)) {
            text.replace(at, hole.size(), with);
            at += with.size();
        }
    }

    World world;
};

} // namespace Test
